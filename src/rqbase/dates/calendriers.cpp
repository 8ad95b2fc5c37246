#include "rqbase/dates/calendriers.h"

#include <algorithm>
#include <cstring>
#include <ctime>

#include "rqbase/dates/conversions.h"
#include "rqbase/dates/interne.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/ressources.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/date_heure.h"

namespace rqbase {
using namespace dates_interne;

namespace {

constexpr const char* kCodesRepublicains[13] = {"VEND", "BRUM", "FRIM", "NIVO", "PLUV", "VENT", "GERM",
                                                "FLOR", "PRAI", "MESS", "THER", "FRUC", "COMP"};

int LongueurMois(int mois, int annee) {
  static constexpr int kLongueurs[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (mois < 1 || mois > 12) return 0;
  if (mois == 2 && AnneeBissextileRQ(annee)) return 29;
  return kLongueurs[mois - 1];
}

// Colonnes d'une rangée de mois : forme courte et nom, premières ou secondes.
int LitRangeeMois(int numeroTexte, bool premier, bool secondNomEnColonne9, std::string& court,
                  std::string& nom) {
  const std::string rangee = Ressource(numeroTexte);
  court = Trim(Milieu(rangee, premier ? 4 : 19, premier ? 4 : 3));
  nom = Trim(Milieu(rangee, (premier || secondNomEnColonne9) ? 9 : 23, 9));
  return ToIntInString(Milieu(rangee, 1, 2));
}

struct THeureLocale {
  int annee, mois, jour, heure, minute, seconde;
};

THeureLocale Maintenant_() {
  std::time_t t = std::time(nullptr);
  std::tm tm{};
  localtime_r(&t, &tm);
  return {tm.tm_year + 1900, tm.tm_mon + 1, tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec};
}

}  // namespace

namespace dates_interne {

int NumeroMoisRepublicain(std::string_view code) {
  if (code.size() != 4) return 0;
  char replie[4];
  for (std::size_t i = 0; i < 4; ++i)
    replie[i] = static_cast<char>(MajusculeCp1252(SansAccentCp1252(static_cast<unsigned char>(code[i]))));
  for (int i = 0; i < 13; ++i)
    if (std::memcmp(replie, kCodesRepublicains[i], 4) == 0) return i + 1;
  return 0;
}

}  // namespace dates_interne

bool AnneeOk(int annee) { return annee >= 0 && annee <= 3000; }
bool MoisOk(int mois) { return mois >= 1 && mois <= 12; }
bool AnneeHebOk(int annee) { return annee > 3760; }
bool MoisHebOk(int mois) { return mois >= 1 && mois <= 13; }

bool AnneeBissextileRQ(int annee) {
  // Voulu : avant 1582 seules les années séculaires sont bissextiles dans ce calcul.
  if (annee < 1582) return annee % 100 == 0;
  if (annee == 1582) return false;
  return (annee % 4 == 0 && annee % 100 != 0) || annee % 400 == 0;
}

bool JourOk(int jour, int mois, int annee) { return jour >= 1 && jour <= LongueurMois(mois, annee); }

bool DateGregorienOk(int jour, int mois, int annee) { return mois < 13 && annee < 2400 && JourOk(jour, mois, annee); }

bool JourHebOk(int jour, int mois) {
  if (!MoisHebOk(mois)) return false;
  static constexpr int kLongueurs[13] = {30, 30, 30, 29, 30, 30, 29, 30, 29, 30, 29, 30, 29};
  return jour >= 1 && jour <= kLongueurs[mois - 1];
}

bool JourRepublicainOk(int jour, std::string_view codeMois, int annee) {
  if (Replie(codeMois) == "COMP") return jour < ((annee + 1) % 4 == 0 ? 7 : 6);
  return jour < 31;
}

bool MoisRepublicainOk(std::string_view codeMois) {
  if (codeMois == "....") return true;
  std::string nom;
  return RetourneMoisRepublicain(codeMois, nom) != 0;
}

bool AnneeRepublicaineOk(int annee) { return annee < 20; }

bool DateRepublicaineOk(std::string_view date) {
  const int annee = ToIntInString(Milieu(date, 9, 2));
  return JourRepublicainOk(ToIntInString(Milieu(date, 1, 2)), Milieu(date, 4, 4), annee) &&
         MoisRepublicainOk(Milieu(date, 4, 4)) && AnneeRepublicaineOk(annee);
}

bool DateFormatGregorien(std::string_view date) { return date.size() == 10 && date[2] == '/' && date[5] == '/'; }
bool DateFormatHebraique(std::string_view date) { return DateFormatGregorien(date); }
bool DateFormatRepublicain(std::string_view date) { return date.size() >= 9 && date[2] == '/' && date[7] == '/'; }
bool DateFormatFourchette(std::string_view date) {
  return (date.size() == 5 && date[2] == '/') || (date.size() == 9 && date[4] == '/');
}
bool DateFormatFourchetteAVC4chiffre(std::string_view date) { return date.size() == 9 && date[4] == '/'; }

char RetourneFormatDate(std::string_view date) {
  if (date.empty()) return ' ';
  if (DateFormatGregorien(date)) return 'G';
  if (DateFormatRepublicain(date)) return 'R';
  // Jamais atteint : la forme hébraïque est celle du grégorien. On le garde ainsi.
  if (DateFormatHebraique(date)) return 'H';
  return '?';
}

int RetourneMoisGregorien(int mois, std::string& court, std::string& nom, bool premier) {
  if (!MoisOk(mois)) {
    court = nom = "....";
    return 0;
  }
  return LitRangeeMois(1823 + mois, premier, false, court, nom);
}

int RetourneMoisHebraique(int mois, std::string& court, std::string& nom, bool premier) {
  if (!MoisHebOk(mois)) {
    court = nom = "....";
    return 0;
  }
  // Le second nom hébraïque se lit aux colonnes du premier.
  return LitRangeeMois(3759 + mois, premier, true, court, nom);
}

int RetourneMoisRepublicain(std::string_view code, std::string& nom) {
  const int no = NumeroMoisRepublicain(code);
  nom = no ? Trim(Milieu(Ressource(1807 + no), 9, 15)) : std::string("....");
  return no;
}

int RetourneMoisRepublicain2(int no, std::string& code, std::string& nom, int& no2) {
  if (no < 1 || no > 13) {
    code = nom = "....";
    no2 = 0;
    return 0;
  }
  const std::string rangee = Ressource(1807 + no);
  code = Milieu(rangee, 4, 4);
  nom = Trim(Milieu(rangee, 9, 15));
  no2 = ToIntInString(Milieu(rangee, 25, 2));
  return no;
}

std::string RetourneMensualite(int mois) {
  std::string court, nom;
  RetourneMoisGregorien(mois, court, nom);
  return nom;
}

std::string RetourneMensualiteHeb(int mois) {
  std::string court, nom;
  RetourneMoisHebraique(mois, court, nom);
  return nom;
}

std::string RetourneJour(int jourSemaine) {
  if (jourSemaine < 0 || jourSemaine > 6) return {};
  const std::string rangee = Ressource(1840 + jourSemaine);
  return rangee.size() > 4 ? rangee.substr(4) : std::string();
}

std::string RecupJour(std::string_view date) { return Milieu(date, 1, 2); }

std::string RecupMois(std::string_view date) {
  if (DateFormatRepublicain(date)) return Milieu(date, 4, 4);
  if (DateFormatGregorien(date)) return Milieu(date, 4, 2);
  return {};
}

std::string RecupAnnee(std::string_view date) {
  if (DateFormatRepublicain(date)) return Milieu(date, 9, 2);
  if (DateFormatGregorien(date)) return Milieu(date, 7, 4);
  return {};
}

void RecupJourMoisAnnee(std::string_view date, int& jour, int& mois, int& annee) {
  std::string texte(date);
  if (DateFormatRepublicain(texte))
    texte = ConvRepublicainGregorien(texte);
  else if (!DateFormatGregorien(texte))
    return;
  jour = ToIntInString(Milieu(texte, 1, 2));
  mois = ToIntInString(Milieu(texte, 4, 2));
  annee = ToIntInString(Milieu(texte, 7, 4));
}

bool AnneeVide(std::string_view annee) { return annee.empty() || annee == "...."; }

void CompleteDate12(std::string& d1, std::string& d2) {
  if (d1.size() != 10 && d2.size() != 10) return;
  const std::size_t n = std::min<std::size_t>({std::size_t{10}, d1.size(), d2.size()});
  for (std::size_t i = 0; i < n; ++i) {
    if (d1[i] == '.' && d2[i] != '.' && d2[i] != '/')
      d1[i] = d2[i];
    else if (d2[i] == '.' && d1[i] != '.' && d1[i] != '/')
      d2[i] = d1[i];
  }
}

std::string FormatDateG(std::string_view date) {
  const std::string texte(date);
  if (NombreElts(texte, '/') != 3) return texte;
  auto deux = [](std::string p) { return p.size() == 1 ? "0" + p : p; };
  return deux(EltNo(1, texte, '/')) + "/" + deux(EltNo(2, texte, '/')) + "/" + EltNo(3, texte, '/');
}

std::string FormatDateG8(std::string_view date) {
  std::string texte = FormatDateG(date);
  if (texte.size() == 10) texte.erase(6, 2);
  return texte;
}

std::string GetDateJour() {
  const auto t = Maintenant_();
  return Zeros(t.jour, 2) + "/" + Zeros(t.mois, 2) + "/" + Zeros(t.annee, 4);
}

int GetAnneeCourante() { return Maintenant_().annee; }

std::string GetHeure() {
  const auto t = Maintenant_();
  return Zeros(t.heure, 2) + ":" + Zeros(t.minute, 2) + ":" + Zeros(t.seconde, 2);
}

std::string AjouteUnAn() {
  int a, m, j;
  DecodeDate(IncMonth(Maintenant(), 12), a, m, j);
  return Zeros(j, 2) + "/" + Zeros(m, 2) + "/" + Zeros(a, 4);
}

std::string CreerChnAn(int annees) {
  if (annees >= 100001 || annees == 1000000) return {};
  return RemplaceString(Ressource(annees <= 1 ? 1920 : 1921), "%i", std::to_string(annees));
}

std::string FormatDateNews(std::string_view horodatage) {
  const std::string jour = EltNo(1, horodatage, 'T');
  std::string a = EltNo(1, jour, '-'), m = EltNo(2, jour, '-'), j = EltNo(3, jour, '-');
  j = EltNo(1, j, '.');
  if (a.empty() || m.empty() || j.empty()) return {};
  return j + "/" + m + "/" + a;
}

}  // namespace rqbase
