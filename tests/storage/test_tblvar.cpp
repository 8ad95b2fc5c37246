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

// L'ordre des éléments égaux est celui des passes du tri Shell (le tri n'est pas
// stable) : ces ordres, relevés sur le tri d'origine, ne doivent pas bouger.
TEST_F(TableTVTest, TriShellGardeLOrdreDesEgaux) {
  const auto Remplie = [](int n) {
    TTableTV t(4, 3, 8);
    for (int i = 0; i < n; ++i) t.Ajoute(TEltEssai(std::string(1, char('a' + (i * 7 + i / 3) % 5)), i));
    return t;
  };
  const auto Numeros = [](const TTableTV& t) {
    std::vector<int> r;
    TEltEssai e;
    for (long i = 0; i < t.GetNbElt(); ++i) {
      t.Lit(i, e);
      r.push_back(e.Numero);
    }
    return r;
  };
  TTableTV t = Remplie(40);
  t.Classement(Travail, Travail2);
  EXPECT_EQ(Numeros(t), (std::vector<int>{0,  11, 26, 28, 30, 13, 15, 35, 37, 39, 5,  20, 22, 9,  24, 7,  1,  14, 31, 16,
                                          29, 3,  18, 33, 8,  23, 12, 27, 10, 25, 38, 17, 21, 32, 19, 2,  36, 4,  34, 6}));
  t = Remplie(40);
  t.TriShell(5, 30, Travail, Travail2);
  EXPECT_EQ(Numeros(t), (std::vector<int>{0,  1,  2,  3,  4,  28, 26, 30, 13, 11, 15, 5,  20, 22, 9,  24, 7,  18, 29, 16,
                                          14, 27, 23, 25, 12, 8,  10, 19, 21, 17, 6,  31, 32, 33, 34, 35, 36, 37, 38, 39}));
  // Abandon demandé d'avance : l'index reste tel que la première passe (écart 23) l'a mis.
  t = Remplie(40);
  TProgression abandon;
  abandon.DemandeAbandon();
  t.Classement(Travail, Travail2, &abandon);
  EXPECT_EQ(Numeros(t), (std::vector<int>{0,  24, 25, 26, 27, 28, 29, 30, 31, 9,  33, 11, 35, 13, 37, 15, 39, 17, 18, 19,
                                          20, 21, 22, 23, 1,  2,  3,  4,  5,  6,  7,  8,  32, 10, 34, 12, 36, 14, 38, 16}));

  // 3000 éléments sur 11 clés : tous les écarts jusqu'à 1750 servent. L'empreinte
  // FNV-1a de la suite des numéros est celle du tri d'origine.
  TTableTV grande(4, 3, 8);
  for (int i = 0; i < 3000; ++i) grande.Ajoute(TEltEssai(std::to_string((i * 37) % 11), i));
  grande.Classement(Travail, Travail2);
  uint64_t empreinte = 1469598103934665603ull;
  for (int no : Numeros(grande)) empreinte = (empreinte ^ uint32_t(no)) * 1099511628211ull;
  EXPECT_EQ(empreinte, 0x85632e698be64a63ull);
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
  EXPECT_FALSE(Altere(0, 0x7FFFFFFF));  // plus d'entrées que le flux n'a d'octets
  EXPECT_FALSE(Altere(0, -1));
  EXPECT_FALSE(Altere(12, 0x7FFFFFF0));  // zone de texte plus longue que le flux
  EXPECT_FALSE(Altere(4, 1));            // capacité d'index sous le nombre d'éléments
  EXPECT_FALSE(Altere(16, 1));           // capacité de texte sous les octets utilisés
  EXPECT_FALSE(Altere(8, 0));            // taille initiale nulle
  EXPECT_FALSE(Altere(20, 0));           // taille moyenne nulle
  EXPECT_FALSE(Altere(24, 100000));      // un décalage hors de la zone de texte
  EXPECT_FALSE(Altere(bon.size() - 4, 0));  // pas de croissance nul
}

// Des tables que l'usage produit, aux capacités, pas ou tailles initiales bien
// plus grands que leur contenu : chacune se relit entière et se réécrit à l'octet.
TEST_F(TableTVTest, GrandesCapacitesFontLAllerRetour) {
  struct {
    long Initial, Croissance;
    int Elements;
  } cas[] = {{60000, 50, 10}, {100, 1000000, 300}, {2000000, 50, 25}};
  for (const auto& c : cas) {
    TTableTV table(c.Initial, c.Croissance, 20);
    for (int i = 0; i < c.Elements; ++i) table.AjouteClasse(TEltEssai("cle" + std::to_string(i * 7 % c.Elements), i), Travail);
    std::stringstream s;
    opstream os(s);
    table.Sauvegarde(os);
    const std::string octets = s.str();

    std::stringstream entree(octets);
    ipstream is(entree);
    TTableTV relue(1, 1, 1);
    ASSERT_TRUE(relue.Restauration(is, 2)) << c.Initial << " " << c.Croissance;
    EXPECT_EQ(relue.GetNbElt(), c.Elements);
    EXPECT_EQ(relue.CapaciteIndex(), table.CapaciteIndex());
    EXPECT_EQ(relue.CapaciteChn(), table.CapaciteChn());
    EXPECT_EQ(relue.NombreInitial(), c.Initial);
    EXPECT_EQ(relue.PasCroissance(), c.Croissance);
    TEltEssai a, b;
    for (long i = 0; i < table.GetNbElt(); ++i) {
      table.Lit(i, a);
      relue.Lit(i, b);
      EXPECT_EQ(b.Cle, a.Cle);
      EXPECT_EQ(b.Numero, a.Numero);
    }
    std::stringstream resauve;
    opstream ros(resauve);
    relue.Sauvegarde(ros);
    EXPECT_EQ(resauve.str(), octets);
    // La table relue vit normalement : une insertion triée de plus se range.
    EXPECT_EQ(relue.AjouteClasse(TEltEssai("a", -1), Travail), 0);
    EXPECT_EQ(relue.GetNbElt(), c.Elements + 1);
  }
}

// Un flux qui demande plus que ce qu'il contient : la mémoire prise suit le contenu,
// jamais les nombres annoncés.
TEST_F(TableTVTest, FluxHostilesSansGrandeAllocation) {
  constexpr size_t kPeu = size_t(2) << 20;  // la réserve d'avance d'une table neuve tient dessous
  const auto Flux = [](std::vector<int32_t> longs, const std::string& texte = "") {
    std::stringstream s;
    opstream os(s);
    for (size_t i = 0; i < 6; ++i) os.writeLong(longs[i]);
    for (size_t i = 7; i < longs.size(); ++i) os.writeLong(longs[i]);  // l'index
    os.writeBytes(texte.data(), texte.size());
    os.writeLong(longs[6]);  // pas de croissance
    return s.str();
  };
  // 60 octets : un élément "x" (numéro 7), et des capacités, une taille initiale,
  // une taille moyenne et un pas de croissance au plus haut.
  const std::string texte("\x07\0\0\0x\0", 6);
  const std::string hostile =
      Flux({1, 0x7FFFFFFF, 0x7FFFFFFF, 6, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0}, texte) + std::string(22, '\0');
  ASSERT_EQ(hostile.size(), 60u);
  std::stringstream s(hostile);
  ipstream is(s);
  TTableTV t;
  ASSERT_TRUE(t.Restauration(is, 2));
  EXPECT_LT(t.MemoireReservee(), kPeu);
  TEltEssai e;
  ASSERT_TRUE(t.Lit(0, e));
  EXPECT_EQ(e.Cle, "x");
  EXPECT_EQ(e.Numero, 7);
  for (int i = 0; i < 2000; ++i) t.AjouteClasse(TEltEssai("k" + std::to_string(i), i), Travail);
  EXPECT_EQ(t.GetNbElt(), 2001);
  EXPECT_LT(t.MemoireReservee(), kPeu);
  t.Classement(Travail, Travail2);
  t.Raz();
  EXPECT_EQ(t.GetNbElt(), 0);
  EXPECT_LT(t.MemoireReservee(), kPeu);

  // Des comptes que le flux ne peut pas tenir sont refusés avant toute allocation.
  for (const auto& longs : std::vector<std::vector<int32_t>>{
           {0x7FFFFFFF, 0x7FFFFFFF, 1, 0, 1, 1, 50},          // index de 8 Go annoncé
           {0, 1, 1, 0x7FFFFFF0, 0x7FFFFFFF, 1, 50},          // zone de texte de 2 Go annoncée
           {1000, 1000, 1, 1000, 1000, 1, 50, 0, 0, 0, 0}}) {  // index tronqué
    std::stringstream f(Flux(longs));
    ipstream fi(f);
    TTableTV r;
    EXPECT_FALSE(r.Restauration(fi, 2));
    EXPECT_FALSE(fi.Bon());
    EXPECT_EQ(r.GetNbElt(), 0);
    EXPECT_LT(r.MemoireReservee(), kPeu);
  }
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
