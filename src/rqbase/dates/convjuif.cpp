#include "rqbase/dates/convjuif.h"

#include <atomic>

#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/interne.h"
#include "rqbase/platform/ressources.h"

namespace rqbase {
using namespace dates_interne;

namespace {

constexpr std::int64_t kPartiesHeure = 1080;
constexpr std::int64_t kPartiesJour = 24 * kPartiesHeure;    // 25920
constexpr std::int64_t kPartiesSemaine = 7 * kPartiesJour;   // 181440
constexpr std::int64_t kMoisLunaire = 29 * kPartiesJour + 12 * kPartiesHeure + 793;  // 765433
constexpr std::int64_t kBaharad = 2 * kPartiesJour + 5 * kPartiesHeure + 204;        // 57444
// Jour absolu du comput (le molad de l'an 1 tombe le jour 2) -> jour julien chronologique.
constexpr std::int64_t kOrigineJdn = 347996;
// Fenêtre grégorienne de 1582 que correctJulienGreg ramène au julien :
// du 1er Tichri 5343 (27/09/1582) au 19/12/1582.
constexpr std::int64_t kJdnDebutCorrection = 2299143;
constexpr std::int64_t kJdnFinJulien = 2299226;  // 09/12/1582 julien = 19/12/1582 grégorien

bool LitTroisNombres(std::string_view date, int& j, int& m, int& a) {
  if (!DateFormatGregorien(date)) return false;
  for (std::size_t i : {0u, 1u, 3u, 4u, 6u, 7u, 8u, 9u})
    if (date[i] < '0' || date[i] > '9') return false;
  j = ToIntInString(Milieu(date, 1, 2));
  m = ToIntInString(Milieu(date, 4, 2));
  a = ToIntInString(Milieu(date, 7, 4));
  return true;
}

std::string Texte(int j, int m, std::int64_t a) {
  return Zeros(j, 2) + "/" + Zeros(m, 2) + "/" + Zeros(static_cast<int>(a), 4);
}

}  // namespace

ConvJuif::ConvJuif() = default;

int ConvJuif::embolismic(int annee) {
  switch (((annee % 19) + 19) % 19) {
    case 0: case 3: case 6: case 8: case 11: case 14: case 17:
      nbMois = 13;
      break;
    default:
      nbMois = 12;
  }
  return nbMois;
}

void ConvJuif::conversion() {
  std::int64_t t = totalParties;
  parties = static_cast<int>(t % 18);
  t /= 18;
  minutes = static_cast<int>(t % 60);
  t /= 60;
  heures = static_cast<int>(t % 24);
  t /= 24;
  jours = static_cast<int>(t % 7);
  semaines = t / 7;
}

void ConvJuif::conversionPartielle() {
  jours = static_cast<int>(((jours % 7) + 7) % 7);
  if (jours == 0) jours = 7;
}

void ConvJuif::cycleLunaire() {
  cycles = (anneeHeb - 1) / 19;
  const int r = (anneeHeb - 1) % 19;
  embolismiques = r >= 17 ? 6 : r >= 14 ? 5 : r >= 11 ? 4 : r >= 8 ? 3 : r >= 6 ? 2 : r >= 3 ? 1 : 0;
  communes = r - embolismiques;
}

void ConvJuif::moladTichri() {
  cycleLunaire();
  totalParties = static_cast<std::int64_t>(cycles) * 69715 + static_cast<std::int64_t>(communes) * 113196 +
                 static_cast<std::int64_t>(embolismiques) * 152869 + kBaharad;
  conversion();
  conversionPartielle();
}

void ConvJuif::moladNissan() {
  moladTichri();
  totalParties += 56598;
  conversion();
  conversionPartielle();
}

void ConvJuif::reportRochHachana() {
  while (jours != 2 && jours != 3 && jours != 5 && jours != 7) {
    jours = jours % 7 + 1;
    report = true;
  }
}

void ConvJuif::rochHachana() {
  report = false;
  reportRochHachana();
  if (report) return;
  if (heures >= 18) {
    jours = jours % 7 + 1;
    reportRochHachana();
  } else {
    partRochHachana();
  }
}

void ConvJuif::partRochHachana() {
  const int annee = anneeHeb;
  if (embolismic(annee) != 12) return;
  const int t = heures * 1080 + minutes * 18 + parties;
  if (jours == 2 && t >= 16789) {
    if (embolismic(annee - 1) == 13) jours = 3;
    embolismic(annee);
  } else if (jours == 3 && t >= 9924) {
    jours = 5;
  }
}

int ConvJuif::caractHebPart(int annee) {
  anneeHeb = annee;
  moladTichri();
  rochHachana();
  return jours;
}

void ConvJuif::caractHeb() {
  const int annee = anneeHeb;
  jourRHSuivant = caractHebPart(annee + 1);
  jourRH = caractHebPart(annee);
  embolismic(annee);
  moladNissan();
  anneeHeb = annee;
  rochHodechNissan();
}

void ConvJuif::rochHodechNissan() {
  // Le type de l'année se lit sur l'écart des deux Roch Hachana (5 défective,
  // 6 régulière, 7 abondante, l'année commune comptée deux de plus).
  // Voulu : le jour du 1er Nissan se tire de nbMois par ce seul raccourci, même
  // dans une année de 13 mois où il tombe un jour plus tôt que le vrai.
  int suivant = jourRHSuivant;
  if (suivant <= jourRH) suivant += 7;
  int d = suivant - jourRH;
  if (nbMois == 12) d += 2;
  switch (d) {
    case 5:
      jourNissan = jourRH + nbMois - 11;
      longueurs[3] = 29;  // Kislev
      break;
    case 6:
      jourNissan = jourRH + nbMois - 10;
      break;
    case 7:
      jourNissan = jourRH + nbMois - 9;
      longueurs[2] = 30;  // Hechvan
      break;
    default:
      jourNissan = 0;  // écart impossible entre deux Roch Hachana
      return;
  }
  if (jourNissan > 7) jourNissan -= 7;
}

void ConvJuif::tekoufaNissan() {
  cycleLunaire();
  moladNissan();
  tekoufa = static_cast<std::int64_t>(cycles) * 1565 + static_cast<std::int64_t>(communes) * 282084 -
            static_cast<std::int64_t>(embolismiques) * 483349 - 191802;
  totalParties += tekoufa;
  if (totalParties < 0) totalParties += ((-totalParties) / kPartiesSemaine + 1) * kPartiesSemaine;
  conversion();
  conversionPartielle();
}

void ConvJuif::bissextile() {
  const int annee = anneeCivile;
  if (annee < 1583) {
    // Avant la réforme : -6 les années de 29 février (multiples de 4), -5 les autres.
    fevrier = (annee % 4 == 0) ? 29 : 28;
    decalage = fevrier == 29 ? -6 : -5;
    return;
  }
  fevrier = ((annee % 4 == 0 && annee % 100 != 0) || annee % 400 == 0) ? 29 : 28;
  if (annee < 1700)
    decalage = 33 - fevrier;
  else
    decalage = (annee - 1701) / 100 + 34 - fevrier - (annee - 1601) / 400;
}

void ConvJuif::correctJulienGreg() {
  // Voulu : on retire dix jours et on emprunte toujours 30 jours au mois précédent,
  // même quand celui-ci en a 31 (octobre) : c'est ainsi que les dates sont rendues.
  if ((moisCivil == 9 && jourCivil >= 27) || moisCivil == 10 || moisCivil == 11 ||
      (moisCivil == 12 && jourCivil < 20))
    jourCivil -= 10;
  if (jourCivil < 1) {
    jourCivil += 30;
    moisCivil -= 1;
  }
}

void ConvJuif::j_sem() { jour = RetourneJour(static_cast<int>(((jdnResultat + 1) % 7 + 7) % 7)); }

namespace {

// Le 1er Tichri ne dépend que de l'année : on le garde, année par année, pour
// toutes les années qu'un texte "jj/mm/aaaa" peut atteindre (l'année civile 9999
// mène à l'an 13760 du comput). Zéro veut dire « pas encore calculé » : aucun
// 1er Tichri d'une année positive ne tombe au jour zéro. Deux fils qui calculent
// la même année y écrivent la même valeur.
constexpr int kAnneesGardees = 16384;
std::atomic<std::int64_t> gJdnRochHachana[kAnneesGardees];

}  // namespace

std::int64_t ConvJuif::JdnRochHachana(int annee) {
  if (annee < 1 || annee >= kAnneesGardees) return CalculeJdnRochHachana(annee);
  std::atomic<std::int64_t>& garde = gJdnRochHachana[annee];
  std::int64_t jdn = garde.load(std::memory_order_relaxed);
  if (jdn == 0) {
    jdn = CalculeJdnRochHachana(annee);
    garde.store(jdn, std::memory_order_relaxed);
  }
  return jdn;
}

std::int64_t ConvJuif::CalculeJdnRochHachana(int annee) {
  ConvJuif c;
  c.anneeHeb = annee;
  c.moladTichri();
  const int jourMolad = c.jours;
  c.rochHachana();
  const std::int64_t moisEcoules = static_cast<std::int64_t>(c.cycles) * 235 + static_cast<std::int64_t>(c.communes) * 12 +
                                   static_cast<std::int64_t>(c.embolismiques) * 13;
  const std::int64_t jourAbsolu = (kBaharad + moisEcoules * kMoisLunaire) / kPartiesJour;
  const int ecart = ((c.jours - jourMolad) % 7 + 7) % 7;
  return jourAbsolu + ecart + kOrigineJdn;
}

void ConvJuif::intervalles() {
  const std::int64_t duree = JdnRochHachana(anneeHeb + 1) - JdnRochHachana(anneeHeb);
  const bool embol = embolismic(anneeHeb) == 13;
  const int reste = static_cast<int>(duree - (embol ? 384 : 354));  // -1 défective, 0 régulière, 1 abondante
  static constexpr int kBase[14] = {0, 30, 29, 30, 29, 30, 30, 29, 30, 29, 30, 29, 30, 29};
  for (int m = 1; m <= 13; ++m) longueurs[m] = kBase[m];
  if (reste > 0) longueurs[2] = 30;
  if (reste < 0) longueurs[3] = 29;
  if (!embol) {
    longueurs[6] = 29;  // Adar d'une année commune
    longueurs[7] = 0;   // pas d'Adar II
  }
}

std::string ConvJuif::TypeAnnee() const {
  const std::int64_t duree = JdnRochHachana(anneeHeb + 1) - JdnRochHachana(anneeHeb);
  const int reste = static_cast<int>(duree % 10);  // 353/383 -> 3, 354/384 -> 4, 355/385 -> 5
  return Ressource(nbMois == 13 ? 3778 : 3776) + " " + Ressource(3770 + reste);
}

bool ConvJuif::controleJuif() {
  if (!MoisHebOk(moisHeb)) return false;
  intervalles();
  return jourHeb >= 1 && jourHeb <= longueurs[moisHeb];
}

bool ConvJuif::ResultatCivil(std::int64_t jdn) {
  if (!CivilDepuisJdn(jdn)) return false;
  setReponse(Texte(jourCivil, moisCivil, anneeCivile));
  return true;
}

bool ConvJuif::CivilDepuisJdn(std::int64_t jdn) {
  std::int64_t a;
  int m, j;
  if (jdn >= kJdnDebutCorrection && jdn <= kJdnFinJulien) {
    DepuisJdnGregorien(jdn, a, m, j);
    SetCivil(j, m, static_cast<int>(a));
    correctJulienGreg();
  } else if (jdn < kJdnDebutCorrection) {
    DepuisJdnJulien(jdn, a, m, j);
    SetCivil(j, m, static_cast<int>(a));
  } else {
    DepuisJdnGregorien(jdn, a, m, j);
    SetCivil(j, m, static_cast<int>(a));
  }
  return anneeCivile >= 1 && anneeCivile <= 9999;
}

bool ConvJuif::convJuif_civil(std::string_view date) {
  reponse.clear();
  distrib.clear();
  jour.clear();
  int j, m, a;
  if (!LitTroisNombres(date, j, m, a) || !PlaceJourHebreu(j, m, a)) return false;
  caractHeb();
  if (!ResultatCivil(jdnResultat)) return false;
  setDistrib(TypeAnnee());
  j_sem();
  return true;
}

bool ConvJuif::convJuif_civilReponse(std::string_view date) {
  reponse.clear();
  distrib.clear();
  jour.clear();
  int j, m, a;
  if (!LitTroisNombres(date, j, m, a)) return false;
  if (!convJuif_civilNombres(j, m, a)) return false;
  setReponse(Texte(jourCivil, moisCivil, anneeCivile));
  return true;
}

bool ConvJuif::convJuif_civilNombres(int j, int m, int a) {
  return PlaceJourHebreu(j, m, a) && CivilDepuisJdn(jdnResultat);
}

bool ConvJuif::PlaceJourHebreu(int j, int m, int a) {
  if (a < 1) return false;
  anneeHeb = a;
  jourHeb = j;
  moisHeb = m;
  embolismic(a);
  if (!controleJuif()) return false;
  std::int64_t jdn = JdnRochHachana(a) + j - 1;
  for (int i = 1; i < m; ++i) jdn += longueurs[i];
  jdnResultat = jdn;
  return true;
}

bool ConvJuif::convCivil_juif(std::string_view date) {
  reponse.clear();
  distrib.clear();
  jour.clear();
  int j, m, a;
  if (!LitTroisNombres(date, j, m, a)) return false;
  // Voulu : une date de 1582 se calcule comme si elle était de 1583.
  if (a == 1582) a = 1583;
  if (a < 1 || m < 1 || m > 12) return false;
  SetCivil(j, m, a);
  bissextile();
  static constexpr int kLongueurs[13] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const int longueur = (m == 2) ? fevrier : kLongueurs[m];
  if (j < 1 || j > longueur) return false;
  const std::int64_t jdn = (a < 1583) ? JdnJulien(a, m, j) : JdnGregorien(a, m, j);
  int annee = a + 3760;
  while (annee > 1 && jdn < JdnRochHachana(annee)) --annee;
  while (jdn >= JdnRochHachana(annee + 1)) ++annee;
  anneeHeb = annee;
  embolismic(annee);
  intervalles();
  std::int64_t reste = jdn - JdnRochHachana(annee);
  int mois = 1;
  while (mois < 13 && reste >= longueurs[mois]) {
    reste -= longueurs[mois];
    ++mois;
  }
  jourHeb = static_cast<int>(reste) + 1;
  moisHeb = mois;
  jdnResultat = jdn;
  caractHeb();
  setReponse(Texte(jourHeb, moisHeb, annee));
  setDistrib(TypeAnnee());
  j_sem();
  return true;
}

}  // namespace rqbase
