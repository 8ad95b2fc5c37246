#include "rqbase/dates/decompte_jours.h"

#include <algorithm>
#include <cstdint>
#include <tuple>

#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/interne.h"
#include "rqbase/dates/ordre_dates.h"

namespace rqbase {
using namespace dates_interne;

namespace {

int LongueurMoisRQ(int mois, int annee) {
  static constexpr int kLongueurs[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (mois < 1 || mois > 12) return 0;
  return (mois == 2 && AnneeBissextileRQ(annee)) ? 29 : kLongueurs[mois - 1];
}

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

// --- Décompte d'une date ----------------------------------------------------

int TDateRQ::CalcNbJoursAbs(bool exact, std::string_view reference) const {
  const TDateRQ ref('G', reference);
  bool inverse = false;
  const int n = CalcJours(ref, *this, nullptr, nullptr, nullptr, !exact, &inverse, nullptr);
  if (n == kIncalculable) return n;
  return inverse ? -n : n;
}

int TDateRQ::DateIn(const TDateRQ& min, const TDateRQ& max) const {
  const int n = CalcNbJoursAbs(true), bas = min.CalcNbJoursAbs(true), haut = max.CalcNbJoursAbs(true);
  if (n == kIncalculable) return 1;
  if (bas == kIncalculable || haut == kIncalculable) return -1;
  if (n < bas) return -1;
  if (n > haut) return 1;
  return 0;
}

// --- Décompte entre deux dates ----------------------------------------------

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

int CalcNbJours(TDateRQ a, TDateRQ b) {
  a.ConvVersGregInterne();
  b.ConvVersGregInterne();
  const int n = CalcJours(a, b);
  if (n == kIncalculable) return n;
  return strcmpDATE(a.GetDate().c_str(), b.GetDate().c_str()) < 0 ? -n : n;
}

}  // namespace rqbase
