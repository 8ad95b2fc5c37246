#include "rqbase/dates/bo_jours.h"

#include <algorithm>
#include <cstring>
#include <tuple>

#include "rqbase/dates/analysedate.h"
#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/conversions.h"
#include "rqbase/dates/convjuif.h"
#include "rqbase/dates/interne.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/util/chaines.h"

namespace rqbase {
using namespace dates_interne;

namespace {

bool QueDesPoints(std::string_view s) {
  return !s.empty() && std::all_of(s.begin(), s.end(), [](char c) { return c == '.'; });
}

int Signe(int v) { return (v > 0) - (v < 0); }

// SansBlancsFin sans copie.
std::string_view SansBlancsFinVue(std::string_view texte) {
  while (!texte.empty() && static_cast<unsigned char>(texte.back()) <= ' ') texte.remove_suffix(1);
  return texte;
}

// Fourchette républicaine "aa/bb" -> "aaaa/bbbb" grégorienne ; une borne en points reste en points.
std::string FourchetteRepublicaineEnGregorien(std::string_view date) {
  const std::size_t largeur = date.size() == 9 ? 4 : 2;
  auto borne = [](const std::string& s) {
    const int v = ToIntInString(s);
    const int g = v ? ConvAnneeRepubGreg(v) : 0;
    return g ? Zeros(g, 4) : std::string("....");
  };
  return borne(Milieu(date, 1, largeur)) + "/" + borne(Milieu(date, largeur + 2, largeur));
}

// Jour de la semaine, 0 = dimanche : julien avant 1582, grégorien ensuite, toute
// l'année 1582 comprise (mois d'avant la réforme inclus).
int JourSemaine(int jour, int mois, int annee) {
  const std::int64_t jdn = annee < 1582 ? JdnJulien(annee, mois, jour) : JdnGregorien(annee, mois, jour);
  return static_cast<int>(((jdn + 1) % 7 + 7) % 7);
}

int LongueurMoisRQ(int mois, int annee) {
  static constexpr int kLongueurs[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (mois < 1 || mois > 12) return 0;
  return (mois == 2 && AnneeBissextileRQ(annee)) ? 29 : kLongueurs[mois - 1];
}

// --- Décompte des jours -----------------------------------------------------

constexpr std::int64_t kAnneeBase = -4000;

std::int64_t SeculairesAvant(std::int64_t annee) {  // multiples de 100 dans [kAnneeBase, annee)
  return DivBas(annee - 1, 100) - DivBas(kAnneeBase - 1, 100);
}

std::int64_t GregoriennesJusqua(std::int64_t n) { return n / 4 - n / 100 + n / 400; }

// Rang d'un jour valide dans le décompte de ce programme : années bissextiles selon
// AnneeBissextileRQ et saut du 10 au 20 décembre 1582.
std::int64_t RangJour(int jour, int mois, int annee) {
  std::int64_t n = 365 * (static_cast<std::int64_t>(annee) - kAnneeBase);
  n += SeculairesAvant(std::min<std::int64_t>(annee, 1582));
  if (annee > 1583) n += GregoriennesJusqua(annee - 1) - GregoriennesJusqua(1582);
  if (annee > 1582) n -= 10;
  for (int m = 1; m < mois; ++m) n += LongueurMoisRQ(m, annee);
  n += jour;
  if (annee == 1582 && mois == 12 && jour >= 20) n -= 10;
  return n;
}

bool DansLeSaut(int jour, int mois, int annee) { return annee == 1582 && mois == 12 && jour >= 10 && jour <= 19; }

struct TResultatMarche {
  int jours = 0, annees = 0, mois = 0, joursDepuisAnniversaire = 0;
};

// La marche jour par jour sur des mois de 31 cases : chaque case que
// DateGregorienOk refuse est sautée, et le 10 décembre 1582 mène au 20.
TResultatMarche Marche(int j1, int m1, int a1, int j2, int m2, int a2) {
  TResultatMarche r;
  int j = j1, m = m1, a = a1;
  auto avant = [&] { return std::tie(a, m, j) < std::tie(a2, m2, j2); };
  while (avant()) {
    do {
      if (++j > 31) {
        j = 1;
        if (++m > 12) {
          m = 1;
          ++a;
        }
      }
    } while (!DateGregorienOk(j, m, a));
    if (a == 1582 && m == 12 && j == 10) j = 20;
    ++r.jours;
    ++r.joursDepuisAnniversaire;
    // Même quantième dans le mois ; un 30 ou 31 tombe le 1er mars, un 31 le 30
    // d'un mois de 30 jours.
    if (j == j1 || (m == 3 && j == 1 && j1 > 29) || (j1 == 31 && j == 30 && LongueurMoisRQ(m, a) == 30)) ++r.mois;
    // Anniversaire : même jour et même mois, ou le 1er mars pour un 29 février
    // les années qui n'en ont pas.
    if ((m == m1 && j == j1) || (m1 == 2 && j1 == 29 && m == 3 && j == 1 && !AnneeBissextileRQ(a))) {
      ++r.annees;
      r.joursDepuisAnniversaire = 0;
      r.mois = 0;
    }
  }
  return r;
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

TDateRQ::TDateRQ(const TDateRQ& autre) : TDateRQ() {
  std::memcpy(Acte, autre.Acte, sizeof Acte);
  Calendrier = autre.Calendrier == '?' ? 'G' : autre.Calendrier;
  SetDate(autre.GetDate());
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

int TDateRQ::DateIn(const TDateRQ& min, const TDateRQ& max) const {
  const int n = CalcNbJoursAbs(true), bas = min.CalcNbJoursAbs(true), haut = max.CalcNbJoursAbs(true);
  if (n == kIncalculable) return 1;
  if (bas == kIncalculable || haut == kIncalculable) return -1;
  if (n < bas) return -1;
  if (n > haut) return 1;
  return 0;
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

int TDateRQ::CalcNbJoursAbs(bool exact, std::string_view reference) const {
  const TDateRQ ref('G', reference);
  bool inverse = false;
  const int n = CalcJours(ref, *this, nullptr, nullptr, nullptr, !exact, &inverse, nullptr);
  if (n == kIncalculable) return n;
  return inverse ? -n : n;
}

// --- Ordre -------------------------------------------------------------------

// Le champ de date d'une copie de travail, tel que CompareDate le ferait évoluer,
// sur la pile : mêmes lectures que TexteBrut, GetDate et DateFormatFourchette.
namespace {

// strnlen, mais en ligne : il est appelé plusieurs fois par date comparée.
std::size_t LongueurZ(const char* p, std::size_t maxi) {
  std::size_t n = 0;
  while (n < maxi && p[n] != 0) ++n;
  return n;
}

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

int CalcJours(TDateRQ d1, TDateRQ d2, float* age, int* annees, int* jours, bool approx, bool* inverse, int* mois) {
  // Sans demande d'âge, d'années, de jours ni de mois, le décompte se fait sans marcher.
  const bool compteSeul = !age && !annees && !jours && !mois;
  float ageLocal = 0;
  int anneesLocal = 0, joursLocal = 0, moisLocal = 0;
  bool inverseLocal = false;
  if (!age) age = &ageLocal;
  if (!annees) annees = &anneesLocal;
  if (!jours) jours = &joursLocal;
  if (!mois) mois = &moisLocal;
  if (!inverse) inverse = &inverseLocal;
  *inverse = false;
  *age = 0;
  *annees = *jours = *mois = 0;

  d1.ConvVersGregInterne();
  d2.ConvVersGregInterne();
  if (approx) {
    if (d1.DateFormatFourchette()) d1.TransformeFourchetteDate();
    if (d2.DateFormatFourchette()) d2.TransformeFourchetteDate();
  }
  if (d1.AnneeDateVide() || d2.AnneeDateVide()) {
    *age = kIncalculableF;
    *annees = *jours = *mois = kIncalculable;
    return kIncalculable;
  }
  if (TDateRQ::CompareDate(d1, d2, 0) > 0) {
    std::swap(d1, d2);
    *inverse = true;
  }
  int j1, m1, a1, j2, m2, a2;
  d1.ExtractJourMoisAnnee(j1, m1, a1, true);
  d2.ExtractJourMoisAnnee(j2, m2, a2, true);
  if (a1 == 0 || a2 == 0 || !DateGregorienOk(j1, m1, a1) || !DateGregorienOk(j2, m2, a2)) {
    *age = kIncalculableF;
    return kIncalculable;
  }
  if (d1.DateFormatAvantJC()) a1 = -a1;
  if (d2.DateFormatAvantJC()) a2 = -a2;

  int resultat;
  if (approx) {
    *annees = a2 - a1;
    *mois = m2 - m1;
    resultat = 365 * (a2 - a1) + 30 * (m2 - m1) + (j2 - j1);
    *jours = resultat - 365 * *annees;
  } else if (compteSeul && !DansLeSaut(j1, m1, a1) && !DansLeSaut(j2, m2, a2)) {
    const std::int64_t n = RangJour(j2, m2, a2) - RangJour(j1, m1, a1);
    resultat = n > 0 ? static_cast<int>(n) : 0;
  } else {
    const TResultatMarche r = Marche(j1, m1, a1, j2, m2, a2);
    resultat = r.jours;
    *annees = r.annees;
    *mois = r.mois;
    *jours = r.joursDepuisAnniversaire;
  }
  const float fraction = static_cast<float>(*jours) / 365.0f;
  *age = static_cast<float>(*annees) + fraction;
  // Un âge arrondi ne doit montrer ni un nombre entier trop tôt, ni un nombre nu trop tard.
  if (fraction > 0.995f)
    *age -= 0.006f;
  else if (fraction < 0.005f && *jours != 0)
    *age += 0.005f;
  return resultat;
}

int CalculAnneeDateDate(const TDateRQ& d1, const TDateRQ& d2) {
  bool inverse = false;
  const int n = CalcJours(d1, d2, nullptr, nullptr, nullptr, true, &inverse, nullptr);
  if (n == kIncalculable) return n;
  int annees = n / 365;
  if (inverse) annees = annees == 0 ? -1 : -annees;
  return annees;
}

int CalculMoisDateDate(const TDateRQ& d1, const TDateRQ& d2) {
  int annees = 0, mois = 0;
  const int n = CalcJours(d1, d2, nullptr, &annees, nullptr, false, nullptr, &mois);
  if (n == kIncalculable) return n;
  return annees * 12 + mois;
}

int CalculJoursDateDate(const TDateRQ& d1, const TDateRQ& d2, int* annees, bool* ok) {
  if (ok) *ok = false;
  if (!d1.CalculDatePossible() || !d2.CalculDatePossible()) return kIncalculable;
  bool inverse = false;
  int anneesLocales = 0;
  const int n = CalcJours(d1, d2, nullptr, annees ? annees : &anneesLocales, nullptr, false, &inverse, nullptr);
  if (n == kIncalculable) return n;
  if (ok) *ok = true;
  return inverse ? -n : n;
}

int CalculJoursDateDate(const TDateRQ& d1, const TDateRQ& d2, bool& erreur) {
  bool ok = false;
  const int n = CalculJoursDateDate(d1, d2, nullptr, &ok);
  erreur = !ok;
  return n;
}

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

int CalcNbJours(TDateRQ a, TDateRQ b) {
  a.ConvVersGregInterne();
  b.ConvVersGregInterne();
  const int n = CalcJours(a, b);
  if (n == kIncalculable) return n;
  return strcmpDATE(a.GetDate().c_str(), b.GetDate().c_str()) < 0 ? -n : n;
}

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
