// Les deux tables de capitales des clés, octet par octet.
#include <gtest/gtest.h>

#include <cstring>

#include "rqbase/util/majuscules.h"

namespace rqbase {
namespace {

TEST(MajusculesCles, CapitalesNuesOtentChaqueAccent) {
  EXPECT_EQ(UpperANSIChaineAS("àáâãäåçèéêëìíîïñòóôõöùúûüýÿ", 2), "AAAAAACEEEEIIIINOOOOOUUUUYY");
  EXPECT_EQ(UpperANSIChaineAS("ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÑÒÓÔÕÖÙÚÛÜÝŸ", 2), "AAAAAACEEEEIIIINOOOOOUUUUYY");
  EXPECT_EQ(UpperANSIChaineAS("Lefèvre-Dupont l'Écuyer", 2), "LEFEVRE-DUPONT L'ECUYER");
  // Tout mode autre que 1 est le mode des capitales nues.
  EXPECT_EQ(UpperANSIChaineAS("é", 0), "E");
  EXPECT_EQ(UpperANSIChaineAS("é", 7), "E");
}

TEST(MajusculesCles, LigaturesEtSignesRestentEuxMemes) {
  EXPECT_EQ(UpperANSIChaineAS("æœø", 2), "ÆŒØ");
  EXPECT_EQ(UpperANSIChaineAS("ßµ¹³¿", 2), "ßµ¹³¿");
  // Hors de la table : š et ž prennent leur capitale et gardent leur caron.
  EXPECT_EQ(UpperANSIChaineAS("šž", 2), "ŠŽ");
  EXPECT_EQ(UpperANSIChaineAS("€ «»° 1,5", 2), "€ «»° 1,5");
}

TEST(MajusculesCles, CapitalesAccentueesGardentLesAccents) {
  EXPECT_EQ(UpperANSIChaineAS("élève ÿ œ ç", 1), "ÉLÈVE Ÿ Œ Ç");
  EXPECT_EQ(UpperANSIChaineAS("ÀÉÎÕÜ", 1), "ÀÉÎÕÜ");
}

TEST(MajusculesCles, TamponsEtTablesDonnees) {
  char tampon[32];
  std::strcpy(tampon, "Hélène");
  UpperANSIChaine0(tampon, tampon, 2);  // même tampon : en place
  EXPECT_STREQ(tampon, "HELENE");
  char dest[32];
  UpperANSIChaine0(dest, "Noël", 1);
  EXPECT_STREQ(dest, "NOËL");
  // La première paire qui convient l'emporte, après la mise en capitales.
  const TPaireMajuscule table[] = {{'A', 'B'}, {'A', 'C'}, {'b', 'Z'}};
  UpperChaine0(dest, "ab", table);
  EXPECT_STREQ(dest, "BB");
}

}  // namespace
}  // namespace rqbase
