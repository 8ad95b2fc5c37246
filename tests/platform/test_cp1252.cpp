#include "rqbase/platform/cp1252.h"

#include <gtest/gtest.h>

namespace rqbase {
namespace {

TEST(Cp1252, LesDeuxCentCinquanteSixOctetsFontLAllerRetour) {
  std::string tous;
  for (int c = 0; c < 256; ++c) tous += char(c);
  const std::string utf8 = VersUtf8(tous);
  EXPECT_TRUE(EstUtf8Valide(utf8));
  EXPECT_EQ(DepuisUtf8(utf8), tous);
}

TEST(Cp1252, PointsDeCodeDeLaPlage80) {
  EXPECT_EQ(VersUtf8("\x80"), "\xE2\x82\xAC");  // euro
  EXPECT_EQ(VersUtf8("\x9C"), "\xC5\x93");      // oe
  EXPECT_EQ(VersUtf8("\x81"), "\xC2\x81");      // octet non défini : même valeur
  EXPECT_EQ(VersUtf8("\xE9"), "\xC3\xA9");      // é
}

TEST(Cp1252, Utf8SansEquivalentOuInvalide) {
  EXPECT_EQ(DepuisUtf8("\xE4\xB8\xAD"), "?");     // un idéogramme
  EXPECT_EQ(DepuisUtf8("a\xE9z"), "a\xE9z");      // octet isolé : déjà du Windows-1252
  EXPECT_EQ(DepuisUtf8("\xC0\xAF"), "\xC0\xAF");  // forme trop longue refusée
  EXPECT_FALSE(EstUtf8Valide("\xED\xA0\x80"));    // substitut
  EXPECT_EQ(DepuisUtf8("\xC3"), "\xC3");          // suite coupée
}

TEST(Cp1252, CasseIndependanteDeLaLocale) {
  EXPECT_EQ(MajusculesCp1252("élève œuvre ÿ àç"), "ÉLÈVE ŒUVRE Ÿ ÀÇ");
  EXPECT_EQ(MinusculesCp1252("ÉLÈVE ŒUVRE Ÿ"), "élève œuvre ÿ");
  // Le signe de division et le signe de multiplication ne sont pas des lettres ; ß n'a pas de majuscule.
  EXPECT_EQ(MajusculeCp1252(0xF7), 0xF7);
  EXPECT_EQ(MinusculeCp1252(0xD7), 0xD7);
  EXPECT_EQ(MajusculeCp1252(0xDF), 0xDF);
  EXPECT_EQ(SansAccentCp1252(static_cast<unsigned char>('\xC9')), 'E');
  EXPECT_EQ(SansAccentCp1252(static_cast<unsigned char>('\xE7')), 'c');
}

}  // namespace
}  // namespace rqbase
