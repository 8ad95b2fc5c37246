// Jour julien, républicain, hébreu avec parties inconnues, années, Pâques.
#include <gtest/gtest.h>

#include "rqbase/dates/conversions.h"

namespace rqbase {
namespace {

TEST(Conversions, JourJulienEtReforme) {
  EXPECT_EQ(JourJulien("22/09/1792"), 2375839);  // début de l'ère républicaine
  EXPECT_EQ(JourJulien("01/01/2000"), 2451544);
  // La réforme se lit au 14 octobre 1582 dans ce calcul : 4 et 14 octobre tombent le même jour.
  EXPECT_EQ(JourJulien("04/10/1582"), JourJulien("14/10/1582"));
  EXPECT_EQ(JourJulien("15/10/1582") - JourJulien("04/10/1582"), 1);
}

TEST(Conversions, RepublicainAvecPartiesInconnues) {
  struct {
    const char *entree, *attendu;
  } versGregorien[] = {
      {"01/VEND/01", "22/09/1792"}, {"06/COMP/03", "22/09/1795"}, {"10/VENT/05", "28/02/1797"},
      {"18/BRUM/08", "09/11/1799"}, {"../VENT/05", "../03/1797"}, {"../..../05", "../../1797"},
      {"01/VEND/..", "../../...."}, {"01/VEND/0", ""},            {"01/XXXX/05", ""},
  };
  for (const auto& l : versGregorien) EXPECT_EQ(ConvRepublicainGregorien(l.entree), l.attendu) << l.entree;
  struct {
    const char *entree, *attendu;
  } versRepublicain[] = {
      {"22/09/1792", "01/VEND/01"}, {"21/09/1792", ""},          {"31/12/1805", "10/NIVO/14"},
      {"22/09/1806", "05/COMP/14"}, {"23/09/1806", ""},          {"../02/1797", "../PLUV/05"},
      {"../../1797", "../..../05"}, {"../../....", "../..../.."}, {"1797/1799", "05/07"},
      {"1797/....", ""},            {"1700/1799", ""},
  };
  for (const auto& l : versRepublicain) EXPECT_EQ(ConvGregorienRepublicain(l.entree), l.attendu) << l.entree;
}

TEST(Conversions, LesDeuxRoutesRepublicainesConcordentSurToutLEre) {
  int jours = 0;
  for (int jd = 2375839; jd <= 2381052; ++jd) {
    // Parcours de l'ère par le calendrier grégorien : aller, puis les deux retours.
    const int jdn = jd + 1;
    int a = jdn + 32044, b = (4 * a + 3) / 146097, c = a - 146097 * b / 4;
    int d = (4 * c + 3) / 1461, e = c - 1461 * d / 4, m = (5 * e + 2) / 153;
    char g[48];
    std::snprintf(g, sizeof g, "%02d/%02d/%04d", e - (153 * m + 2) / 5 + 1, m + 3 - 12 * (m / 10),
                  100 * b + d - 4800 + m / 10);
    const std::string rep = ConvGregorienRepublicain(g);
    if (rep.empty()) continue;
    ASSERT_EQ(ConvRepublicainGregorien(rep), g) << rep;
    ASSERT_EQ(ConvRepublicainGregorien2(rep), g) << rep;
    ++jours;
  }
  EXPECT_EQ(jours, 5113);  // ans I à XIV
}

TEST(Conversions, HebreuAvecPartiesInconnuesEtFourchettes) {
  EXPECT_EQ(ConvGregorienHebraique("16/09/2023"), "01/01/5784");
  EXPECT_EQ(ConvGregorienHebraique("../../2024"), "../../5784");  // par le 26 avril
  EXPECT_EQ(ConvGregorienHebraique("../03/2024"), "../07/5784");  // par le 15 : Adar II
  EXPECT_EQ(ConvGregorienHebraique("1850/...."), "5610/....");
  EXPECT_EQ(ConvHebraiqueGregorien("../../5784"), "../../2024");  // par le 18 Nissan
  EXPECT_EQ(ConvHebraiqueGregorien("30/06/5784"), "10/03/2024");
  EXPECT_EQ(ConvHebraiqueGregorien("01/07/5783"), "");  // pas d'Adar II une année commune
  EXPECT_EQ(ConvHebraiqueGregorien("30/02/5784"), "");  // Hechvan de 29 jours cette année-là
  // Voulu : 1582 se calcule comme 1583.
  EXPECT_EQ(ConvGregorienHebraique("15/10/1582"), ConvGregorienHebraique("15/10/1583"));
}

TEST(Conversions, AnneesParLeurJourFixe) {
  EXPECT_EQ(ConvAnneeGregHebr(2024), 5784);
  EXPECT_EQ(ConvAnneeHebrGreg(5784), 2024);
  EXPECT_EQ(ConvAnneeRepubGreg(5), 1797);
  EXPECT_EQ(ConvAnneeGregRepub(1797), 5);
  EXPECT_EQ(ConvAnneeGregRepub(1700), 0);
  EXPECT_EQ(ConvAnneeRepubGreg(0), 0);
  EXPECT_EQ(ConvAnneeHebrGreg(0), 0);
}

TEST(Conversions, Paques) {
  struct {
    int annee;
    const char* attendu;
  } lignes[] = {
      {2024, "31/03/2024"}, {2025, "20/04/2025"}, {1900, "15/04/1900"}, {1583, "10/04/1583"},
      {2000, "23/04/2000"}, {1954, "18/04/1954"}, {2049, "18/04/2049"},
      // Voulu : d + e = 35 donne le 18 avril (1981 : d = 29, e = 6).
      {1981, "18/04/1981"}, {1582, ""}, {2500, ""},
  };
  for (const auto& l : lignes) EXPECT_EQ(CalcDatePaques(l.annee), l.attendu) << l.annee;
  std::string jour, mois;
  CalcDatePaques(2008, &jour, &mois);
  EXPECT_EQ(jour, "23");
  EXPECT_EQ(mois, "03");
}

}  // namespace
}  // namespace rqbase
