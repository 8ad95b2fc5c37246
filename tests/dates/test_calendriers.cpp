// Validité, tables des mois, formes et parties des textes de date.
#include <gtest/gtest.h>

#include "rqbase/dates/calendriers.h"
#include "rqbase/platform/ressources.h"

namespace rqbase {
namespace {

TEST(Calendriers, RegleBissextileDuProgramme) {
  struct {
    int j, m, a;
    bool ok;
  } lignes[] = {
      {29, 2, 1600, true},  {29, 2, 1700, false}, {29, 2, 1504, false}, {29, 2, 1500, true},
      {29, 2, 1582, false}, {29, 2, 1584, true},  {29, 2, 2000, true},  {29, 2, 1900, false},
      {29, 2, 0, true},     {28, 2, 1582, true},  {31, 4, 1900, false}, {31, 12, 2399, true},
      {0, 1, 1900, false},  {1, 13, 1900, false},
  };
  for (const auto& l : lignes) {
    SCOPED_TRACE(testing::Message() << l.j << "/" << l.m << "/" << l.a);
    EXPECT_EQ(DateGregorienOk(l.j, l.m, l.a), l.ok);
    EXPECT_EQ(JourOk(l.j, l.m, l.a), l.ok);
  }
  // DateGregorienOk seul borne l'année sous 2400.
  EXPECT_TRUE(JourOk(1, 1, 2400));
  EXPECT_FALSE(DateGregorienOk(1, 1, 2400));
}

TEST(Calendriers, BornesDesAutresCalendriers) {
  EXPECT_TRUE(AnneeOk(0));
  EXPECT_TRUE(AnneeOk(3000));
  EXPECT_FALSE(AnneeOk(3001));
  EXPECT_FALSE(AnneeOk(-1));
  EXPECT_FALSE(AnneeHebOk(3760));
  EXPECT_TRUE(AnneeHebOk(3761));
  EXPECT_TRUE(MoisHebOk(13));
  EXPECT_FALSE(MoisHebOk(14));
  EXPECT_TRUE(JourHebOk(30, 6));
  EXPECT_FALSE(JourHebOk(30, 7));
  EXPECT_FALSE(JourHebOk(30, 13));
  // Le sixième jour complémentaire n'existe que les ans III, VII, XI, XV, XIX.
  for (int an = 1; an < 20; ++an)
    EXPECT_EQ(JourRepublicainOk(6, "COMP", an), an == 3 || an == 7 || an == 11 || an == 15 || an == 19) << an;
  EXPECT_TRUE(JourRepublicainOk(5, "comp", 2));
  EXPECT_TRUE(JourRepublicainOk(30, "VENT", 2));
  EXPECT_FALSE(JourRepublicainOk(31, "VENT", 2));
  EXPECT_TRUE(DateRepublicaineOk("06/COMP/03"));
  EXPECT_FALSE(DateRepublicaineOk("06/COMP/04"));
  EXPECT_FALSE(DateRepublicaineOk("01/XXXX/04"));
  EXPECT_TRUE(DateRepublicaineOk("../..../05"));
  EXPECT_FALSE(DateRepublicaineOk("01/VEND/20"));
}

TEST(Calendriers, FormesDesTextes) {
  EXPECT_EQ(RetourneFormatDate(""), ' ');
  EXPECT_EQ(RetourneFormatDate("27/10/1969"), 'G');
  EXPECT_EQ(RetourneFormatDate("10/VENT/05"), 'R');
  EXPECT_EQ(RetourneFormatDate("1850/1860"), '?');
  EXPECT_TRUE(DateFormatFourchette("05/07"));
  EXPECT_TRUE(DateFormatFourchette("..../1860"));
  EXPECT_FALSE(DateFormatFourchette("1850/1860 "));  // la fonction libre ne retire aucun blanc
  EXPECT_FALSE(DateFormatFourchetteAVC4chiffre("05/07"));
  EXPECT_TRUE(DateFormatRepublicain("10/VENT/5"));
  EXPECT_FALSE(DateFormatGregorien("1/10/1969"));
}

TEST(Calendriers, RangeesDeMoisEtJours) {
  std::string court, nom;
  EXPECT_EQ(RetourneMoisGregorien(2, court, nom), 2);
  EXPECT_EQ(court, "Fév");
  EXPECT_EQ(nom, "Février");
  EXPECT_EQ(RetourneMoisGregorien(9, court, nom, false), 9);
  EXPECT_EQ(court, "Sep");
  EXPECT_EQ(nom, "7bre");
  EXPECT_EQ(RetourneMoisGregorien(13, court, nom), 0);
  EXPECT_EQ(court, "....");
  EXPECT_EQ(nom, "....");
  // Le second nom hébraïque se lit aux colonnes du premier.
  EXPECT_EQ(RetourneMoisHebraique(7, court, nom, false), 7);
  EXPECT_EQ(nom, "Adar II");
  EXPECT_EQ(RetourneMoisRepublicain("vent", nom), 6);
  EXPECT_EQ(nom, "Ventôse");
  EXPECT_EQ(RetourneMoisRepublicain("XXXX", nom), 0);
  EXPECT_EQ(nom, "....");
  std::string code;
  int no2 = 0;
  EXPECT_EQ(RetourneMoisRepublicain2(13, code, nom, no2), 13);
  EXPECT_EQ(code, "COMP");
  EXPECT_EQ(nom, "Complémentaires");
  EXPECT_EQ(no2, 9);
  EXPECT_EQ(RetourneMensualiteHeb(1), "Tichri");
  EXPECT_EQ(RetourneJour(0), "Dimanche");
  EXPECT_EQ(RetourneJour(6), "Samedi");
  EXPECT_EQ(RetourneJour(7), "");
  // Toutes les rangées ont la largeur de leurs colonnes.
  for (int m = 1; m <= 12; ++m) EXPECT_EQ(Ressource(1823 + m).size(), 31u) << m;
  for (int m = 1; m <= 13; ++m) EXPECT_EQ(Ressource(3759 + m).size(), 31u) << m;
  for (int i = 0; i <= 12; ++i) EXPECT_EQ(Ressource(1808 + i).size(), 26u) << i;
}

TEST(Calendriers, PartiesEtAides) {
  int j = -1, m = -1, a = -1;
  RecupJourMoisAnnee("n'importe", j, m, a);
  EXPECT_EQ(j, -1);  // un texte d'aucune forme ne change rien
  RecupJourMoisAnnee("1?/../1850", j, m, a);
  EXPECT_EQ(j, 1);
  EXPECT_EQ(m, 0);
  EXPECT_EQ(a, 1850);
  RecupJourMoisAnnee("10/VENT/05", j, m, a);
  EXPECT_EQ(j, 28);
  EXPECT_EQ(m, 2);
  EXPECT_EQ(a, 1797);
  EXPECT_EQ(RecupMois("10/VENT/05"), "VENT");
  EXPECT_EQ(RecupAnnee("27/10/1969"), "1969");
  EXPECT_TRUE(AnneeVide("...."));
  std::string d1 = "../10/1969", d2 = "27/../....";
  CompleteDate12(d1, d2);
  EXPECT_EQ(d1, "27/10/1969");
  EXPECT_EQ(d2, "27/10/1969");
  EXPECT_EQ(FormatDateG("1/2/1900"), "01/02/1900");
  EXPECT_EQ(FormatDateG8("1/2/1900"), "01/02/00");
  EXPECT_EQ(CreerChnAn(1), "1 an");
  EXPECT_EQ(CreerChnAn(0), "0 an");
  EXPECT_EQ(CreerChnAn(42), "42 ans");
  EXPECT_EQ(CreerChnAn(100001), "");
  EXPECT_EQ(CreerChnAn(1000000), "");
  EXPECT_EQ(FormatDateNews("2021-03-04T10:11:12.000"), "04/03/2021");
  EXPECT_EQ(GetDateJour().size(), 10u);
}

}  // namespace
}  // namespace rqbase
