#include "rqbase/util/date_heure.h"

#include <gtest/gtest.h>

#include <cmath>

namespace rqbase {
namespace {

TEST(DateHeure, OrigineEtDecodage) {
  TDateTime d = -1;
  ASSERT_TRUE(EncodeDate(1899, 12, 30, d));
  EXPECT_EQ(d, 0.0);
  ASSERT_TRUE(EncodeDate(2000, 1, 1, d));
  EXPECT_EQ(d, 36526.0);
  ASSERT_TRUE(EncodeDate(1, 1, 1, d));
  EXPECT_EQ(d, -693593.0);
  EXPECT_FALSE(EncodeDate(1900, 2, 29, d));  // 1900 n'est pas bissextile
  EXPECT_TRUE(EncodeDate(2000, 2, 29, d));
  int a, m, j;
  DecodeDate(36526.75, a, m, j);
  EXPECT_EQ(a * 10000 + m * 100 + j, 20000101);
  EXPECT_EQ(DateHeureEnTexte(36526.75), "01/01/2000 18:00:00");
  // Avant 1899 la fraction compte toujours en avant dans le jour.
  EXPECT_EQ(DateHeureEnTexte(-1.25), "29/12/1899 06:00:00");
}

TEST(DateHeure, IncMonthRameneAuDernierJour) {
  TDateTime d = 0;
  EncodeDate(2023, 1, 31, d);
  EXPECT_EQ(DateHeureEnTexte(IncMonth(d, 1)), "28/02/2023 00:00:00");
  EncodeDate(2024, 1, 31, d);
  EXPECT_EQ(DateHeureEnTexte(IncMonth(d, 1)), "29/02/2024 00:00:00");
  EXPECT_EQ(DateHeureEnTexte(IncMonth(d, -2)), "30/11/2023 00:00:00");
  EXPECT_EQ(DateHeureEnTexte(IncMonth(d + 0.5, 12)), "31/01/2025 12:00:00");
}

TEST(DateHeure, RetourneTDTRelitLaFormeCourte) {
  for (double v : {0.0, 45000.123456789, -12.5, 36526.000011574074, 1e-9}) {
    EXPECT_EQ(RetourneTDT(TexteTDT(v)), v) << TexteTDT(v);
  }
  EXPECT_EQ(TexteTDT(36526.5), "36526.5");
  EXPECT_EQ(RetourneTDT("01/01/2000 18:00:00"), 36526.75);
  EXPECT_EQ(RetourneTDT("01/01/2000"), 36526.0);
  const double maintenant = Maintenant();
  EXPECT_NEAR(RetourneTDT(""), maintenant, 1.0 / 24);
  EXPECT_NEAR(RetourneTDT("31/02/2000"), maintenant, 1.0 / 24);  // illisible : le présent
}

}  // namespace
}  // namespace rqbase
