// Le décompte des jours entre deux dates : marche jour par jour, réforme de 1582,
// âges, décompte approché, dates incalculables.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "dates_essai.h"
#include "rqbase/dates/calendriers.h"
#include "rqbase/dates/decompte_jours.h"

namespace rqbase {
namespace {

using essai::D;

TEST(CalcJours, AgesEtCasLimites) {
  float age = 0;
  int annees = 0, jours = 0, mois = 0;
  bool inverse = true;
  EXPECT_EQ(CalcJours(D("", 'G', "01/01/1900"), D("", 'G', "01/01/1901"), &age, &annees, &jours, false, &inverse, &mois),
            365);
  EXPECT_FLOAT_EQ(age, 1.0f);
  EXPECT_FALSE(inverse);
  EXPECT_EQ(CalcJours(D("", 'G', "09/12/1582"), D("", 'G', "20/12/1582")), 1);
  EXPECT_EQ(CalcJours(D("", 'G', "09/12/1582"), D("", 'G', "20/12/1582"), &age), 1);
  EXPECT_EQ(CalcJours(D("", 'G', "15/10/1582"), D("", 'G', "16/10/1582")), 1);
  EXPECT_EQ(CalcJours(D("", 'G', "28/02/1500"), D("", 'G', "01/03/1500")), 2);
  EXPECT_EQ(CalcJours(D("", 'G', "28/02/1504"), D("", 'G', "01/03/1504")), 1);
  EXPECT_EQ(CalcJours(D("", 'G', "01/01/1901"), D("", 'G', "01/01/1900"), &age, &annees, nullptr, false, &inverse), 365);
  EXPECT_TRUE(inverse);
  // Anniversaire d'un 29 février : le 1er mars les années sans 29 février.
  CalcJours(D("", 'G', "29/02/1904"), D("", 'G', "01/03/1905"), &age, &annees, &jours, false, nullptr, &mois);
  EXPECT_EQ(annees, 1);
  EXPECT_EQ(jours, 0);
  // Âge juste avant un anniversaire : jamais un nombre entier trop tôt.
  CalcJours(D("", 'G', "02/01/1900"), D("", 'G', "01/01/1901"), &age, &annees, &jours);
  EXPECT_EQ(jours, 364);
  EXPECT_NEAR(age, 364.0f / 365.0f - 0.006f, 1e-5);
  CalcJours(D("", 'G', "01/01/1900"), D("", 'G', "02/01/1901"), &age, &annees, &jours);
  EXPECT_NEAR(age, 1.0f + 1.0f / 365.0f + 0.005f, 1e-5);
  // Mois entiers, fins de mois courts comprises.
  EXPECT_EQ(CalculMoisDateDate(D("", 'G', "31/01/1900"), D("", 'G', "31/12/1900")), 11);
  EXPECT_EQ(CalculMoisDateDate(D("", 'G', "15/01/1900"), D("", 'G', "14/03/1902")), 25);
  // Incalculables.
  EXPECT_EQ(CalcJours(D("", 'G', "../../...."), D("", 'G', "01/01/1900"), &age), kIncalculable);
  EXPECT_EQ(age, kIncalculableF);
  EXPECT_EQ(CalcJours(D("", 'G', "01/01/2400"), D("", 'G', "01/01/1900")), kIncalculable);
  EXPECT_EQ(CalcJours(D("", 'G', "1850/1860"), D("", 'G', "01/01/1900")), kIncalculable);
  EXPECT_EQ(CalcJours(D("", 'G', "30/02/1900"), D("", 'G', "01/01/1900")), kIncalculable);
  // Approché : 365 jours l'an, 30 le mois ; une fourchette devient sa date moyenne.
  EXPECT_EQ(CalcJours(D("", 'G', "15/01/1900"), D("", 'G', "20/03/1910"), nullptr, nullptr, nullptr, true), 3650 + 60 + 5);
  EXPECT_EQ(CalcJours(D("", 'G', "1850/1860"), D("", 'G', "01/01/1900"), nullptr, nullptr, nullptr, true), 45 * 365);
  EXPECT_EQ(CalculAnneeDateDate(D("", 'G', "01/06/1900"), D("", 'G', "01/01/1900")), -1);
  EXPECT_EQ(CalculAnneeDateDate(D("", 'G', "01/01/1900"), D("", 'G', "01/06/1950")), 50);
  bool erreur = false;
  EXPECT_EQ(CalculJoursDateDate(D("", 'G', "02/01/1900"), D("", 'G', "01/01/1900"), erreur), -1);
  EXPECT_FALSE(erreur);
  EXPECT_EQ(CalculJoursDateDate(D("", 'G', ""), D("", 'G', "01/01/1900"), erreur), kIncalculable);
  EXPECT_TRUE(erreur);
}

TEST(CalcJours, LeDecompteDirectEgaleLaMarche) {
  std::mt19937 alea(1582);
  std::uniform_int_distribution<int> an(1, 2399), mo(1, 12), jo(1, 31);
  auto tire = [&] {
    int j, m, a;
    do {
      a = alea() % 4 == 0 ? 1570 + static_cast<int>(alea() % 25) : an(alea);
      m = mo(alea);
      j = jo(alea);
    } while (!DateGregorienOk(j, m, a));
    char t[16];
    std::snprintf(t, sizeof t, "%02d/%02d/%04d", j, m, a);
    return D("", alea() % 8 == 0 ? 'A' : 'G', t);
  };
  for (int i = 0; i < 300; ++i) {
    // Une paire sur dix traverse les siècles ; les autres restent à quelques décennies.
    const TDateRQ a = tire();
    TDateRQ b = tire();
    if (i % 10 != 0) {
      const std::string t = a.GetDate();
      int an = std::stoi(t.substr(6, 4)) + static_cast<int>(alea() % 60) - 30;
      an = std::clamp(an, 1, 2399);
      std::string u = b.GetDate().substr(0, 6) + std::to_string(10000 + an).substr(1);
      if (u.substr(0, 5) == "29/02") u[1] = '8';
      b = D("", a.GetCalendrier(), u.c_str());
    }
    float age;
    ASSERT_EQ(CalcJours(a, b), CalcJours(a, b, &age)) << a.ExportInString() << " " << b.ExportInString();
  }
}

TEST(CalcJours, DecomptesDUneDateEtDansUnIntervalle) {
  EXPECT_EQ(D("", 'G', "01/01/0001").CalcNbJoursAbs(true), 0);
  EXPECT_EQ(D("", 'G', "01/01/0002").CalcNbJoursAbs(true), 365);
  EXPECT_EQ(D("", 'A', "01/01/0050").CalcNbJoursAbs(true), -(51 * 365 + 1));
  EXPECT_EQ(D("", 'G', "01/01/1901").CalcNbJoursAbs(true, "01/01/1900"), 365);
  EXPECT_EQ(D("", 'G', "01/01/1899").CalcNbJoursAbs(true, "01/01/1900"), -365);
  EXPECT_EQ(D("", 'G', "../../....").CalcNbJoursAbs(true), kIncalculable);
  const TDateRQ bas = D("", 'G', "01/01/1800"), haut = D("", 'G', "01/01/1900");
  EXPECT_EQ(D("", 'G', "01/01/1800").DateIn(bas, haut), 0);
  EXPECT_EQ(D("", 'G', "31/12/1799").DateIn(bas, haut), -1);
  EXPECT_EQ(D("", 'G', "02/01/1900").DateIn(bas, haut), 1);
  EXPECT_EQ(D("", 'G', "01/01/1850").DateIn(bas, D("", 'G', "")), -1);
}

}  // namespace
}  // namespace rqbase
