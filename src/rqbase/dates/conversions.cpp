#include "rqbase/dates/conversions.h"

#include <atomic>
#include <cmath>

#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/convjuif.h"
#include "rqbase/dates/interne.h"

namespace rqbase {
using namespace dates_interne;

namespace {

constexpr int kDebutEre = 2375839;  // 1er vendémiaire an I, par JourJulien
constexpr int kFinEre = 2381052;
// Années I à XIV, puis la marque de fin.
constexpr int kAnneesRepublicaines[] = {365, 365, 366, 365, 365, 365, 366, 365, 365, 365, 366, 365, 365, 365, 0};
constexpr const char* kCodes[13] = {"VEND", "BRUM", "FRIM", "NIVO", "PLUV", "VENT", "GERM",
                                    "FLOR", "PRAI", "MESS", "THER", "FRUC", "COMP"};

bool QueDesChiffres(std::string_view s) {
  if (s.empty()) return false;
  for (char c : s)
    if (c < '0' || c > '9') return false;
  return true;
}

// Une partie est inconnue quand elle n'est pas un nombre, ou vaut 0.
bool PartieConnue(std::string_view s) { return QueDesChiffres(s) && ToIntInString(s) != 0; }

std::string TexteNumerique(int j, int m, int a) { return Zeros(j, 2) + "/" + Zeros(m, 2) + "/" + Zeros(a, 4); }

// Fourchette convertie borne par borne ; une borne en points reste en points.
template <typename F>
std::string ConvFourchette(std::string_view date, int largeurSource, int largeurCible, F convAnnee,
                           bool bornesObligatoires) {
  const std::string a = Milieu(date, 1, largeurSource), b = Milieu(date, largeurSource + 2, largeurSource);
  auto borne = [&](const std::string& s, bool& ok) -> std::string {
    if (!QueDesChiffres(s)) {
      ok = !bornesObligatoires;
      return std::string(largeurCible, '.');
    }
    const int v = convAnnee(ToIntInString(s));
    ok = v != 0 && v < (largeurCible == 2 ? 100 : 10000);
    return Zeros(v, largeurCible);
  };
  bool okA = false, okB = false;
  const std::string ca = borne(a, okA), cb = borne(b, okB);
  if (!okA || !okB) return {};
  return ca + "/" + cb;
}

// Une conversion d'année ne dépend que de l'année : elle se garde une fois faite,
// pour les années qu'un texte de date peut écrire. Zéro veut dire « pas encore
// calculé », d'où la valeur gardée plus un (une conversion ratée vaut 0). Deux fils
// qui calculent la même année y écrivent la même valeur.
template <int N, typename F>
int AnneeGardee(std::atomic<int> (&garde)[N], int annee, F calcule) {
  if (annee < 0 || annee >= N) return calcule(annee);
  int v = garde[annee].load(std::memory_order_relaxed);
  if (v == 0) {
    v = calcule(annee) + 1;
    garde[annee].store(v, std::memory_order_relaxed);
  }
  return v - 1;
}

std::atomic<int> gAnneesHebrGreg[10000];
std::atomic<int> gAnneesRepubGreg[100];

}  // namespace

int dates_interne::NbJoursRepublicains(int jour, int mois, int annee) {
  int n = (mois * 30 - 30) + 365 * annee + jour - 366;
  for (int bissextile : {3, 7, 11})
    if (annee > bissextile) ++n;
  return n;
}

void dates_interne::GregorienDepuisJoursRepublicains(int n, int& jour, int& mois, int& annee) {
  int annees = 0;
  // Les années grégoriennes comptées du 22 septembre : 366 jours quand elles
  // contiennent un 29 février (1796 et 1804, rangs 3 et 11).
  while (true) {
    const int longueur = (annees == 3 || annees == 11) ? 366 : 365;
    if (n < longueur) break;
    n -= longueur;
    ++annees;
  }
  const bool fevrier29 = AnneeBissextileRQ(1793 + annees);
  const int longueurs[13] = {9, 31, 30, 31, 31, fevrier29 ? 29 : 28, 31, 30, 31, 30, 31, 31, 30};
  int index = 0;
  while (index < 12 && n >= longueurs[index]) {
    n -= longueurs[index];
    ++index;
  }
  jour = n + 1 + (index == 0 ? 21 : 0);
  mois = index < 4 ? index + 9 : index - 3;
  annee = index < 4 ? 1792 + annees : 1793 + annees;
}

int CalculNbJours(std::string_view date) {
  return NbJoursRepublicains(ToIntInString(Milieu(date, 1, 2)), NumeroMoisRepublicain(Milieu(date, 4, 4)),
                             ToIntInString(Milieu(date, 9, 2)));
}

int JourJulien(std::string_view date) {
  int jour = ToIntInString(Milieu(date, 1, 2));
  int mois = ToIntInString(Milieu(date, 4, 2));
  int annee = ToIntInString(Milieu(date, 7, 4));
  // La réforme se lit sur la date donnée, avant le report de janvier et février.
  const bool gregorien = annee * 10000 + mois * 100 + jour >= 15821014;
  if (mois <= 2) {
    annee -= 1;
    mois += 12;
  }
  double jd = std::trunc(365.25 * annee) + std::trunc(30.6001 * (mois + 1)) + jour + 1720994.5;
  int resultat = static_cast<int>(std::trunc(jd));
  if (gregorien) resultat += 2 - static_cast<int>(std::trunc(0.01 * annee)) + static_cast<int>(std::trunc(0.0025 * annee));
  return resultat;
}

std::string ConvRepublicainGregorien(std::string_view date) {
  if (date.size() < 10) return {};
  const std::string jourTexte = Milieu(date, 1, 2), moisTexte = Milieu(date, 4, 4), anneeTexte = Milieu(date, 9, 2);
  if (!PartieConnue(anneeTexte)) return "../../....";
  const int noMois = NumeroMoisRepublicain(moisTexte);
  const bool moisConnu = noMois != 0;
  const bool jourConnu = PartieConnue(jourTexte);
  if (!moisConnu && moisTexte != "....") return {};
  // Mois inconnu : le jour fixe du milieu de l'année (7 floréal) ; jour inconnu : le milieu du mois.
  const int anneeCalcul = ToIntInString(anneeTexte);
  const int n = moisConnu ? NbJoursRepublicains(jourConnu ? ToIntInString(jourTexte) : 15, noMois, anneeCalcul)
                          : NbJoursRepublicains(7, 8, anneeCalcul);
  if (n < 0) return {};
  int jour, mois, annee;
  GregorienDepuisJoursRepublicains(n, jour, mois, annee);
  if (!moisConnu) return "../../" + Zeros(annee, 4);
  if (!jourConnu) return "../" + Zeros(mois, 2) + "/" + Zeros(annee, 4);
  return TexteNumerique(jour, mois, annee);
}

std::string ConvRepublicainGregorien2(std::string_view date) {
  if (date.size() < 10) return {};
  std::string nom;
  if (!PartieConnue(Milieu(date, 1, 2)) || !PartieConnue(Milieu(date, 9, 2)) ||
      RetourneMoisRepublicain(Milieu(date, 4, 4), nom) == 0)
    return ConvRepublicainGregorien(date);
  const int n = CalculNbJours(date);
  if (n < 0) return {};
  std::int64_t a;
  int m, j;
  DepuisJdnGregorien(static_cast<std::int64_t>(kDebutEre) + n + 1, a, m, j);
  return TexteNumerique(j, m, static_cast<int>(a));
}

std::string ConvGregorienRepublicain(std::string_view date) {
  if (DateFormatFourchetteAVC4chiffre(date)) return ConvFourchette(date, 4, 2, ConvAnneeGregRepub, true);
  if (!DateFormatGregorien(date)) return {};
  const std::string jourTexte = Milieu(date, 1, 2), moisTexte = Milieu(date, 4, 2), anneeTexte = Milieu(date, 7, 4);
  if (!PartieConnue(anneeTexte)) return "../..../..";
  const bool moisConnu = PartieConnue(moisTexte), jourConnu = PartieConnue(jourTexte);
  const std::string calcul =
      moisConnu ? (jourConnu ? jourTexte : "15") + "/" + moisTexte + "/" + anneeTexte : "26/04/" + anneeTexte;
  const int jd = JourJulien(calcul);
  if (jd < kDebutEre || jd > kFinEre) return {};
  int reste = jd - kDebutEre, annee = 0;
  while (kAnneesRepublicaines[annee] != 0 && reste >= kAnneesRepublicaines[annee]) reste -= kAnneesRepublicaines[annee++];
  if (kAnneesRepublicaines[annee] == 0) return {};  // au-delà de la marque de fin
  const int jour = reste % 30 + 1, mois = reste / 30 + 1;
  if (!moisConnu) return "../..../" + Zeros(annee + 1, 2);
  return (jourConnu ? Zeros(jour, 2) : std::string("..")) + "/" + kCodes[mois - 1] + "/" + Zeros(annee + 1, 2);
}

// Une date partielle passe par le comput avec un jour inconnu pris au 15 du mois et un
// mois inconnu au jour fixe de milieu d'année ; le résultat garde les mêmes inconnues.
template <class TConversion>
std::string ConvPartielleParComput(std::string_view date, const char* milieuAnnee, TConversion convertit) {
  const std::string jourTexte = Milieu(date, 1, 2), moisTexte = Milieu(date, 4, 2), anneeTexte = Milieu(date, 7, 4);
  if (!PartieConnue(anneeTexte)) return "../../....";
  const bool moisConnu = PartieConnue(moisTexte), jourConnu = PartieConnue(jourTexte);
  const std::string calcul = moisConnu ? (jourConnu ? jourTexte : "15") + "/" + moisTexte + "/" + anneeTexte
                                       : milieuAnnee + anneeTexte;
  ConvJuif conv;
  if (!convertit(conv, calcul)) return {};
  const std::string r = conv.getReponse();
  if (!moisConnu) return "../../" + Milieu(r, 7, 4);
  if (!jourConnu) return "../" + Milieu(r, 4, 7);
  return r;
}

std::string ConvGregorienHebraique(std::string_view date) {
  if (DateFormatFourchetteAVC4chiffre(date)) return ConvFourchette(date, 4, 4, ConvAnneeGregHebr, false);
  if (!DateFormatGregorien(date)) return {};
  return ConvPartielleParComput(date, "26/04/",
                                [](ConvJuif& conv, const std::string& calcul) { return conv.convCivil_juif(calcul); });
}

std::string ConvHebraiqueGregorien(std::string_view date) {
  if (DateFormatFourchetteAVC4chiffre(date)) return ConvFourchette(date, 4, 4, ConvAnneeHebrGreg, false);
  if (!DateFormatHebraique(date)) return {};
  return ConvPartielleParComput(
      date, "18/08/", [](ConvJuif& conv, const std::string& calcul) { return conv.convJuif_civilReponse(calcul); });
}

int ConvAnneeGregHebr(int annee) {
  if (annee < 1 || annee > 9999) return 0;
  ConvJuif conv;
  return conv.convCivil_juif("26/04/" + Zeros(annee, 4)) ? ToIntInString(Milieu(conv.getReponse(), 7, 4)) : 0;
}

int ConvAnneeHebrGreg(int annee) {
  if (annee < 1 || annee > 9999) return 0;
  return AnneeGardee(gAnneesHebrGreg, annee, [](int a) {
    ConvJuif conv;
    return conv.convJuif_civilReponse("18/08/" + Zeros(a, 4)) ? ToIntInString(Milieu(conv.getReponse(), 7, 4)) : 0;
  });
}

int ConvAnneeRepubGreg(int annee) {
  if (annee < 1 || annee > 99) return 0;
  return AnneeGardee(gAnneesRepubGreg, annee, [](int a) {
    return ToIntInString(Milieu(ConvRepublicainGregorien("07/FLOR/" + Zeros(a, 2)), 7, 4));
  });
}

int ConvAnneeGregRepub(int annee) {
  if (annee < 1 || annee > 9999) return 0;
  return ToIntInString(Milieu(ConvGregorienRepublicain("26/04/" + Zeros(annee, 4)), 9, 2));
}

std::string CalcDatePaques(int annee, std::string* jourTexte, std::string* moisTexte) {
  if (annee < 1583 || annee > 2499) return {};
  int M, N;
  switch (annee / 100) {
    // Les années 1583 à 1599 suivent la règle du siècle suivant.
    case 15: case 16: M = 22; N = 2; break;
    case 17: M = 23; N = 3; break;
    case 18: M = 23; N = 4; break;
    case 19: case 20: M = 24; N = 5; break;
    case 21: M = 24; N = 6; break;
    case 22: M = 25; N = 0; break;
    case 23: M = 26; N = 1; break;
    default: M = 25; N = 1; break;
  }
  const int a = annee % 19, b = annee % 4, c = annee % 7;
  const int d = (19 * a + M) % 30;
  const int e = (2 * b + 4 * c + 6 * d + N) % 7;
  int jour, mois;
  // Voulu : d + e = 35 donne aussi le 18 avril, comme le cas d = 28, e = 6.
  if (d + e == 35 || (d == 28 && e == 6 && a > 10)) {
    jour = 18;
    mois = 4;
  } else if (d + e + 22 <= 31) {
    jour = d + e + 22;
    mois = 3;
  } else {
    jour = d + e - 9;
    mois = 4;
  }
  if (jourTexte) *jourTexte = std::to_string(jour);
  if (moisTexte) *moisTexte = Zeros(mois, 2);
  return TexteNumerique(jour, mois, annee);
}

}  // namespace rqbase
