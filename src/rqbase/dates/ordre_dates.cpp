#include "rqbase/dates/ordre_dates.h"

#include <algorithm>
#include <cstring>

#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/conversions.h"
#include "rqbase/dates/convjuif.h"
#include "rqbase/dates/interne.h"
#include "rqbase/platform/cp1252.h"

namespace rqbase {
using namespace dates_interne;

namespace {

int Signe(int v) { return (v > 0) - (v < 0); }

// SansBlancsFin sans copie.
std::string_view SansBlancsFinVue(std::string_view texte) {
  while (!texte.empty() && static_cast<unsigned char>(texte.back()) <= ' ') texte.remove_suffix(1);
  return texte;
}

// strnlen, mais en ligne : il est appelé plusieurs fois par date comparée.
std::size_t LongueurZ(const char* p, std::size_t maxi) {
  std::size_t n = 0;
  while (n < maxi && p[n] != 0) ++n;
  return n;
}

// Le champ de date d'une copie de travail, tel que CompareDate le ferait évoluer,
// sur la pile : mêmes lectures que TexteBrut, GetDate et DateFormatFourchette.
struct TChampDate {
  char octets[11] = {};
  std::size_t longueur = 0;  // jusqu'au premier zéro

  void Pose(std::string_view texte) {  // SetDate
    const std::size_t n = std::min<std::size_t>(texte.size(), 10);
    for (std::size_t i = 0; i < 11; ++i) octets[i] = i < n ? texte[i] : 0;
    longueur = LongueurZ(octets, 10);
  }
  // "jj/mm/aaaa" écrit comme TexteNumerique (Zeros) : les conversions rendent
  // toujours des nombres positifs qui tiennent dans leur largeur.
  void PoseNombres(int jour, int mois, int annee) {
    if (jour < 0 || jour > 99 || mois < 0 || mois > 99 || annee < 0 || annee > 9999) {
      Pose(Zeros(jour, 2) + "/" + Zeros(mois, 2) + "/" + Zeros(annee, 4));
      return;
    }
    const char texte[10] = {static_cast<char>('0' + jour / 10),   static_cast<char>('0' + jour % 10),        '/',
                            static_cast<char>('0' + mois / 10),   static_cast<char>('0' + mois % 10),        '/',
                            static_cast<char>('0' + annee / 1000), static_cast<char>('0' + annee / 100 % 10),
                            static_cast<char>('0' + annee / 10 % 10), static_cast<char>('0' + annee % 10)};
    Pose(std::string_view(texte, 10));
  }
  std::string_view Brut() const { return {octets, longueur}; }
  std::string_view SansBlancs() const {  // GetDate
    std::string_view t = Brut();
    while (!t.empty() && static_cast<unsigned char>(t.back()) <= ' ') t.remove_suffix(1);
    return t;
  }
  bool Fourchette() const {  // un seul blanc de fin retiré
    std::string_view t = Brut();
    if (!t.empty() && t.back() == ' ') t.remove_suffix(1);
    return rqbase::DateFormatFourchette(t);
  }
};

// Chiffres seuls et non nuls (PartieConnue des conversions) : leur valeur, sinon 0.
int PartieConnueVue(std::string_view s) {
  int v = 0;
  for (char c : s) {
    if (c < '0' || c > '9') return 0;
    v = v * 10 + (c - '0');
  }
  return v;
}

// Milieu sans copie : position comptée à partir de 1, tronquée au texte.
std::string_view MilieuVue(std::string_view texte, std::size_t position, std::size_t longueur) {
  if (position == 0 || position > texte.size()) return {};
  return texte.substr(position - 1, longueur);
}

// L'acte d'au plus deux caractères, sans blancs autour et en majuscules (ActeNormalise),
// est-il "<", ">", "~" ou "CA" ?
bool ActeDePrecision(std::string_view acte) {
  while (!acte.empty() && static_cast<unsigned char>(acte.front()) <= ' ') acte.remove_prefix(1);
  while (!acte.empty() && static_cast<unsigned char>(acte.back()) <= ' ') acte.remove_suffix(1);
  if (acte.size() == 1) return acte[0] == '<' || acte[0] == '>' || acte[0] == '~';
  return acte.size() == 2 && MajusculeCp1252(static_cast<unsigned char>(acte[0])) == 'C' &&
         MajusculeCp1252(static_cast<unsigned char>(acte[1])) == 'A';
}

}  // namespace

struct TDateRQ::TCleOrdre {
  char calendrier = 0;  // celui de la copie : '?' y devient 'G'
  int annee = 0, min = 0, max = 0;
  bool fourchette = false;
  char amj[8] = {};  // RetAnneeMoisJour, vide pour une année nulle
  std::size_t longueur = 0;
};

// CompareDate travaillait sur deux copies qu'il convertissait en grégorien
// (ConvVersGregInterne) puis dont il lisait l'année (RecupAnnee, qui fait d'une
// date "<", ">", "~" ou "ca" une fourchette d'une année). Tout cela se refait ici
// pas à pas sur un champ de date posé sur la pile, sans chaîne construite hors des
// conversions républicaines et hébraïques : un tri d'un million de dates fait des
// dizaines de millions de comparaisons.
void TDateRQ::CleOrdre(const TDateRQ& d, TCleOrdre& cle) {
  // La copie : calendrier '?' lu 'G', texte sans blancs de fin.
  const char calendrier = d.Calendrier == '?' ? 'G' : d.Calendrier;
  cle.calendrier = calendrier;
  TChampDate champ;
  champ.Pose(SansBlancsFinVue(std::string_view(d.Date, LongueurZ(d.Date, 10))));

  // ConvVersGregInterne : après lui le calendrier n'est plus 'R' ni 'H'.
  if (calendrier == 'R' || calendrier == 'H') {
    const std::string_view texte = champ.SansBlancs();
    // Une date entière, le cas courant, se convertit sur ses nombres ; le reste
    // (parties inconnues, fourchettes, textes d'une autre forme) par le texte.
    int jour = 0, mois = 0, annee = 0;
    if (texte.size() == 10) {
      jour = PartieConnueVue(texte.substr(0, 2));
      mois = calendrier == 'R' ? NumeroMoisRepublicain(texte.substr(3, 4)) : PartieConnueVue(texte.substr(3, 2));
      annee = calendrier == 'R' ? PartieConnueVue(texte.substr(8, 2)) : PartieConnueVue(texte.substr(6, 4));
      if (calendrier == 'H' && (texte[2] != '/' || texte[5] != '/')) jour = 0;
    }
    if (jour != 0 && mois != 0 && annee != 0) {
      if (calendrier == 'H') {
        ConvJuif conv;
        if (conv.convJuif_civilNombres(jour, mois, annee))
          champ.PoseNombres(conv.JourCivil(), conv.MoisCivil(), conv.AnneeCivile());
        else
          champ.Pose({});
      } else if (const int n = NbJoursRepublicains(jour, mois, annee); n < 0) {
        champ.Pose({});
      } else {
        GregorienDepuisJoursRepublicains(n, jour, mois, annee);
        champ.PoseNombres(jour, mois, annee);
      }
    } else if (calendrier == 'R')
      champ.Pose(rqbase::DateFormatFourchette(texte) ? FourchetteRepublicaineEnGregorien(texte)
                                                     : ConvRepublicainGregorien(texte));
    else
      champ.Pose(ConvHebraiqueGregorien(texte));
  }

  // AjusteDateFourchette.
  if (!champ.Fourchette()) {
    const std::string_view annee = MilieuVue(champ.SansBlancs(), 7, 4);
    if (ToIntInString(annee) != 0) {
      const std::string_view acte(d.Acte, LongueurZ(d.Acte, 2));
      if (ActeDePrecision(acte)) {
        char fourchette[9];
        for (std::size_t i = 0; i < annee.size(); ++i) fourchette[i] = fourchette[annee.size() + 1 + i] = annee[i];
        fourchette[annee.size()] = '/';
        champ.Pose(std::string_view(fourchette, 2 * annee.size() + 1));
      }
    }
  }

  // RecupAnneeChn (conversion demandée, bornes estimées) sur un texte grégorien.
  if (champ.Fourchette()) {
    const std::string_view texte = champ.SansBlancs();
    int bas = ToIntInString(MilieuVue(texte, 1, 4)), haut = ToIntInString(MilieuVue(texte, 6, 4));
    int moyen = (bas && haut) ? (bas + haut) / 2 : (bas ? bas : haut);
    if (haut == 0 && bas != 0)
      haut = bas + 100;
    else if (bas == 0 && haut != 0)
      bas = haut - 100;
    if (bas && haut) moyen = (bas + haut) / 2;
    cle.min = bas;
    cle.max = haut;
    cle.annee = moyen;
    cle.fourchette = true;
  } else {
    const std::string_view texte = champ.SansBlancs();
    const int v = ToIntInString(MilieuVue(texte, 7, 4));
    cle.min = cle.max = cle.annee = v;
    cle.fourchette = false;
    if (v != 0) {
      cle.longueur = 0;
      for (const std::string_view partie : {MilieuVue(texte, 7, 4), MilieuVue(texte, 4, 2), MilieuVue(texte, 1, 2)})
        for (char c : partie) cle.amj[cle.longueur++] = c;
    }
  }
}

int TDateRQ::CompareDate(const TDateRQ& date1, const TDateRQ& date2, int defaut) {
  TCleOrdre c1, c2;
  CleOrdre(date1, c1);
  CleOrdre(date2, c2);
  const char calendrier1 = c1.calendrier, calendrier2 = c2.calendrier;
  const TCleOrdre* d1 = &c1;
  const TCleOrdre* d2 = &c2;
  bool echange = false;
  if (d2->fourchette && !d1->fourchette) {
    std::swap(d1, d2);
    echange = true;
  }
  int r;
  if (!d1->fourchette && !d2->fourchette) {
    // Comparaison des textes "aaaammjj" comme des chaînes (octets non signés, puis longueur).
    const int c = std::memcmp(d1->amj, d2->amj, std::min(d1->longueur, d2->longueur));
    r = c != 0 ? Signe(c) : Signe(static_cast<int>(d1->longueur) - static_cast<int>(d2->longueur));
  } else if (d1->fourchette && d2->fourchette) {
    const int min1 = d1->min, max1 = d1->max, min2 = d2->min, max2 = d2->max;
    if (max1 < min2 || (max1 == min2 && min1 < max2))
      r = -1;
    else if (max2 < min1)
      r = 1;
    else
      r = 0;
  } else {
    const int a = d1->min, b = d1->max, y = d2->annee;
    bool regle = true;
    if (y && a && a > y)
      r = 1;
    else if (b && b < y)
      r = -1;
    else if (y && a && b)
      r = 0;
    else {
      r = defaut;
      regle = false;
    }
    if (echange && regle) r = -r;
  }
  // Avant Jésus-Christ : l'ordre des années s'inverse, et avant toute autre date.
  if (calendrier1 == 'A' && calendrier2 == 'A')
    r = -r;
  else if (calendrier1 == 'A')
    r = -1;
  else if (calendrier2 == 'A')
    r = 1;
  return r;
}

bool TDateRQ::operator<(const TDateRQ& autre) const { return CompareDate(*this, autre, 0) < 0; }

// --- Clés de texte -----------------------------------------------------------

std::string TransformeDateNormale(std::string_view date) {
  if (date.size() > 10) return {};
  std::string r;
  std::size_t fin = date.size();
  while (true) {
    const std::size_t barre = date.rfind('/', fin == 0 ? std::string_view::npos : fin - 1);
    if (barre == std::string_view::npos || fin == 0) {
      r += date.substr(0, fin);
      break;
    }
    r += date.substr(barre + 1, fin - barre - 1);
    fin = barre;
  }
  return r;
}

std::string TransformeDateAMJ(std::string_view date) {
  const std::string a = Milieu(date, 1, 4), m = Milieu(date, 5, 2), j = Milieu(date, 7, 2);
  return (j.empty() ? "" : j + "/") + (m.empty() ? "" : m + "/") + a;
}

int strcmpDATE(const char* a, const char* b) {
  return Signe(TransformeDateNormale(a ? a : "").compare(TransformeDateNormale(b ? b : "")));
}

}  // namespace rqbase
