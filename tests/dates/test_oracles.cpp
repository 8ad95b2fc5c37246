// Confrontation aux tables de référence calculées par d'autres programmes de
// calendrier (tests/dates/donnees, voir son LISEZMOI). Là où notre programme suit sa
// propre règle (1582 pris pour 1583 vers l'hébreu, jours de la semaine de 1582, ère
// républicaine bornée), les lignes concernées sont écartées ou attendues selon notre règle.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <vector>

#include "rqbase/dates/bo_jours.h"
#include "rqbase/dates/conversions.h"
#include "rqbase/dates/convjuif.h"
#include "rqbase/platform/cp1252.h"

namespace rqbase {
namespace {

using TLigne = std::map<std::string, std::string>;

// Une table absente ou vide est une erreur du test, jamais un cas sauté.
std::vector<TLigne> LitTable(const std::string& nom) {
  std::vector<TLigne> lignes;
  const std::string chemin = std::string(RQ_DONNEES_DATES) + "/" + nom;
  std::ifstream f(chemin);
  if (!f) throw std::runtime_error("table de référence illisible : " + chemin);
  std::string ligne;
  std::vector<std::string> entete;
  while (std::getline(f, ligne)) {
    if (ligne.empty() || ligne[0] == '#') continue;
    std::vector<std::string> champs;
    std::stringstream ss(ligne);
    std::string champ;
    while (std::getline(ss, champ, '\t')) champs.push_back(champ);
    if (entete.empty()) {
      entete = champs;
      continue;
    }
    TLigne l;
    for (std::size_t i = 0; i < champs.size() && i < entete.size(); ++i) l[entete[i]] = champs[i];
    lignes.push_back(l);
  }
  if (lignes.empty()) throw std::runtime_error("table de référence sans lignes : " + chemin);
  return lignes;
}

// "1582-10-15" -> "15/10/1582" ; "5343/1/18" (a/m/j) -> "18/01/5343".
std::string DepuisIso(const std::string& iso) {
  return iso.substr(8, 2) + "/" + iso.substr(5, 2) + "/" + iso.substr(0, 4);
}
std::string DepuisAmj(const std::string& amj) {
  int a, m, j;
  char s1, s2;
  std::stringstream(amj) >> a >> s1 >> m >> s2 >> j;
  char t[32];
  std::snprintf(t, sizeof t, "%02d/%02d/%04d", j, m, a);
  return t;
}

const char* kCodes[] = {"", "VEND", "BRUM", "FRIM", "NIVO", "PLUV", "VENT", "GERM",
                        "FLOR", "PRAI", "MESS", "THER", "FRUC", "COMP"};

TEST(Oracles, DatesCivilesRepublicainesEtHebraiques) {
  const auto lignes = LitTable("dates_sample.tsv");
  int verifiees = 0;
  for (const auto& l : lignes) {
    if (l.at("cal") == "ERROR") continue;
    // Date civile française : julienne jusqu'au jour julien 2299226 (9 décembre 1582).
    const bool julien = std::stoll(l.at("jdn")) <= 2299226;
    const std::string civil = DepuisIso(l.at(julien ? "julian" : "gregorian"));
    const std::string gregorien = DepuisIso(l.at("gregorian"));
    const int annee = std::stoi(civil.substr(6, 4));
    SCOPED_TRACE(l.at("input"));

    // Jour julien : le nôtre vaut le numéro chronologique moins un, hors de la
    // fenêtre de 1582 où notre réforme (14 octobre) et celle du registre diffèrent.
    if (annee != 1582) {
      EXPECT_EQ(JourJulien(civil), std::stoi(l.at("jdn")) - 1);
    }

    // Républicain dans l'ère (ans I à XIV) : aller et deux routes de retour.
    if (l.at("rep_era") == "1") {
      int a, m, j;
      char s1, s2;
      std::stringstream(l.at("rep_ymd")) >> a >> s1 >> m >> s2 >> j;
      char rep[32];
      std::snprintf(rep, sizeof rep, "%02d/%s/%02d", j, kCodes[m], a);
      EXPECT_EQ(ConvGregorienRepublicain(gregorien), rep);
      EXPECT_EQ(ConvRepublicainGregorien(rep), gregorien);
      EXPECT_EQ(ConvRepublicainGregorien2(rep), gregorien);
    }

    // Hébreu : vers l'hébreu sauf 1582 (pris pour 1583), retour partout sauf la
    // fenêtre d'octobre-novembre 1582 que correctJulienGreg rend à sa manière.
    const std::string hebreu = DepuisAmj(l.at("heb_ymd"));
    if (annee != 1582) {
      EXPECT_EQ(ConvGregorienHebraique(civil), hebreu);
    }
    const bool fenetre = annee == 1582 && (civil.substr(3, 2) == "10" || civil.substr(3, 2) == "11");
    if (!fenetre) {
      EXPECT_EQ(ConvHebraiqueGregorien(hebreu), civil);
    }

    // Jour de la semaine : vrai hors de 1582, et pour les dates que JourOk accepte.
    TDateRQ date('G', civil);
    std::string abrege, complet;
    short numero = 0;
    if (annee != 1582 && date.RetourneJourSemaine(abrege, complet, &numero, false) != 0) {
      EXPECT_EQ(VersUtf8(MinusculesCp1252(complet)), l.at("weekday"));
    }
    ++verifiees;
  }
  EXPECT_GT(verifiees, 40);
}

TEST(Oracles, AnneesHebraiques) {
  const auto lignes = LitTable("hebrew_years_5343_6160.tsv");
  ASSERT_EQ(lignes.size(), 6160u - 5343u + 1u);
  ConvJuif conv;
  for (const auto& l : lignes) {
    const int annee = std::stoi(l.at("hebrew_year"));
    SCOPED_TRACE(annee);
    const std::int64_t rh = ConvJuif::JdnRochHachana(annee);
    ASSERT_EQ(rh, std::stoll(l.at("rosh_hashana_jdn")));
    EXPECT_EQ(ConvJuif::JdnRochHachana(annee + 1) - rh, std::stoi(l.at("days")));
    EXPECT_EQ(conv.embolismic(annee), std::stoi(l.at("months")));
    // Le jour du comput (1 = dimanche) et le jour calculé par le numéro julien concordent.
    EXPECT_EQ(conv.caractHebPart(annee), static_cast<int>((rh + 1) % 7) + 1);
  }
}

}  // namespace
}  // namespace rqbase
