#include "rqbase/util/chaines.h"
#include "rqbase/util/majuscules.h"

#include <gtest/gtest.h>

namespace rqbase {
namespace {

TEST(Chaines, ElementsDUneListeSeparee) {
  EXPECT_EQ(NombreElts("", ';'), 0);
  EXPECT_EQ(NombreElts("a", ';'), 1);
  EXPECT_EQ(NombreElts("a;;b", ';'), 3);
  EXPECT_EQ(NombreElts("a;", ';'), 2);
  EXPECT_EQ(EltNo(1, "Paris;75;IdF", ';'), "Paris");
  EXPECT_EQ(EltNo(3, "Paris;75;IdF", ';'), "IdF");
  EXPECT_EQ(EltNo(2, "a;;b", ';'), "");
  EXPECT_EQ(EltNo(0, "a;b", ';'), "");
  EXPECT_EQ(EltNo(4, "a;b", ';'), "");
  EXPECT_EQ(EltNo(1, "12\nreste", '\n'), "12");
  EXPECT_EQ(RemplEltNo(2, "a;b;c", ';', "X"), "a;X;c");
  EXPECT_EQ(RemplEltNo(4, "a", ';', "d"), "a;;;d");
  EXPECT_EQ(RemplEltNo(1, "", ';', "seul"), "seul");
}

TEST(Chaines, RemplacementEtTrim) {
  EXPECT_EQ(RemplaceString("#1 et #1", "#1", "\"Dupont\""), "\"Dupont\" et \"Dupont\"");
  EXPECT_EQ(RemplaceString("aaa", "aa", "b"), "ba");
  EXPECT_EQ(RemplaceString("abc", "", "x"), "abc");
  EXPECT_EQ(Trim("  \t Lyon \r\n"), "Lyon");
  EXPECT_EQ(Trim("   "), "");
}

TEST(Chaines, JointuresDesTextesComposes) {
  EXPECT_EQ(Virgule("Paris", "France", true), ", ");
  EXPECT_EQ(Virgule("Paris", "France", false), ",");
  EXPECT_EQ(Virgule("", "France", true), "");
  EXPECT_EQ(Virgule("Paris", "", true), "");
  EXPECT_EQ(PointVirgule("a", "b", true), " ; ");
  EXPECT_EQ(PointVirgule("a", nullptr, false), " ;");
  EXPECT_EQ(PointVirgule("", "b", true), "");
  EXPECT_EQ(PointVirgule("a", "", true), "");
  EXPECT_EQ(EntreParenthese("75", true), " (75)");
  EXPECT_EQ(EntreParenthese("75", false), "(75)");
  EXPECT_EQ(EntreParenthese("", true), "");
  EXPECT_EQ(Espace("x"), " ");
  EXPECT_EQ(Espace(""), "");
}

TEST(Chaines, AbregeChnCoupeApresUneConsonneOuDevantUnSeparateur) {
  EXPECT_EQ(AbregeChn("Naissance", 3), "Nai.");
  EXPECT_EQ(AbregeChn("Baptême", 3), "Bap.");
  EXPECT_EQ(AbregeChn("Décès", 3), "Dé.");   // è est une voyelle : on recule jusqu'au c
  EXPECT_EQ(AbregeChn("Saint-Denis", 5), "Saint");  // séparateur juste après la coupe
  EXPECT_EQ(AbregeChn("Ma aie", 4), "Ma");          // un blanc trouvé en reculant : sans point
  EXPECT_EQ(AbregeChn("Saint Jean", 7), "Saint .");  // le J est une consonne : le blanc reste
  EXPECT_EQ(AbregeChn("Aie", 1), "A.");            // aucune consonne
  EXPECT_EQ(AbregeChn("Lyon", 3), "Lyo.");
  EXPECT_EQ(AbregeChn("Mariage", 10), "Mariage");
  EXPECT_EQ(AbregeChn("", 0), "");
}

TEST(Chaines, MinusculesAvecOuSansCapitaleEnTete) {
  EXPECT_EQ(LowerChaineAS("ÉLISE LEFÈVRE-ŒUVRE", 0), "élise lefèvre-œuvre");
  EXPECT_EQ(LowerChaineAS("ÉLISE LEFÈVRE", 1), "Élise lefèvre");
  EXPECT_EQ(LowerChaineAS("ŸVES ×2", 1), "Ÿves ×2");  // le signe de multiplication n'est pas une lettre
  EXPECT_EQ(LowerChaineAS("", 1), "");
}

}  // namespace
}  // namespace rqbase
