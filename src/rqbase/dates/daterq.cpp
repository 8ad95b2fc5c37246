#include "rqbase/dates/daterq.h"

#include <algorithm>
#include <cstring>

#include "rqbase/dates/analysedate.h"
#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/conversions.h"
#include "rqbase/dates/decompte_jours.h"
#include "rqbase/dates/interne.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/util/chaines.h"

namespace rqbase {
using namespace dates_interne;

namespace {

// Jour de la semaine, 0 = dimanche : julien avant 1582, grégorien ensuite, toute
// l'année 1582 comprise (mois d'avant la réforme inclus).
int JourSemaine(int jour, int mois, int annee) {
  const std::int64_t jdn = annee < 1582 ? JdnJulien(annee, mois, jour) : JdnGregorien(annee, mois, jour);
  return static_cast<int>(((jdn + 1) % 7 + 7) % 7);
}

}  // namespace

// --- Mots de précision -------------------------------------------------------

std::string PreciseDate(int bits) {
  std::string r;
  if (bits & 1) r = Ressource(1857);
  if (bits & 2) r = Ressource(1858);
  if (bits & 32) r = Ressource(1862);
  if (bits & 16) r = r.empty() ? Ressource(1859) : r + " " + Ressource(1859);
  if (bits & 4) r = Ressource(1860);
  if (bits & 8) r = Ressource(1861);
  if (bits & 64) r = Ressource(1863);
  return r.empty() ? r : r + " ";
}

// --- Construction ------------------------------------------------------------

TDateRQ::TDateRQ() {
  std::memset(Acte, 0, sizeof Acte);
  Calendrier = 0;
  std::memset(Date, 0, sizeof Date);
}

TDateRQ::TDateRQ(const TDateRQ& autre) {
  std::memcpy(Acte, autre.Acte, sizeof Acte);
  Calendrier = autre.Calendrier == '?' ? 'G' : autre.Calendrier;
  // Le texte jusqu'à son premier zéro (10 caractères au plus), sans blancs de fin, le reste à
  // zéro : SetDate(autre.GetDate()) sans texte intermédiaire (une copie d'événement en fait une).
  size_t n = strnlen(autre.Date, 10);
  while (n > 0 && static_cast<unsigned char>(autre.Date[n - 1]) <= ' ') --n;
  std::memset(Date, 0, sizeof Date);
  std::memcpy(Date, autre.Date, n);
}

TDateRQ::TDateRQ(char calendrier, std::string_view date) : TDateRQ() {
  Calendrier = calendrier;
  SetDate(date);
}

TDateRQ::TDateRQ(int annee, std::string_view debut) : TDateRQ() {
  Calendrier = 'G';
  SetDate(std::string(debut) + Zeros(annee, 4));
}

TDateRQ::TDateRQ(std::string_view texte) : TDateRQ() {
  if (texte.size() == 15 && texte[0] == '#') {
    // L'acte est cadré à droite dans la forme exportée : ses blancs ne font pas partie de l'acte.
    SetActe(Trim(texte.substr(1, 2)));
    Calendrier = texte[3];
    SetDate(texte.substr(4, 10));
    return;
  }
  Calendrier = rqbase::DateFormatRepublicain(texte) ? 'R' : 'G';
  std::string date(texte);
  AnalyseDate(date, Calendrier, true);
  if (date.size() <= 10) SetDate(date);
}

TDateRQ& TDateRQ::operator=(const TDateRQ& autre) {
  std::memmove(this, &autre, sizeof(TDateRQ));
  return *this;
}

bool TDateRQ::MemesOctets(const TDateRQ& autre) const { return std::memcmp(this, &autre, sizeof(TDateRQ)) == 0; }

// --- Accès -------------------------------------------------------------------

void TDateRQ::SetDate(std::string_view date) {
  std::memset(Date, 0, sizeof Date);
  std::memcpy(Date, date.data(), std::min<std::size_t>(date.size(), 10));
}

std::string TDateRQ::TexteBrut() const { return std::string(Date, strnlen(Date, 10)); }

std::string TDateRQ::GetDate() const { return SansBlancsFin(TexteBrut()); }

std::string TDateRQ::GetActe() const { return std::string(Acte, strnlen(Acte, 2)); }

void TDateRQ::SetActe(std::string_view acte) {
  std::memset(Acte, 0, sizeof Acte);
  std::memcpy(Acte, acte.data(), std::min<std::size_t>(acte.size(), 2));
}

std::string TDateRQ::ActeNormalise() const { return MajusculesCp1252(Trim(GetActe())); }

std::string TDateRQ::TexteAnnee() const {
  const std::string texte = GetDate();
  return Calendrier == 'R' ? Milieu(texte, 9, 2) : Milieu(texte, 7, 4);
}

std::string TDateRQ::ExportInString() const {
  if (Acte[0] == 0 && Date[0] == 0) return {};
  std::string acte = GetActe();
  while (acte.size() < 2) acte.insert(acte.begin(), ' ');
  return "#" + acte + (Calendrier ? Calendrier : 'G') + GetDate() + "#";
}

// --- Formes et acte ----------------------------------------------------------

bool TDateRQ::DateFormatGregorien() const {
  return Calendrier == 'G' || Calendrier == 0 || Calendrier == 'F' || Calendrier == ' ';
}

bool TDateRQ::DateFormatFourchette() const {
  std::string texte = TexteBrut();
  if (!texte.empty() && texte.back() == ' ') texte.pop_back();
  return rqbase::DateFormatFourchette(texte);
}

bool TDateRQ::DateFormatFourchetteAVC4chiffre() const {
  std::string texte = TexteBrut();
  if (!texte.empty() && texte.back() == ' ') texte.pop_back();
  return rqbase::DateFormatFourchetteAVC4chiffre(texte);
}

bool TDateRQ::ActeVide() const {
  const std::string acte = GetActe();
  return acte.empty() || acte == " ";
}

bool TDateRQ::IsActeInferieur() const { return ActeNormalise() == "<"; }
bool TDateRQ::IsActeSuperieur() const { return ActeNormalise() == ">"; }

bool TDateRQ::IsActeImprecis() const {
  const std::string a = ActeNormalise();
  return a == "~" || a == "CA" || a == "?";
}

bool TDateRQ::NotActePrecisionDate() const {
  const std::string a = ActeNormalise();
  return a != "<" && a != ">" && a != "?" && a != "~" && a != "CA";
}

// --- Vide, possible, précise -------------------------------------------------

bool TDateRQ::DateVide0() const { return Date[0] == 0; }

bool TDateRQ::DateVide() const {
  if (DateVide0()) return true;
  const std::string brut = TexteBrut();
  return brut == "../../...." || brut == "../..../.." || Trim(brut) == "..../....";
}

bool TDateRQ::Vide() const { return DateVide() && ActeVide(); }

bool TDateRQ::AnneeDateVide(std::string* annee) const {
  TDateRQ copie(*this);
  if (copie.GetDate().empty()) copie.SetDate("../../....");
  const std::string texte = copie.RecupAnneeChn(false);
  if (annee) *annee = texte;
  return ToIntInString(texte) == 0;
}

bool TDateRQ::CalculDatePossible() const {
  if (DateVide()) return false;
  const std::string texte = GetDate();
  if (DateFormatFourchette() || Calendrier == 'A') return true;
  if (DateFormatGregorien()) return rqbase::DateFormatGregorien(texte);
  if (Calendrier == 'R') return rqbase::DateFormatRepublicain(texte);
  if (Calendrier == 'H') return rqbase::DateFormatHebraique(texte);
  return false;
}

bool TDateRQ::IsDatePrecise(int* annee, int* mois, int* jour, std::string_view s, bool surChaine) const {
  if (annee) *annee = 0;
  if (mois) *mois = 0;
  if (jour) *jour = 0;
  const std::string texte = surChaine ? std::string(s) : GetDate();
  if (rqbase::DateFormatFourchette(texte)) return false;
  int j = 0, m = 0, a = 0;
  RecupJourMoisAnnee(texte, j, m, a);
  if (annee) *annee = a;
  if (mois) *mois = m;
  if (jour) *jour = j;
  return j != 0 && m != 0 && a != 0;
}

bool TDateRQ::DateNiPreciseNiFourchette(std::string_view s) const {
  int a = 0, m = 0, j = 0;
  const bool precise = IsDatePrecise(&a, &m, &j, s, true);
  return !precise && !rqbase::DateFormatFourchetteAVC4chiffre(s) && (a == 0 || j != 0);
}

bool TDateRQ::DateIncomplete(std::string* court, std::string* nom, bool espace) const {
  const std::string texte = GetDate();
  std::string c, n;
  bool nomme = false;
  if (Calendrier == 'R') {
    const std::string code = Milieu(texte, 4, 4);
    if (RetourneMoisRepublicain(code, n) != 0) {
      c = MinusculesCp1252(code);
      nomme = true;
    }
  } else {
    const int m = ToIntInString(Milieu(texte, 4, 2));
    nomme = (Calendrier == 'H' ? RetourneMoisHebraique(m, c, n) : RetourneMoisGregorien(m, c, n)) != 0;
  }
  if (!nomme) c = n = "";
  if (espace) {
    if (!c.empty()) c += ' ';
    if (!n.empty()) n += ' ';
  }
  if (court) *court = c;
  if (nom) *nom = n;
  if (!nomme) return true;
  return ToIntInString(Milieu(texte, 1, 2)) == 0 || ToIntInString(TexteAnnee()) == 0;
}

// --- Années ------------------------------------------------------------------

void TDateRQ::RecupAnneeFourchette(bool conv, std::string* min, std::string* max, int* iMin, int* iMax,
                                   int* iMoyen) const {
  const std::string texte = GetDate();
  const bool republicain = Calendrier == 'R';
  std::string a = republicain ? Milieu(texte, 1, 2) : Milieu(texte, 1, 4);
  std::string b = republicain ? Milieu(texte, 4, 2) : Milieu(texte, 6, 4);
  if (conv && (republicain || Calendrier == 'H')) {
    auto convertit = [&](std::string& s) {
      const int v = ToIntInString(s);
      if (v == 0) {
        if (republicain) s = "....";
        return;
      }
      s = Zeros(republicain ? ConvAnneeRepubGreg(v) : ConvAnneeHebrGreg(v), 4);
    };
    convertit(a);
    convertit(b);
  }
  const int va = ToIntInString(a), vb = ToIntInString(b);
  if (min) *min = a;
  if (max) *max = b;
  if (iMin) *iMin = va;
  if (iMax) *iMax = vb;
  if (iMoyen) *iMoyen = (va && vb) ? (va + vb) / 2 : (va ? va : vb);
}

std::string TDateRQ::RecupAnneeFourchetteEstim(bool conv, int* pMin, int* pMax, int* pDefaut, int* pMoyen,
                                               bool estime) const {
  int localMin = 0, localMax = 0, moyen = 0;
  if (!pMin) pMin = &localMin;
  if (!pMax) pMax = &localMax;
  RecupAnneeFourchette(conv, nullptr, nullptr, pMin, pMax, &moyen);
  if (estime) {
    // Une borne ouverte se ferme à cent ans de l'autre.
    if (*pMax == 0 && *pMin != 0)
      *pMax = *pMin + 100;
    else if (*pMin == 0 && *pMax != 0)
      *pMin = *pMax - 100;
    if (*pMin && *pMax) moyen = (*pMin + *pMax) / 2;
  }
  if (pMoyen) *pMoyen = moyen;
  if (*pMin == 0 && *pMax == 0 && pDefaut) return std::to_string(*pDefaut);
  return std::to_string(moyen);
}

std::string TDateRQ::RecupAnneeChn(bool conv, int* pMin, int* pMax, int* pDefaut, int* pMoyen, bool estime) const {
  if (DateFormatFourchette()) return RecupAnneeFourchetteEstim(conv, pMin, pMax, pDefaut, pMoyen, estime);
  std::string annee = TexteAnnee();
  if (conv && (Calendrier == 'R' || Calendrier == 'H')) {
    if (const int v = ToIntInString(annee); v != 0)
      annee = Zeros(Calendrier == 'R' ? ConvAnneeRepubGreg(v) : ConvAnneeHebrGreg(v), 4);
  }
  const int v = ToIntInString(annee);
  if (pMin) *pMin = v;
  if (pMax) *pMax = v;
  if (pMoyen) *pMoyen = v;
  return annee;
}

int TDateRQ::RecupAnnee(bool conv, int* pMin, int* pMax, int* pDefaut, int* pMoyen, bool estime) {
  AjusteDateFourchette();
  return ToIntInString(RecupAnneeChn(conv, pMin, pMax, pDefaut, pMoyen, estime));
}

float TDateRQ::RecupAnneeFloat(bool conv, int* pMin, int* pMax, bool* pFourchette) {
  if (pMin) *pMin = 0;
  if (pMax) *pMax = 0;
  if (pFourchette) *pFourchette = false;
  AjusteDateFourchette();
  if (DateFormatFourchette()) {
    RecupAnneeFourchetteEstim(conv, pMin, pMax, nullptr, nullptr, false);
    if (pFourchette) *pFourchette = true;
    return kIncalculableF;
  }
  int j = 0, m = 0, a = 0;
  RecupJourMoisAnnee(conv ? ConvVersGreg() : GetDate(), j, m, a);
  ModifMinMaxJourMoisAnnee(j, m, true);
  if (a == 0) return kIncalculableF;
  const TDateRQ debut('G', "01/01/" + Zeros(a, 4));
  const TDateRQ date('G', Zeros(j, 2) + "/" + Zeros(m, 2) + "/" + Zeros(a, 4));
  const int n = CalcJours(debut, date);
  // Voulu : même règle de longueur d'année que DateGregorienOk (séculaires avant 1582).
  const int longueur = AnneeBissextileRQ(a) ? 366 : 365;
  if (n == kIncalculable) return static_cast<float>(a);
  return static_cast<float>(a) + static_cast<float>(n) / static_cast<float>(longueur);
}

std::string TDateRQ::ConstruitActeAnneeChn(int annee, bool& vide, bool inferieur) const {
  vide = false;
  float an = 0;
  TInterval<float> intervalle;
  CalculAnneeFloatOuFourchette(an, intervalle);
  const float largeur = intervalle.Largeur();
  if (largeur == 0.0f) return std::to_string(static_cast<int>(intervalle.Inf));
  if (largeur < 3.0f) return "~" + std::to_string(static_cast<int>(intervalle.Milieu()));
  if (annee != 0) {
    vide = DateVide();
    return (inferieur ? "<" : ">") + std::to_string(annee);
  }
  vide = true;
  return "?";
}

void TDateRQ::CalculAnneeFloatOuFourchette(float& annee, TInterval<float>& intervalle) const {
  const bool avantJC = Calendrier == 'A';
  if (DateFormatFourchette()) {
    int a = 0, b = 0;
    RecupAnneeFourchetteEstim(true, &a, &b, nullptr, nullptr, true);
    float fa = static_cast<float>(a), fb = static_cast<float>(b);
    if (avantJC) {
      fa = -fa;
      fb = -fb;
    }
    if (a != 0) intervalle.SetInf(fa);
    if (b != 0) intervalle.SetSup(fb + 0.99f);
    annee = kIncalculableF;
    return;
  }
  int j = 0, m = 0, a = 0;
  ExtractJourMoisAnnee(j, m, a, false);
  if (a == 0) {
    annee = kIncalculableF;
    return;
  }
  const float y = avantJC ? -static_cast<float>(a) : static_cast<float>(a);
  auto valeur = [y](int jj, int mm) {
    return y + static_cast<float>(mm - 1) / 12.0f + static_cast<float>(jj) * (1.0f / 365.242f);
  };
  const std::string acte = ActeNormalise();
  if (acte != "<") {
    int jj = j, mm = m;
    ModifMinMaxJourMoisAnnee(jj, mm, true);
    intervalle.SetInf(valeur(jj, mm));
  }
  if (acte != ">") {
    int jj = j, mm = m;
    ModifMinMaxJourMoisAnnee(jj, mm, false);
    intervalle.SetSup(valeur(jj, mm));
  }
  if (acte == "CA" || acte == "~") intervalle.Gonfle(1.0f, -1.0f);
  annee = intervalle.Largeur() == 0.0f ? intervalle.Inf : kIncalculableF;
  if (avantJC && annee != kIncalculableF && !(annee < 0.0f) && annee != 0.0f) annee *= -1.0f;
}

// --- Fourchettes -------------------------------------------------------------

void TDateRQ::AjusteDateFourchette() {
  if (DateFormatFourchette()) return;
  const std::string annee = TexteAnnee();
  if (ToIntInString(annee) == 0) return;
  const std::string acte = ActeNormalise();
  if (acte == "<" || acte == ">") {
    SetDate(annee + "/" + annee);
  } else if (acte == "~" || acte == "CA") {
    SetDate(annee + "/" + annee);
    SetActe("");
  }
}

void TDateRQ::TransformeFourchetteDate() {
  if (!DateFormatFourchette()) return;
  int a = 0, b = 0;
  RecupAnneeFourchette(true, nullptr, nullptr, &a, &b, nullptr);
  if (a == 0 && b == 0)
    SetDate("../../....");
  else if (a == 0)
    SetDate("00/00/" + Zeros(b - 1, 4));
  else if (b == 0)
    SetDate("00/00/" + Zeros(a + 1, 4));
  else
    SetDate("00/00/" + Zeros((a + b) / 2, 4));
  // Les bornes ont été converties : le texte est grégorien.
  if (Calendrier != 'A') Calendrier = 'G';
}

bool TDateRQ::CalculDateMoyenneFourchette(bool conv) {
  if (!DateFormatFourchette()) return false;
  int moyen = 0;
  RecupAnneeFourchette(false, nullptr, nullptr, nullptr, nullptr, &moyen);
  if (moyen == 0) return false;
  if (conv) {
    if (Calendrier == 'H') {
      Calendrier = 'G';
      SetDate("01/01/" + Zeros(ConvAnneeHebrGreg(moyen), 4));
    } else if (Calendrier == 'R') {
      Calendrier = 'G';
      SetDate("01/01/" + Zeros(ConvAnneeRepubGreg(moyen), 4));
    } else {
      SetDate("01/01/" + Zeros(moyen, 4));
    }
  } else if (Calendrier == 'R') {
    SetDate("01/PLUV/" + Zeros(moyen, 2));
  } else {
    SetDate("01/01/" + Zeros(moyen, 4));
  }
  return true;
}

TDateRQ TDateRQ::GetDateLimiteFourchette(bool maxi) const {
  TDateRQ copie(*this);
  copie.Acte[0] = 0;  // plus aucun ajustement ne verra le < ou le >
  const std::string acte = GetActe();
  const bool superieur = acte.find('>') != std::string::npos, inferieur = acte.find('<') != std::string::npos;
  if (superieur || inferieur) {
    std::string bas, haut;
    if (DateFormatFourchette())
      RecupAnneeFourchette(false, &bas, &haut, nullptr, nullptr, nullptr);
    else
      bas = haut = TexteAnnee();
    const std::string points(Calendrier == 'R' ? 2 : 4, '.');
    copie.SetDate(superieur ? haut + "/" + points : points + "/" + bas);
  }
  int bas = 0, haut = 0;
  bool fourchette = false;
  TDateRQ essai(copie);
  essai.RecupAnneeFloat(true, &bas, &haut, &fourchette);
  if (!fourchette) return copie;
  copie.SetDate(maxi ? "31/12/" + Zeros(haut, 4) : "01/01/" + Zeros(bas, 4));
  if (copie.Calendrier != 'A') copie.Calendrier = 'G';
  return copie;
}

bool TDateRQ::DateDansFourchette(std::string_view min, std::string_view max) const {
  TDateRQ copie(*this);
  const int annee = copie.RecupAnnee(true);
  const int bas = ToIntInString(min), haut = ToIntInString(max);
  return (bas == 0 || annee >= bas) && (haut == 0 || annee <= haut);
}


void TDateRQ::AjusteFourchette(short& min, short& max, bool fourchette) const {
  auto elargit = [&](int v) {
    if (v == 0) return;
    if (min == 0 || v < min) min = static_cast<short>(v);
    if (max == 0 || v > max) max = static_cast<short>(v);
  };
  TDateRQ copie(*this);
  if (fourchette && copie.DateFormatFourchette()) {
    int a = 0, b = 0;
    copie.RecupAnneeFourchette(true, nullptr, nullptr, &a, &b, nullptr);
    elargit(a);
    elargit(b);
  } else {
    elargit(copie.RecupAnnee(true));
  }
}

void TDateRQ::AjusteFourchette(float& min, float& max, bool fourchette) const {
  auto elargit = [&](float v) {
    if (v == 0.0f || v == kIncalculableF) return;
    if (min == 0.0f || v < min) min = v;
    if (max == 0.0f || v > max) max = v;
  };
  TDateRQ copie(*this);
  int a = 0, b = 0;
  bool estFourchette = false;
  const float v = copie.RecupAnneeFloat(true, &a, &b, &estFourchette);
  if (fourchette && estFourchette) {
    elargit(static_cast<float>(a));
    elargit(static_cast<float>(b));
  } else {
    elargit(v);
  }
}

bool TDateRQ::LimiteAnneeMin(int annee) const {
  TDateRQ copie(*this);
  return annee < copie.RecupAnnee(true);
}

// --- Parties -----------------------------------------------------------------

void TDateRQ::ExtractJourMoisAnnee(int& jour, int& mois, int& annee, bool minimum) const {
  jour = mois = annee = 0;
  if (DateFormatFourchette()) return;
  const std::string texte = ConvVersGreg();
  jour = ToIntInString(Milieu(texte, 1, 2));
  mois = ToIntInString(Milieu(texte, 4, 2));
  annee = ToIntInString(Milieu(texte, 7, 4));
  if (minimum) ModifMinMaxJourMoisAnnee(jour, mois, true);
}

void TDateRQ::ExtractJourMoisAnneeGregorien(int& jour, int& mois, int& annee, bool minimum) {
  ConvVersGregInterne();
  ExtractJourMoisAnnee(jour, mois, annee, minimum);
}

void TDateRQ::ModifMinMaxJourMoisAnnee(int& jour, int& mois, bool minimum) {
  if (jour == 0) jour = minimum ? 1 : 31;
  if (mois == 0) mois = minimum ? 1 : 12;
}

void TDateRQ::SetJourMoisAnnee(int jour, int mois, int annee) {
  SetDate((jour ? Zeros(jour, 2) : std::string("..")) + "/" + (mois ? Zeros(mois, 2) : std::string("..")) + "/" +
          (annee ? Zeros(annee, 4) : std::string("....")));
  Calendrier = 'G';
}

std::string TDateRQ::RetAnneeMoisJour() const {
  const std::string texte = GetDate();
  return Milieu(texte, 7, 4) + Milieu(texte, 4, 2) + Milieu(texte, 1, 2);
}

std::string TDateRQ::ConvVersGreg() const {
  const std::string texte = GetDate();
  if (Calendrier == 'R')
    return rqbase::DateFormatFourchette(texte) ? FourchetteRepublicaineEnGregorien(texte) : ConvRepublicainGregorien(texte);
  if (Calendrier == 'H') return ConvHebraiqueGregorien(texte);
  return texte;
}

void TDateRQ::ConvVersGregInterne() {
  if (Calendrier == 'R' || Calendrier == 'H') SetDate(ConvVersGreg());
  if (Calendrier != 'A') Calendrier = 'G';
}

// --- Arithmétique ------------------------------------------------------------

bool TDateRQ::Decalage(int n) {
  const int ans = n / 365;
  const int reste = n - 365 * ans;
  const int mois = static_cast<int>(reste / 30.437 + 0.1);
  const int jours = static_cast<int>(reste - mois * 30.437);
  int j = 0, m = 0, a = 0;
  ExtractJourMoisAnnee(j, m, a, true);
  if (a == 0) return false;
  j += jours;
  if (j > 31) {
    j %= 31;
    ++m;
  } else if (j < 1) {
    j += 31;
    --m;
  }
  m += mois;
  if (m > 12) {
    m %= 12;
    ++a;
  } else if (m < 1) {
    m += 12;
    --a;
  }
  a += ans;
  // Un décalage de plus d'un mois (d'un an) ne garde pas le jour (le mois).
  if (n > 30) j = 0;
  if (n > 365) m = 0;
  SetJourMoisAnnee(j, m, a);
  return true;
}

// --- Mots --------------------------------------------------------------------

std::string TDateRQ::PrefixeActe(std::string_view acte, bool annee, bool avecActe) {
  const std::string a = Trim(acte);
  const std::string majuscules = MajusculesCp1252(a);
  if (a == ">") return PreciseDate(annee ? 2 : 18);
  if (a == "<") return PreciseDate(annee ? 1 : 17);
  if (a == "~" || majuscules == "CA") return PreciseDate(annee ? 32 : 48);
  std::string r = PreciseDate(annee ? 8 : 16);
  if (!a.empty() && avecActe) r += "(" + a + ") ";
  return r;
}

std::string TDateRQ::RedigeFourchette() const {
  if (!DateFormatFourchette()) return {};
  std::string bas, haut;
  RecupAnneeFourchette(false, &bas, &haut, nullptr, nullptr, nullptr);
  const bool aBas = !bas.empty() && !QueDesPoints(bas), aHaut = !haut.empty() && !QueDesPoints(haut);
  if (!aBas && aHaut) return PreciseDate(1) + haut;
  if (aBas && !aHaut) return PreciseDate(2) + bas;
  if (aBas && aHaut) return bas == haut ? PreciseDate(32) + bas : PreciseDate(64) + bas + PreciseDate(4) + haut;
  return {};
}

std::string TDateRQ::RedigeAnnee(bool avecActe) const {
  std::string annee;
  if (AnneeDateVide(&annee)) return {};
  return PrefixeActe(GetActe(), true, avecActe) + (Calendrier == 'R' ? "l'an " : "") + annee;
}

std::string TDateRQ::PlaceJour(bool espace) const {
  if (DateVide()) return {};
  std::string jour = Milieu(GetDate(), 1, 2);
  if (jour == ".." || jour == "00") jour.clear();
  if (!jour.empty() && jour[0] == '0') jour.erase(0, 1);
  if (jour == "1") jour = "1er";
  if (espace && !jour.empty()) jour += ' ';
  return jour;
}

std::string TDateRQ::FormatDateTilde() const {
  if (DateFormatFourchette()) {
    std::string bas, haut;
    RecupAnneeFourchette(false, &bas, &haut, nullptr, nullptr, nullptr);
    if (bas.empty() || QueDesPoints(bas)) bas = "....";
    if (haut.empty() || QueDesPoints(haut)) haut = "....";
    return bas + " ~ " + haut;
  }
  return " ~ " + TexteAnnee();
}

int TDateRQ::RetourneJourSemaine(std::string& abrege, std::string& complet, short* numero, bool espace) const {
  abrege.clear();
  complet.clear();
  if (numero) *numero = 0;
  TDateRQ copie(*this);
  copie.ConvVersGregInterne();
  const std::string texte = copie.GetDate();
  if (!rqbase::DateFormatGregorien(texte)) return 0;
  const int j = ToIntInString(Milieu(texte, 1, 2)), m = ToIntInString(Milieu(texte, 4, 2)),
            a = ToIntInString(Milieu(texte, 7, 4));
  if (j == 0 || m == 0 || a == 0 || !JourOk(j, m, a)) return 0;
  const int jour = JourSemaine(j, m, a);
  const std::string rangee = Ressource(1840 + jour);
  abrege = rangee.substr(0, 3);
  complet = rangee.size() > 4 ? rangee.substr(4) : std::string();
  if (espace) {
    abrege += ' ';
    complet += ' ';
  }
  if (numero) *numero = static_cast<short>(jour);
  return jour + 1;
}

int TDateRQ::GetSigneZodiaque() {
  ConvVersGregInterne();
  const std::string texte = GetDate();
  const int k = ToIntInString(Milieu(texte, 4, 2)) * 100 + ToIntInString(Milieu(texte, 1, 2));
  struct TSigne {
    int de, a;
  };
  static constexpr TSigne kSignes[12] = {{321, 420},  {421, 520},  {521, 621},   {622, 723},
                                         {724, 823},  {824, 923},  {924, 1023},  {1024, 1122},
                                         {1123, 1221}, {1222, 1231}, {121, 219}, {220, 320}};
  for (int i = 0; i < 12; ++i)
    if (k >= kSignes[i].de && k <= kSignes[i].a) return i;
  if (k >= 101 && k <= 120) return 9;
  return -1;
}

std::string TDateRQ::DeterminerPositionFinDeSaison(int jour) {
  if (jour == 20) return "Avant dernier jour ";
  if (jour == 21) return "Dernier jour ";
  if (jour < 12) return "Durant le dernier mois ";
  return "Au cours des derniers jours ";
}

std::string TDateRQ::DeterminerPositionDebutDeSaison(int jour) {
  if (jour == 22) return "Premier jour ";
  if (jour == 23) return "Deuxième jour ";
  if (jour == 24) return "Troisième jour ";
  return "Au cours des premiers jours ";
}

int TDateRQ::GetSaison(std::string* texte) const {
  int j = 0, m = 0, a = 0;
  RecupJourMoisAnnee(GetDate(), j, m, a);
  std::string t = "Saison inconnue";
  int saison = -1;
  // Voulu : les saisons tournent toujours entre le 21 et le 22 du mois.
  auto bascule = [&](const char* finDe, int saisonFin, const char* debutDe, int saisonDebut) {
    if (j == 0) return;
    if (j <= 21) {
      t = DeterminerPositionFinDeSaison(j) + finDe;
      saison = saisonFin;
    } else {
      t = DeterminerPositionDebutDeSaison(j) + debutDe;
      saison = saisonDebut;
    }
  };
  switch (m) {
    case 1: t = "Durant le deuxième mois de l'hiver"; saison = 3; break;
    case 2: t = "Durant le troisième mois de l'hiver"; saison = 3; break;
    case 3: bascule("de l'hiver", 3, "du printemps", 0); break;
    case 4: t = "Durant le deuxième mois du printemps"; saison = 0; break;
    case 5: t = "Durant le troisième mois du printemps"; saison = 0; break;
    case 6: bascule("du printemps", 0, "de l'été", 1); break;
    case 7:
      t = j == 1 ? "Au cours des premiers jours de l'été" : "Durant le deuxième mois de l'été";
      saison = 1;
      break;
    case 8: t = "Durant le troisième mois de l'été"; saison = 1; break;
    case 9: bascule("de l'été", 1, "de l'automne", 2); break;
    case 10:
      t = j == 1 ? "Au cours des premiers jours de l'automne" : "Durant le deuxième mois de l'automne";
      saison = 2;
      break;
    case 11: t = "Durant le troisième mois de l'automne"; saison = 2; break;
    case 12: bascule("de l'automne", 2, "de l'hiver", 3); break;
    default: break;
  }
  if (texte) *texte = t;
  return saison;
}

// --- Fonctions libres --------------------------------------------------------

void MajFourchetteAnnee(TDateRQ& fourchette, std::string_view date) {
  std::string texte(date);
  if (rqbase::DateFormatRepublicain(texte)) texte = ConvRepublicainGregorien(texte);
  const int annee = rqbase::DateFormatGregorien(texte) ? ToIntInString(Milieu(texte, 7, 4)) : ToIntInString(texte);
  if (annee == 0) return;
  TDateRQ copie(fourchette);
  copie.ConvVersGregInterne();
  int bas = 0, haut = 0;
  if (copie.DateFormatFourchette()) {
    copie.RecupAnneeFourchette(false, nullptr, nullptr, &bas, &haut, nullptr);
  } else {
    bas = haut = copie.RecupAnnee(false);
  }
  bas = bas ? std::min(bas, annee) : annee;
  haut = haut ? std::max(haut, annee) : annee;
  fourchette.SetDate(Zeros(bas, 4) + "/" + Zeros(haut, 4));
  if (fourchette.GetCalendrier() != 'A') fourchette.SetCalendrier('G');
}

}  // namespace rqbase
