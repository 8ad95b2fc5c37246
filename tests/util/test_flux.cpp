#include "rqbase/util/flux.h"

#include <gtest/gtest.h>

#include <sstream>

namespace rqbase {
namespace {

TEST(Flux, FormatPetitBoutisteEtAllerRetour) {
  std::stringstream tampon;
  opstream os(tampon);
  os.writeLong(0x01020304);
  os.writeString("Né");
  os.writeByte(1);
  EXPECT_EQ(tampon.str(), std::string("\x04\x03\x02\x01\x02\0\0\0N\xE9\x01", 11));

  ipstream is(tampon);
  EXPECT_EQ(is.Restant(), 11);
  EXPECT_EQ(is.readLong(), 0x01020304);
  EXPECT_EQ(is.readString(), "Né");
  EXPECT_EQ(is.readByte(), 1);
  EXPECT_TRUE(is.Bon());
  EXPECT_EQ(is.readLong(), 0);  // au-delà de la fin : zéro et échec
  EXPECT_FALSE(is.Bon());
}

TEST(Flux, TexteDeLongueurAbsurdeNAlloueRien) {
  std::stringstream tampon;
  opstream os(tampon);
  os.writeLong(0x7FFFFFFF);
  os.writeBytes("abc", 3);
  ipstream is(tampon);
  EXPECT_EQ(is.readString(), "");
  EXPECT_FALSE(is.Bon());
  EXPECT_EQ(is.Restant(), 0);

  std::stringstream negatif(std::string("\xFF\xFF\xFF\xFF", 4));
  ipstream is2(negatif);
  EXPECT_EQ(is2.readString(), "");
  EXPECT_FALSE(is2.Bon());
}

}  // namespace
}  // namespace rqbase
