// La forme serrée des clés : octets fixes, aller-retour, longueurs hostiles.
#include "rqbase/index/cle_compressee.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace rqbase {
namespace {

// Un texte précédé de son octet de longueur.
std::string AvecLongueur(const std::string& texte) { return std::string(1, char(texte.size())) + texte; }

// Les octets de la forme serrée, longueur comprise, tels que Compress les donne.
std::vector<int> Serre(const std::string& texte) {
  std::vector<char> dest(kTailleCleCompresseeMax, char(0x5A));
  Compress(AvecLongueur(texte).c_str(), dest.data());
  const int n = static_cast<unsigned char>(dest[0]);
  return std::vector<int>(dest.begin(), dest.begin() + n);
}

// DeCompress dans un tampon de la taille maximale exacte (AddressSanitizer en garde le bord).
std::string Desserre(const std::vector<char>& src, int* longueur = nullptr) {
  std::vector<char> dest(kTailleCleDecompresseeMax, char(0x5A));
  DeCompress(src.data(), dest.data());
  if (longueur) *longueur = static_cast<unsigned char>(dest[0]);
  return std::string(dest.data() + 1);
}

TEST(CleCompressee, OctetsFixes) {
  EXPECT_EQ(Serre(""), (std::vector<int>{1}));
  EXPECT_EQ(Serre("A"), (std::vector<int>{2, 0x20}));      // 00100
  EXPECT_EQ(Serre("Z"), (std::vector<int>{2, -24}));       // 11101 -> 0xE8
  EXPECT_EQ(Serre("AB"), (std::vector<int>{3, 0x21, 0x40}));  // 00100 00101
  EXPECT_EQ(Serre(" "), (std::vector<int>{2, 0x10}));      // 00010
  EXPECT_EQ(Serre("-"), (std::vector<int>{2, 0x18}));      // 00011
  EXPECT_EQ(Serre("\xFF"), (std::vector<int>{2, 0x08}));   // 00001
  // Huit caractères tiennent juste en cinq octets.
  EXPECT_EQ(Serre("AAAAAAAA"), (std::vector<int>{6, 0x21, 0x08, 0x42, 0x10, -124}));
  // Hors de l'alphabet : les 5 bits bas de l'écart à 61 ('a' -> 36 -> 4, comme 'A').
  EXPECT_EQ(Serre("a"), Serre("A"));
  EXPECT_EQ(Serre(std::string(1, '\0')), (std::vector<int>{2, 0x00}));
}

TEST(CleCompressee, AllerRetourSurLAlphabet) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZ -";
  for (int n = 0; n <= 254; ++n) {
    std::string texte;
    for (int i = 0; i < n; ++i) texte += alphabet[(i * 7 + n) % alphabet.size()];
    std::vector<char> serre(kTailleCleCompresseeMax);
    Compress(AvecLongueur(texte).c_str(), serre.data());
    int longueur = 0;
    EXPECT_EQ(Desserre(serre, &longueur), texte) << n;
    EXPECT_EQ(longueur, n + 1) << n;
  }
  std::vector<char> serre(kTailleCleCompresseeMax);
  Compress(AvecLongueur(alphabet).c_str(), serre.data());
  EXPECT_EQ(static_cast<unsigned char>(serre[0]), 19);
  EXPECT_EQ(Desserre(serre), alphabet);
}

TEST(CleCompressee, LimitesDesTampons) {
  // 255 caractères : 161 octets, la taille maximale ; le compte plus un ne tient plus dans un
  // octet et revient à 0.
  const std::string texte(255, 'Q');
  std::vector<char> serre(kTailleCleCompresseeMax);
  Compress(AvecLongueur(texte).c_str(), serre.data());
  EXPECT_EQ(static_cast<unsigned char>(serre[0]), kTailleCleCompresseeMax);
  int longueur = -1;
  EXPECT_EQ(Desserre(serre, &longueur), texte);
  EXPECT_EQ(longueur, 0);

  // Longueur annoncée 0 : rien n'est lu au-delà.
  EXPECT_EQ(Desserre({0}, &longueur), "");
  EXPECT_EQ(longueur, 1);
  // Longueur maximale, tous les bits à 1 : 408 codes lus, dont 406 codes 31 ('\\'), un code
  // 11000 ('U') à cheval sur le bord, et un dernier, nul, entièrement au-delà.
  std::vector<char> plein(255, char(0xFF));
  EXPECT_EQ(Desserre(plein, &longueur), std::string(406, '\\') + "U");
  EXPECT_EQ(longueur, 408 % 256);
  // Les codes 0 sont passés sans rien écrire ; au-delà des octets annoncés, les bits sont nuls.
  EXPECT_EQ(Desserre({3, 0x01, 0x00}, &longueur), "A");
  EXPECT_EQ(longueur, 2);
  EXPECT_EQ(Desserre({2, 0x20, 'x'}, &longueur), "A");
}

}  // namespace
}  // namespace rqbase
