#include "rqbase/storage/g_tblvar.h"

#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <vector>

#include "elt_essai.h"

namespace rqbase {
namespace {

using essai::TEltEssai;

class TableTVTest : public ::testing::Test {
 protected:
  std::vector<std::string> Cles() const {
    std::vector<std::string> r;
    TEltEssai e;
    for (long i = 0; i < Table.GetNbElt(); ++i) {
      Table.Lit(i, e);
      r.push_back(e.Cle);
    }
    return r;
  }
  long AjouteClasse(const std::string& cle, int no = 0) { return Table.AjouteClasse(TEltEssai(cle, no), Travail); }
  std::string Sauve(int version = 2) const {
    std::stringstream s;
    opstream os(s);
    Table.Sauvegarde(os);
    std::string r = s.str();
    if (version < 2) r.resize(r.size() - 4);  // l'ancien format n'a pas le pas de croissance
    return r;
  }
  TTableTV Table{4, 3, 8};
  TEltEssai Travail, Travail2;
};

TEST_F(TableTVTest, AjoutCroissanceEtLecture) {
  for (int i = 0; i < 200; ++i) EXPECT_EQ(Table.Ajoute(TEltEssai("cle" + std::to_string(i), i)), i);
  EXPECT_EQ(Table.GetNbElt(), 200);
  EXPECT_GT(Table.CapaciteIndex(), 200);
  EXPECT_GE(Table.CapaciteChn(), Table.TailleUtilisee());
  TEltEssai e;
  ASSERT_TRUE(Table.Lit(137, e));
  EXPECT_EQ(e.Cle, "cle137");
  EXPECT_EQ(e.Numero, 137);
  EXPECT_FALSE(Table.Lit(200, e));
  EXPECT_FALSE(Table.Lit(-1, e));
}

TEST_F(TableTVTest, InsertionTrieeGardeLOrdreEtLesDoublons) {
  std::vector<std::pair<long, long>> deplacements;
  for (const char* c : {"m", "c", "x", "a", "z", "m", "n", "b", "y"})
    Table.AjouteClasse(TEltEssai(c, 0), Travail, [&](long a, long n) { deplacements.emplace_back(a, n); });
  EXPECT_EQ(Cles(), (std::vector<std::string>{"a", "b", "c", "m", "m", "n", "x", "y", "z"}));
  // Le rappel apprend chaque déplacement : "c" ajouté en rang 1 est allé en rang 0.
  EXPECT_EQ(deplacements.at(1), std::make_pair(1L, 0L));
  EXPECT_EQ(deplacements.at(2), std::make_pair(2L, 2L));  // "x" plus grand que tout reste au bout
}

TEST_F(TableTVTest, RechercheApprochee) {
  long pos = -1;
  bool premier = true, trouve = true;
  TEltEssai cherche("k", 0);
  // Table vide : position 0 sans aucune comparaison.
  Table.RechercheDichotomiqueApprochee(-1, pos, &premier, Travail, cherche, Travail2, &trouve);
  EXPECT_EQ(pos, 0);
  EXPECT_FALSE(trouve);

  for (const char* c : {"b", "d", "f", "h", "j", "l"}) AjouteClasse(c);
  const auto Pos = [&](const std::string& cle, long dernier = -1) {
    Table.RechercheDichotomiqueApprochee(dernier, pos, &premier, Travail, TEltEssai(cle, 0), Travail2, &trouve);
    return pos;
  };
  EXPECT_EQ(Pos("a"), 0);
  EXPECT_EQ(Pos("c"), 1);
  EXPECT_EQ(Pos("f"), 2);
  EXPECT_TRUE(trouve);
  EXPECT_EQ(Pos("k"), 5);
  EXPECT_FALSE(trouve);
  EXPECT_TRUE(premier == false);
  // Au-delà du dernier, la réponse est plafonnée au dernier rang cherché.
  EXPECT_EQ(Pos("z"), 5);
  EXPECT_EQ(Pos("z", 3), 3);
  EXPECT_EQ(Pos("lz"), 5);
  EXPECT_TRUE(premier);  // même première lettre que "l"

  EXPECT_EQ(Table.RechercheDicoth(TEltEssai("h", 0), Travail), 3);
  EXPECT_EQ(Table.RechercheDicoth(TEltEssai("i", 0), Travail), -1);
  EXPECT_EQ(Table.RechercheDicoth(TEltEssai("i", 0), Travail, true), 4);
}

TEST_F(TableTVTest, ModificationSuppressionEtReorganisation) {
  for (const char* c : {"a", "c", "e", "g"}) AjouteClasse(c);
  Table.Change(1, TEltEssai("cc-plus-long", 7), Travail);  // ne tient pas sur place : mis au bout
  Table.Change(2, TEltEssai("d", 8), Travail);             // tient sur place
  EXPECT_EQ(Cles(), (std::vector<std::string>{"a", "cc-plus-long", "d", "g"}));
  const long avant = Table.TailleUtilisee();
  Table.Supprime(0, Travail);
  EXPECT_EQ(Cles(), (std::vector<std::string>{"cc-plus-long", "d", "g"}));
  Table.ReorganiseTableChn();
  EXPECT_LT(Table.TailleUtilisee(), avant);
  EXPECT_EQ(Cles(), (std::vector<std::string>{"cc-plus-long", "d", "g"}));
  EXPECT_EQ(Table.ChangeClasse(0, TEltEssai("zz", 1), Travail), 2);
  EXPECT_EQ(Cles(), (std::vector<std::string>{"d", "g", "zz"}));
  Table.Echange(0, 2);
  EXPECT_EQ(Cles(), (std::vector<std::string>{"zz", "g", "d"}));
  Table.Insere(1, TEltEssai("i", 0), Travail);
  EXPECT_EQ(Cles(), (std::vector<std::string>{"zz", "i", "g", "d"}));
}

TEST_F(TableTVTest, TriShellAvecProgressionEtAbandon) {
  const int n = 5000;
  for (int i = 0; i < n; ++i) Table.Ajoute(TEltEssai(std::to_string((i * 7919) % n), i));
  TProgression progression;
  Table.Classement(Travail, Travail2, &progression);
  EXPECT_GT(progression.Max, 1);
  EXPECT_EQ(progression.Pos, progression.Max);
  auto cles = Cles();
  EXPECT_TRUE(std::is_sorted(cles.begin(), cles.end()));

  TTableTV autre(10, 10, 8);
  for (int i = 0; i < n; ++i) autre.Ajoute(TEltEssai(std::to_string(n - i), i));
  TProgression abandon;
  abandon.DemandeAbandon();
  autre.Classement(Travail, Travail2, &abandon);
  EXPECT_EQ(abandon.Pos, 1);  // arrêt après la première passe
}

TEST_F(TableTVTest, SauvegardeEtRestaurationDesDeuxVersions) {
  for (const char* c : {"Dupont", "Martin", "Bernard"}) AjouteClasse(c, 3);
  const std::string v2 = Sauve();
  // Six longs, l'index, la zone de texte, puis le pas de croissance.
  EXPECT_EQ(v2.size(), 6 * 4 + 3 * 4 + size_t(Table.TailleUtilisee()) + 4);
  std::stringstream s2(v2);
  ipstream is2(s2);
  TTableTV relue;
  ASSERT_TRUE(relue.Restauration(is2, 2));
  EXPECT_EQ(relue.PasCroissance(), 3);
  std::stringstream resauve;
  opstream os(resauve);
  relue.Sauvegarde(os);
  EXPECT_EQ(resauve.str(), v2);  // octet pour octet

  std::stringstream s1(Sauve(1));
  ipstream is1(s1);
  TTableTV ancienne;
  ASSERT_TRUE(ancienne.Restauration(is1, 1));
  EXPECT_EQ(ancienne.PasCroissance(), 50);
  TEltEssai e;
  ancienne.Lit(2, e);
  EXPECT_EQ(e.Cle, "Martin");
}

TEST_F(TableTVTest, FluxCourtOuAbsurdeDonneUneTableVide) {
  for (const char* c : {"a", "b"}) AjouteClasse(c);
  const std::string bon = Sauve();
  for (size_t coupe = 0; coupe < bon.size(); ++coupe) {
    std::stringstream s(bon.substr(0, coupe));
    ipstream is(s);
    TTableTV t;
    EXPECT_FALSE(t.Restauration(is, 2)) << coupe;
    EXPECT_EQ(t.GetNbElt(), 0);
  }
  auto Altere = [&](size_t position, int32_t valeur) {
    std::string r = bon;
    std::memcpy(r.data() + position, &valeur, 4);
    std::stringstream s(r);
    ipstream is(s);
    TTableTV t;
    const bool ok = t.Restauration(is, 2);
    return ok || t.GetNbElt() != 0;
  };
  EXPECT_FALSE(Altere(0, 0x7FFFFFFF));  // compte absurde
  EXPECT_FALSE(Altere(0, -1));
  EXPECT_FALSE(Altere(4, 0x7FFFFFF0));  // capacité d'index sans rapport avec le contenu
  EXPECT_FALSE(Altere(16, 0x7FFFFFF0));
  EXPECT_FALSE(Altere(24, 100000));  // un décalage hors de la zone de texte
}

TEST_F(TableTVTest, PointeursDeFlux) {
  AjouteClasse("x");
  std::stringstream s;
  opstream os(s);
  writePtr(os, &Table);
  writePtr(os, nullptr);
  ipstream is(s);
  std::unique_ptr<TTableTV> t(readPtr(is, 2));
  ASSERT_TRUE(t);
  EXPECT_EQ(t->GetNbElt(), 1);
  EXPECT_EQ(readPtr(is, 2), nullptr);
  EXPECT_TRUE(is.Bon());
}

}  // namespace
}  // namespace rqbase
