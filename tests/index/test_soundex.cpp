// Le soundex de ce système et ses comparaisons partielles.
#include "rqbase/index/soundex.h"

#include <gtest/gtest.h>

#include <string>

namespace rqbase {
namespace {

// Le code d'un texte ; "<nul>" quand strSoundex rend nullptr.
std::string Code(const char* texte) {
  char dest[kTailleSoundex] = {'x', 'x', 'x', 'x', 'x'};
  const char* r = strSoundex(texte, dest);
  if (r == nullptr) return dest[0] == '\0' ? "<nul>" : "<nul mais non vide>";
  return r == dest ? std::string(dest) : "<autre tampon>";
}

TEST(Soundex, Codes) {
  EXPECT_EQ(Code("DUPONT"), "D153");
  EXPECT_EQ(Code("DUPOND"), "D153");
  EXPECT_EQ(Code("MARTIN-DUPONT"), "M635");
  EXPECT_EQ(Code("BCDLMR"), "B234");  // jamais plus de 4 caractères
  EXPECT_EQ(Code("A"), "A");
  // Le premier caractère est copié tel quel, lettre ou non.
  EXPECT_EQ(Code("ÉMILE"), "É54");
  EXPECT_EQ(Code("1RUE"), "16");
  // Le texte est attendu en capitales : les minuscules n'ont pas de classe.
  EXPECT_EQ(Code("dupont"), "d");
  EXPECT_EQ(Code(("B" + std::string(299, 'A')).c_str()), "B");
}

TEST(Soundex, HDeTeteEtTextesVides) {
  EXPECT_EQ(Code("HENRI"), "E56");
  EXPECT_EQ(Code("H"), "<nul>");
  EXPECT_EQ(Code(""), "<nul>");
  EXPECT_EQ(Code(nullptr), "<nul>");
  EXPECT_EQ(Code("HH"), "H");  // un seul H de tête est sauté
  EXPECT_EQ(Code("AH"), "A");
}

TEST(Soundex, ReglesVoulues) {
  // Seules les répétitions d'une même lettre se replient.
  EXPECT_EQ(Code("PFAFF"), "P11");
  EXPECT_EQ(Code("ACKER"), "A226");  // C et K, même classe, côte à côte : deux chiffres
  EXPECT_EQ(Code("SCHMIDT"), "S253");
  EXPECT_EQ(Code("BOBBY"), "B1");  // B derrière une voyelle redonne un chiffre
  EXPECT_EQ(Code("LL"), "L");
  EXPECT_EQ(Code("PP"), "P");
  // Jamais complété par des zéros.
  EXPECT_EQ(Code("BEAU"), "B");
  // Le joker reste lui-même.
  EXPECT_EQ(Code("DUP*"), "D1*");
  EXPECT_EQ(Code("*"), "*");
  EXPECT_EQ(Code("DUP**"), "D1*");
}

TEST(Soundex, ComparaisonPartielle) {
  EXPECT_EQ(strcmpSoundexPartiel("DUPONT", "DUPOND"), 0);
  // Voulu : le joker se compare comme un octet ; D1* contre D15 n'est pas une égalité.
  EXPECT_LT(strcmpSoundexPartiel("DUP*", "DUPONT"), 0);
  EXPECT_GT(strcmpSoundexPartiel("DUPONT", "DUP*"), 0);
  EXPECT_LT(strcmpSoundexPartiel("D*", "DUPONT"), 0);
  // Le code du motif à joker coupe l'autre à sa longueur : *25 contre *253 devient *25.
  EXPECT_EQ(strcmpSoundexPartiel("*SM", "*SMD"), 0);
  EXPECT_EQ(strcmpSoundexPartiel("*SMD", "*SM"), 0);
  // Sans joker, pas de coupe.
  EXPECT_LT(strcmpSoundexPartiel("SMI", "SMID"), 0);
  // Un joker au-delà du quatrième caractère ne laisse rien dans le code.
  EXPECT_EQ(strcmpSoundexPartiel("DUPONT*", "DUPONDEL"), 0);
  EXPECT_GT(strcmpSoundexPartiel("MARTIN", "MARTEL"), 0);
  EXPECT_EQ(strcmpSoundexPartiel("", ""), 0);
  EXPECT_EQ(strcmpSoundexPartiel("H", ""), 0);
  EXPECT_LT(strcmpSoundexPartiel("", "A"), 0);
}

TEST(Soundex, ChaqueElement) {
  EXPECT_TRUE(strEgaleSoundexPartielChqElt("DUPONT", "JEAN DUPOND MARTIN"));
  EXPECT_TRUE(strEgaleSoundexPartielChqElt("DUPONT", "DUPOND MARTIN"));  // un accord suffit
  EXPECT_TRUE(strEgaleSoundexPartielChqElt("DUPONT", "  MARTIN   DUPOND "));
  EXPECT_FALSE(strEgaleSoundexPartielChqElt("DUPONT", "JEAN MARTIN"));
  EXPECT_FALSE(strEgaleSoundexPartielChqElt("DUPONT", "JEAN-DUPOND"));  // le trait d'union ne sépare pas
  EXPECT_FALSE(strEgaleSoundexPartielChqElt("DUP*", "DUPONT"));
  // Les éléments vides ne comptent pas, même contre un texte cherché vide.
  EXPECT_FALSE(strEgaleSoundexPartielChqElt("", "   "));
  EXPECT_FALSE(strEgaleSoundexPartielChqElt("", ""));
  EXPECT_FALSE(strEgaleSoundexPartielChqElt("DUPONT", nullptr));
}

}  // namespace
}  // namespace rqbase
