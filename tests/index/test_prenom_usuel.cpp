// Le prénom usuel marqué entre guillemets : NoCotePrenomUsuel et CoteNoPrenomUsuel.
#include "rqbase/index/prenom_usuel.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace rqbase {
namespace {

struct TCote {
  short Rang;
  std::string Texte;
  bool operator==(const TCote&) const = default;
};

std::ostream& operator<<(std::ostream& os, const TCote& c) { return os << c.Rang << " [" << c.Texte << "]"; }

// CoteNoPrenomUsuel dans un tampon de la taille exacte du texte.
TCote Cote(const std::string& prenoms) {
  std::vector<char> tampon(prenoms.begin(), prenoms.end());
  tampon.push_back('\0');
  const short rang = CoteNoPrenomUsuel(tampon.data());
  return {rang, std::string(tampon.data())};
}

TEST(PrenomUsuel, NoCote) {
  EXPECT_EQ(NoCotePrenomUsuel("Jean Paul Marie", 2), "Jean \"Paul\" Marie");
  EXPECT_EQ(NoCotePrenomUsuel("Jean Paul Marie", 1), "\"Jean\" Paul Marie");
  EXPECT_EQ(NoCotePrenomUsuel("Jean", 1), "\"Jean\"");
  EXPECT_EQ(NoCotePrenomUsuel("Jean Paul", 3), "Jean Paul");
  EXPECT_EQ(NoCotePrenomUsuel("Jean Paul", 0), "Jean Paul");
  EXPECT_EQ(NoCotePrenomUsuel("Jean Paul", -1), "Jean Paul");
  EXPECT_EQ(NoCotePrenomUsuel("", 1), "");
  // Chaque blanc compte : le blanc doublé fait un élément vide.
  EXPECT_EQ(NoCotePrenomUsuel("Jean  Paul", 3), "Jean  \"Paul\"");
  EXPECT_EQ(NoCotePrenomUsuel(" Jean Paul ", 2), "\"Jean\" Paul");
  EXPECT_EQ(NoCotePrenomUsuel(" Jean Paul ", 5), " Jean Paul ");  // hors des bornes : tel quel
}

TEST(PrenomUsuel, Cote) {
  EXPECT_EQ(Cote("Jean \"Paul\" Marie"), (TCote{2, "Jean Paul Marie"}));
  EXPECT_EQ(Cote("Jean\"Paul\"Marie"), (TCote{2, "Jean Paul Marie"}));
  EXPECT_EQ(Cote("\"Jean\" Paul"), (TCote{1, "Jean Paul"}));
  EXPECT_EQ(Cote("Jean Paul \"Marie\""), (TCote{3, "Jean Paul Marie"}));
  EXPECT_EQ(Cote("Jean Paul"), (TCote{0, "Jean Paul"}));
  EXPECT_EQ(Cote("  Jean Paul  "), (TCote{0, "Jean Paul"}));
  EXPECT_EQ(Cote(""), (TCote{0, ""}));
  // Guillemet non refermé : le rang est fixé au premier.
  EXPECT_EQ(Cote("Jean \"Paul Marie"), (TCote{2, "Jean Paul Marie"}));
  EXPECT_EQ(Cote("Jean \"Paul\" \"Marie\""), (TCote{2, "Jean Paul Marie"}));
  // Les blancs de tête comptent avant d'être rognés.
  EXPECT_EQ(Cote("  \"Jean\"  "), (TCote{3, "Jean"}));
  // Rien que des guillemets : le premier est en tête, les suivants au milieu d'un « mot ».
  EXPECT_EQ(Cote("\"\"\""), (TCote{1, ""}));
  EXPECT_EQ(Cote("Jean\"\"Paul"), (TCote{2, "Jean  Paul"}));
}

TEST(PrenomUsuel, AllerRetourEtTexteLong) {
  const std::string prenoms = "Jean Paul Marie Joseph";
  for (short no = 1; no <= 4; ++no) EXPECT_EQ(Cote(NoCotePrenomUsuel(prenoms, no)), (TCote{no, prenoms})) << no;
  std::string long_;
  for (int i = 0; i < 60; ++i) long_ += "Jean ";
  long_ += "\"Paul\"";
  EXPECT_EQ(Cote(long_), (TCote{61, long_.substr(0, 300) + "Paul"}));
}

}  // namespace
}  // namespace rqbase
