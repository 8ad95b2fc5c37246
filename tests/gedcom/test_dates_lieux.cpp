// Dates et lieux GEDCOM : lecture en TDateRQ et en lieu du dossier, et écriture inverse.
#include <gtest/gtest.h>

#include "rqbase/gedcom/dates_gedcom.h"
#include "rqbase/gedcom/lieux_gedcom.h"

namespace rqbase {
namespace {

struct TCas {
  const char* Gedcom;
  const char* Export;  // la forme exportée « #acte calendrier date# »
  bool Entiere;
};

TEST(DatesGedcom, LectureDesFormes) {
  const TCas cas[] = {
      {"12 MAR 1802", "#  G12/03/1802#", true},
      {"MAR 1802", "#  G../03/1802#", true},
      {"1802", "#  G../../1802#", true},
      {"abt 1792", "#caG../../1792#", true},
      {"CAL 1792", "#caG../../1792#", true},
      {"EST 1829", "#caG../../1829#", true},
      {"BEF 1850", "# <G../../1850#", true},
      {"AFT 3 JAN 1822", "# >G03/01/1822#", true},
      {"BET 1850 AND 1860", "#  G1850/1860#", true},
      {"FROM 1850 TO 1855", "#  G1850/1855#", true},
      {"FROM 1850", "#  G1850/....#", true},
      {"TO 1855", "#  G..../1855#", true},
      {"BET 1 JAN 1850 AND 1860", "#  G1850/1860#", false},
      {"INT 1850 (d'après l'acte)", "#  G../../1850#", false},
      {"@#DFRENCH R@ 12 VENT 10", "#  R12/VENT/10#", true},
      {"FRENCH_R FLOR 3", "#  R../FLOR/03#", true},
      {"@#DHEBREW@ 10 TSH 5600", "#  H10/01/5600#", true},
      {"@#DJULIAN@ 1 JAN 1700", "#  G11/01/1700#", true},
      {"@#DJULIAN@ 1 JAN 1500", "#  G01/01/1500#", true},
      {"44 B.C.", "#  A../../0044#", true},
      {"1750/51", "#  G../../1751#", true},
      {"30 FEB 1850", "", false},
      {"12 FOO 1850", "", false},
      {"(vers la fin de la guerre)", "", false},
      {"BET 1860 AND 1850", "", false},
      {"BET 10 AND @#DHEBREW@ 10 TSH 6570", "", false},
      {"@#DROMAN@ 12", "", false},
      {"12345", "", false},
      {"", "", false},
  };
  for (const TCas& c : cas) {
    TDateRQ d;
    std::string raison;
    EXPECT_EQ(DateGedcomVersRQ(c.Gedcom, d, raison), c.Entiere) << c.Gedcom << " : " << raison;
    EXPECT_EQ(d.ExportInString(), c.Export) << c.Gedcom;
    EXPECT_EQ(raison.empty(), c.Entiere) << c.Gedcom;
  }
}

TEST(DatesGedcom, EcritureRelueDonneLaMemeDate) {
  const std::pair<const char*, const char*> cas[] = {
      {"12 MAR 1802", "12 MAR 1802"},
      {"ABT 1792", "ABT 1792"},
      {"BEF MAR 1850", "BEF MAR 1850"},
      {"AFT 1822", "AFT 1822"},
      {"BET 1850 AND 1860", "BET 1850 AND 1860"},
      {"FROM 1850", "FROM 1850"},
      {"TO 1855", "TO 1855"},
      {"@#DFRENCH R@ 12 VENT 10", "@#DFRENCH R@ 12 VENT 10"},
      {"@#DHEBREW@ 10 TSH 5600", "@#DHEBREW@ 10 TSH 5600"},
      {"44 B.C.", "44 B.C."},
      {"850", "850"},
  };
  for (const auto& [entree, sortie] : cas) {
    TDateRQ d;
    std::string raison;
    ASSERT_TRUE(DateGedcomVersRQ(entree, d, raison)) << entree;
    EXPECT_EQ(DateRQVersGedcom(d), sortie) << entree;
    TDateRQ relue;
    ASSERT_TRUE(DateGedcomVersRQ(DateRQVersGedcom(d), relue, raison));
    EXPECT_TRUE(relue.MemesOctets(d)) << entree;
  }
  EXPECT_EQ(DateRQVersGedcom(TDateRQ()), "");
  EXPECT_EQ(DateRQVersGedcom(TDateRQ('G', "../../....")), "");
}

TEST(LieuxGedcom, HierarchieDesVirgules) {
  auto lieu = [](const char* plac, const char* forme = "") {
    const TLieuGedcom l = DecoupeLieuGedcom(plac, forme);
    return l.Commune + "|" + l.Code + "|" + l.Region + "|" + l.Pays + "|" + l.LieuDit;
  };
  // Département et région gardés tous deux : aucune partie ne se perd.
  EXPECT_EQ(lieu("Amiens, 80, Somme, Picardie, France, Saint-Leu"), "Amiens|80|Somme, Picardie|France|Saint-Leu");
  EXPECT_EQ(lieu("Amiens, 80, Somme, Picardie, France"), "Amiens|80|Somme, Picardie|France|");
  EXPECT_EQ(lieu("Amiens, 80021, Somme, , France"), "Amiens|80021|Somme|France|");
  EXPECT_EQ(lieu("Ajaccio, 2A004, Corse-du-Sud, Corse, France, Vieux port, quai"),
            "Ajaccio|2A004|Corse-du-Sud, Corse|France|Vieux port, quai");
  EXPECT_EQ(lieu("Brest"), "Brest||||");
  EXPECT_EQ(lieu("Brest, 29200"), "Brest|29200|||");
  EXPECT_EQ(lieu("Brest, Finistère"), "Brest||Finistère||");
  EXPECT_EQ(lieu("Paris, France"), "Paris|||France|");
  EXPECT_EQ(lieu("Bruxelles, belgique"), "Bruxelles|||belgique|");
  EXPECT_EQ(lieu("Brest, Finistère, France"), "Brest||Finistère|France|");
  EXPECT_EQ(lieu("Brest, Finistère, Bretagne, France"), "Brest||Finistère, Bretagne|France|");
  EXPECT_EQ(lieu("Brest, 29, Bretagne, France"), "Brest|29|Bretagne|France|");
  EXPECT_EQ(lieu(""), "||||");
  // La forme de l'en-tête dit le rôle de chaque place ; un nom inconnu va au lieu-dit.
  EXPECT_EQ(lieu("Springfield, Sangamon, Illinois, USA", "City, County, State, Country"),
            "Springfield||Sangamon, Illinois|USA|");
  EXPECT_EQ(lieu("Amiens, 80021, Picardie, France, Saint-Leu", "Commune, Code INSEE, Région, Pays, Hameau"),
            "Amiens|80021|Picardie|France|Saint-Leu");
  EXPECT_EQ(lieu("Saint-Leu, Amiens, France", "Lieu-dit, Ville, Pays"), "Amiens|||France|Saint-Leu");
  // Une forme sans commune reconnue ne sert pas : la lecture par défaut s'applique.
  EXPECT_EQ(lieu("Paris, France", "A, B"), "Paris|||France|");
  // L'écriture redonne le département à sa place, et se relit à l'identique.
  EXPECT_EQ(ComposeLieuGedcom(DecoupeLieuGedcom("Amiens, 80, Somme, Picardie, France")), "Amiens, 80, Somme, Picardie, France");
  EXPECT_EQ(ComposeLieuGedcom(DecoupeLieuGedcom("Paris, France")), "Paris, , , , France");
  for (const char* plac : {"Amiens, 80, , Picardie, France, Saint-Leu", "Brest", "Lyon, 69, , Rhône-Alpes, France",
                           "Amiens, 80, Somme, Picardie, France, Saint-Leu", "Paris, , , , France"}) {
    const TLieuGedcom l = DecoupeLieuGedcom(plac);
    EXPECT_EQ(ComposeLieuGedcom(l), plac);
  }
}

}  // namespace
}  // namespace rqbase
