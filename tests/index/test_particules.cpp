// Les particules : la liste du texte 1800, EstCeUneParticule, PasseParticule.
#include "rqbase/index/particules.h"

#include <gtest/gtest.h>

#include "rqbase/platform/ressources.h"

namespace rqbase {
namespace {

TEST(Particules, ListeEnCapitalesEntreBlancs) {
  const std::string liste = RetourneToutesParticules();
  EXPECT_EQ(liste, Ressource(1800));
  ASSERT_GE(liste.size(), 3u);
  EXPECT_EQ(liste.front(), ' ');
  EXPECT_EQ(liste.back(), ' ');
  for (const char c : liste) EXPECT_TRUE(c == ' ' || (c >= 'A' && c <= 'Z')) << "octet " << int(c);
  for (const char* mot : {" D ", " DE ", " DES ", " DU ", " L ", " LA ", " LE ", " LES ", " VAN ", " VON "})
    EXPECT_NE(liste.find(mot), std::string::npos) << mot;
  EXPECT_EQ(liste.find("  "), std::string::npos);
}

TEST(Particules, EstCeUneParticule) {
  EXPECT_TRUE(EstCeUneParticule("de"));
  EXPECT_TRUE(EstCeUneParticule("DE"));
  EXPECT_TRUE(EstCeUneParticule("La"));
  EXPECT_TRUE(EstCeUneParticule("d'"));  // l'apostrophe finale est ôtée
  EXPECT_TRUE(EstCeUneParticule("L'"));
  EXPECT_TRUE(EstCeUneParticule("van"));
  EXPECT_TRUE(EstCeUneParticule("dé"));  // capitales nues avant la recherche
  EXPECT_FALSE(EstCeUneParticule(""));
  EXPECT_FALSE(EstCeUneParticule("'"));
  EXPECT_FALSE(EstCeUneParticule("d''"));
  EXPECT_FALSE(EstCeUneParticule("Tour"));
  EXPECT_FALSE(EstCeUneParticule("Saint"));
  EXPECT_FALSE(EstCeUneParticule("DELA"));
  EXPECT_FALSE(EstCeUneParticule("'de"));
  EXPECT_FALSE(EstCeUneParticule("E"));  // un morceau d'une particule n'en est pas une
}

TEST(Particules, PasseParticule) {
  EXPECT_EQ(PasseParticule("de la Tour"), "Tour");
  EXPECT_EQ(PasseParticule("Jean de La Fontaine"), "Jean Fontaine");
  EXPECT_EQ(PasseParticule("d'Artagnan"), "Artagnan");
  EXPECT_EQ(PasseParticule("de-la-Tour"), "Tour");
  EXPECT_EQ(PasseParticule("Van der Berg"), "Berg");
  EXPECT_EQ(PasseParticule("Delamare"), "Delamare");
  EXPECT_EQ(PasseParticule("Dupont/de Lyon"), "Dupont/Lyon");
  EXPECT_EQ(PasseParticule("Martin ° de Paris"), "Martin ° Paris");
  // Chaque particule part avec le seul séparateur qui la suit ; les autres séparateurs restent.
  EXPECT_EQ(PasseParticule("Le  Goff"), " Goff");
  EXPECT_EQ(PasseParticule("(de) Tour"), "( Tour");
  EXPECT_EQ(PasseParticule("Tour de"), "Tour ");
  EXPECT_EQ(PasseParticule("  Tour"), "  Tour");
  // Rien que des particules ou des séparateurs.
  EXPECT_EQ(PasseParticule("de la"), "");
  EXPECT_EQ(PasseParticule("D'"), "");
  EXPECT_EQ(PasseParticule("-.'? &"), "-.'? &");
  EXPECT_EQ(PasseParticule(""), "");
  EXPECT_EQ(PasseParticule(std::string(300, 'x')), std::string(300, 'x'));
}

}  // namespace
}  // namespace rqbase
