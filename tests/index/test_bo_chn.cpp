// Clés des noms : NormaliseCle, strcmpIgnDiac, TransformeEnCaractereIndex, FormatIndex.
#include "rqbase/index/bo_chn.h"

#include <gtest/gtest.h>

#include <string>

namespace rqbase {
namespace {

std::string Cle(std::string nom) { return NormaliseCle(nom); }

TEST(NormaliseCle, LettresBlancsEtTraitsDUnionSeulement) {
  std::string nom = "L'Écuyer (dit Martin)";
  EXPECT_EQ(NormaliseCle(nom), "LECUYER ");
  EXPECT_EQ(nom, "LECUYER ");  // aussi sur place
  EXPECT_EQ(Cle("O'Neil-Smith"), "ONEIL-SMITH");
  EXPECT_EQ(Cle("Jean 2 d'Arc"), "JEAN  DARC");
  EXPECT_EQ(Cle("  de la Tour  "), "  DE LA TOUR  ");
  EXPECT_EQ(Cle("\"Dupont\", Pierre; «Paul»"), "DUPONT PIERRE PAUL");
  EXPECT_EQ(Cle("Œuvrard Æsop Ørsted"), "UVRARD SOP RSTED");
  // Octets hauts qui ne sont pas des lettres : €, espace insécable, µ, ß, ÷, °.
  EXPECT_EQ(Cle("A\x80" "B\xA0" "C\xB5" "D\xDF" "E\xF7" "F\xB0"), "ABCDEF");
  EXPECT_EQ(Cle(""), "");
  EXPECT_EQ(Cle("'.,;!?0123456789_"), "");
  EXPECT_EQ(Cle(std::string("AB\0CD", 5)), "AB");
}

TEST(NormaliseCle, ChaqueParentheseBascule) {
  EXPECT_EQ(Cle("A(b)C(d)E"), "ACE");
  EXPECT_EQ(Cle("Dupont (Jean"), "DUPONT ");
  // Voulu : une fermante égarée ouvre un passage sauté jusqu'à la parenthèse suivante.
  EXPECT_EQ(Cle("Dupont) Jean"), "DUPONT");
  EXPECT_EQ(Cle("A)b(C"), "AC");
  EXPECT_EQ(Cle("A((b))C"), "ABC");
  EXPECT_EQ(Cle("()()"), "");
}

TEST(NormaliseCle, NomsLongs) {
  EXPECT_EQ(Cle(std::string(300, 'e')), std::string(300, 'E'));
  EXPECT_EQ(Cle("(" + std::string(299, 'e')), "");
  std::string long_ = std::string(150, 'a') + "-" + std::string(149, 'z');
  EXPECT_EQ(Cle(long_), std::string(150, 'A') + "-" + std::string(149, 'Z'));
}

TEST(StrcmpIgnDiac, SansCasseNiAccentPuisTelQuel) {
  EXPECT_EQ(strcmpIgnDiac("Dupont", "Dupont"), 0);
  EXPECT_LT(strcmpIgnDiac("Émile", "Zoé"), 0);  // É rangé comme E, pas après Z
  EXPECT_GT(strcmpIgnDiac("Éloi", "elise"), 0);  // ELOI > ELISE
  EXPECT_LT(strcmpIgnDiac("abc", "ABD"), 0);
  // À égalité sans casse ni accent, les textes tels quels départagent.
  EXPECT_GT(strcmpIgnDiac("élise", "ELISE"), 0);
  EXPECT_LT(strcmpIgnDiac("ELISE", "élise"), 0);
  EXPECT_LT(strcmpIgnDiac("ELISE", "elise"), 0);
  EXPECT_LT(strcmpIgnDiac("", "a"), 0);
}

TEST(TransformeEnCaractereIndex, OteReplieSansRogner) {
  EXPECT_EQ(TransformeEnCaractereIndex("DU*?,(){}[]&\"/=PONT"), "DUPONT");
  EXPECT_EQ(TransformeEnCaractereIndex("A;;;B"), "A;B");
  EXPECT_EQ(TransformeEnCaractereIndex("A    B"), "A B");
  EXPECT_EQ(TransformeEnCaractereIndex("  A  "), " A ");
  // Les caractères ôtés d'abord : les ';' et les blancs qu'ils séparaient se rejoignent.
  EXPECT_EQ(TransformeEnCaractereIndex("A;(;B"), "A;B");
  EXPECT_EQ(TransformeEnCaractereIndex("A ( ) B"), "A B");
  // Les ';' avant les blancs : "; ;" garde ses deux ';'.
  EXPECT_EQ(TransformeEnCaractereIndex("A; ;B"), "A; ;B");
  EXPECT_EQ(TransformeEnCaractereIndex("L'ÉCUYER-D.°"), "L'ÉCUYER-D.°");
  EXPECT_EQ(TransformeEnCaractereIndex("*()"), "");
}

TEST(FormatIndex, ParticulesCapitalesEtCaracteres) {
  EXPECT_EQ(FormatIndex("de la Tour"), "TOUR");
  EXPECT_EQ(FormatIndex("d'Artagnan"), "ARTAGNAN");
  EXPECT_EQ(FormatIndex("l'Écuyer"), "ECUYER");
  EXPECT_EQ(FormatIndex("Van der Berg"), "BERG");
  EXPECT_EQ(FormatIndex("Lefèvre-Dupont"), "LEFEVRE-DUPONT");
  EXPECT_EQ(FormatIndex("Saint-Exupéry"), "SAINT-EXUPERY");
  EXPECT_EQ(FormatIndex("du Bois (dit Martin)"), "BOIS DIT MARTIN");
  EXPECT_EQ(FormatIndex("Dupont;;Durand"), "DUPONT;DURAND");
  EXPECT_EQ(FormatIndex("Delatour"), "DELATOUR");
  // Une particule en fin de nom part sans séparateur : le blanc d'avant reste.
  EXPECT_EQ(FormatIndex("Tour de"), "TOUR ");
  // Un nom fait de particules ou de ponctuation seulement.
  EXPECT_EQ(FormatIndex("de la"), "");
  EXPECT_EQ(FormatIndex("De La Du"), "");
  EXPECT_EQ(FormatIndex("*?()"), "");
  EXPECT_EQ(FormatIndex(""), "");
  const std::string long_ = "de " + std::string(297, 'a');
  EXPECT_EQ(FormatIndex(long_), std::string(297, 'A'));
}

}  // namespace
}  // namespace rqbase
