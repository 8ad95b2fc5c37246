// Fichiers d'enregistrements : en-tête des personnes et sa réparation, .exp, .psu.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

#include "dossier_essai.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

using essai::Contenu;
using testing::StrEq;
using testing::ThrowsMessage;

class FicPersonsTest : public testing::Test {
 protected:
  void SetUp() override {
    TGestFichier g(Temp.Prs(), true, false, false, false, 1);
    ASSERT_FALSE(g.EnErreur());
    TEnregPersonne e{};
    e.Type = 'P';
    for (int i = 2; i <= 9; ++i) {
      std::snprintf(e.Nom, sizeof e.Nom, "NOM%d", i);
      g.FicPersons()->EcritEnreg(g.FicPersons()->ReturnNewNum(), e);
    }
    g.EcritureEntete();
  }
  std::unique_ptr<TGestFichier> Ouvre() { return std::make_unique<TGestFichier>(Temp.Prs()); }
  // Remplace l'en-tête du .prs par `entete`.
  void EcritEntete(const TEnregPersonne& entete) {
    std::string octets = Contenu(Temp.Prs());
    std::memcpy(octets.data(), &entete, 644);
    essai::Ecrit(Temp.Prs(), octets);
  }
  TEnregPersonne LitEntete() {
    TEnregPersonne e;
    std::memcpy(&e, Contenu(Temp.Prs()).data(), 644);
    return e;
  }
  essai::TDossierTemp Temp;
};

TEST_F(FicPersonsTest, EnTeteSeRelitTelQuIlAEteEcrit) {
  {
    auto g = Ouvre();
    g->Titre = "Famille Dupré";
    g->FicPersons()->Signet1 = 7;
    g->FicPersons()->NoDeCujus = 3;
    g->DateCreation = 44000.5;
    g->Entier1 = 12;
    g->Entier2 = 34;
    g->CopieImages = 0;
    g->EcritureEntete();
  }
  auto g = Ouvre();
  EXPECT_EQ(g->FicPersons()->NbPersEffective(), 9);
  EXPECT_EQ(g->Titre, "Famille Dupré");
  EXPECT_EQ(g->FicPersons()->Signet1, 7);
  EXPECT_EQ(g->FicPersons()->NoDeCujus, 3);
  EXPECT_EQ(g->DateCreation, 44000.5);
  EXPECT_EQ(g->Entier1, 12);
  EXPECT_EQ(g->Entier2, 34);
  EXPECT_EQ(g->CopieImages, 0);
  EXPECT_EQ(std::string(LitEntete().Prenoms).substr(0, 8), "44000.5$");
}

TEST_F(FicPersonsTest, EnTeteSansDollarGardeLesPersonnesEtPrendDesDatesNeuves) {
  TEnregPersonne e = LitEntete();
  std::strcpy(e.Prenoms, "n'importe quoi");
  EcritEntete(e);
  auto g = Ouvre();
  EXPECT_FALSE(g->EnErreur());
  EXPECT_EQ(g->FicPersons()->NbPersEffective(), 9);
  EXPECT_GT(g->DateCreation, 45000.0);
  EXPECT_EQ(asNoStradoCujus, 1);
  g.reset();
  EXPECT_NE(std::string(LitEntete().Prenoms).find('$'), std::string::npos);  // réécrit
}

TEST_F(FicPersonsTest, CompteNulRetrouveDeLaTailleDuFichier) {
  TEnregPersonne e = LitEntete();
  e.Pere.No = 0;
  e.Mere.No = 0;
  e.Enfants[0].No = 50;
  e.Enfants[1].No = -4;
  EcritEntete(e);
  ASSERT_EQ(Contenu(Temp.Prs()).size(), 6440u);
  auto g = Ouvre();
  EXPECT_FALSE(g->EnErreur());
  EXPECT_EQ(g->FicPersons()->NbPersEffective(), 9);
  EXPECT_EQ(g->FicPersons()->NoDeCujus, 1);
  EXPECT_EQ(g->FicPersons()->Signet1, 1);
  EXPECT_EQ(g->FicPersons()->Signet2, 1);
  g.reset();
  EXPECT_EQ(int{LitEntete().Pere.No}, 9);
}

TEST_F(FicPersonsTest, FichierDe644OctetsOuMoinsNeSeReparePas) {
  for (size_t taille : {size_t{644}, size_t{100}, size_t{0}}) {
    TEnregPersonne e{};
    std::string octets(reinterpret_cast<const char*>(&e), 644);
    octets.resize(taille);
    essai::Ecrit(Temp.Prs(), octets);
    auto g = Ouvre();
    EXPECT_TRUE(g->EnErreur()) << taille;
    EXPECT_EQ(g->NombrePersonnes(), 0) << taille;
  }
}

TEST(GetHashCode, SommeParPositionSansLeDernierCaractere) {
  const struct {
    std::u16string texte;
    uint32_t attendu;
  } lignes[] = {{u"", 0}, {u"A", 0}, {u"AB", 65}, {u"ABC", 65 + 2 * 66}, {u"\u00e9t\u00e9", 233 + 2 * 116}};
  for (const auto& l : lignes) EXPECT_EQ(TFicPersons::GetHashCode(l.texte), l.attendu);
}

class FicCotesTest : public testing::Test {
 protected:
  void SetUp() override { Gest = std::make_unique<TGestFichier>(Temp.Prs(), true, false, false, false, 1); }
  essai::TDossierTemp Temp;
  std::unique_ptr<TGestFichier> Gest;
};

TEST_F(FicCotesTest, EcrireAuDelaDuCompteLeveEtNeChangeRien) {
  const std::string exp = Contenu(Temp.Dossier() + "/Essai.exp");
  TExtPerson ext(Gest->FicExtPersons(), 0);
  ext.Enreg.Conjoints[0] = TLienConj(5);
  EXPECT_THAT([&] { ext.Enregistrement(1); }, ThrowsMessage<ERqBase>(StrEq("FicExtPers : Erreur Enreg")));
  TPersSuppr suppr(Gest->FicPersSuppr(), 0);
  EXPECT_THAT([&] { suppr.Enregistrement(2); }, ThrowsMessage<ERqBase>(StrEq("FicPersSuppr : Erreur Enreg")));
  EXPECT_EQ(Contenu(Temp.Dossier() + "/Essai.exp"), exp);
  EXPECT_FALSE(Gest->EnErreur());

  // Le numéro 0 se lit vide et ne s'écrit pas.
  ext.Enregistrement(0);
  ext.Lecture(0);
  EXPECT_TRUE(ext.Enreg.Vide());
  EXPECT_EQ(Contenu(Temp.Dossier() + "/Essai.exp"), exp);
}

TEST_F(FicCotesTest, DebordementSeRelitOctetPourOctet) {
  TExtPerson ext(Gest->FicExtPersons(), 0);
  ext.Enreg.NoPersonne = 1;
  ext.Enreg.Conjoints[139] = TLienConj(150, 7, -9);
  ext.Enreg.Enfants[0] = TLienPers(31);
  const long no = Gest->FicExtPersons()->ReturnNewNum();
  ext.Enregistrement(no);
  const std::string octets = Contenu(Temp.Dossier() + "/Essai.exp");
  ASSERT_EQ(octets.size(), 2u * 2904);
  int32_t compte, conj;
  std::memcpy(&compte, octets.data(), 4);
  std::memcpy(&conj, octets.data() + 2904 + 4 + 139 * 9, 4);
  EXPECT_EQ(compte, 1);
  EXPECT_EQ(conj, 150);
  EXPECT_EQ(static_cast<unsigned char>(octets[2904 + 4 + 139 * 9 + 4]), 7);
  TExtPerson relu(Gest->FicExtPersons(), no);
  EXPECT_EQ(int{relu.Enreg.Conjoints[139].Valeur}, -9);
  EXPECT_EQ(int{relu.Enreg.Enfants[0].No}, 31);
  EXPECT_FALSE(relu.Enreg.Vide());
}

TEST_F(FicCotesTest, ListeDesSupprimesResteDense) {
  TFicPersSuppr& psu = *Gest->FicPersSuppr();
  for (long no : {4, 8, 15, 16}) psu.AjouteNo(no);
  EXPECT_EQ(psu.NbEnreg(), 4);
  psu.SuppNo(8);
  EXPECT_EQ(psu.NbEnreg(), 3);
  EXPECT_EQ(TPersSuppr(&psu, 2).NoPers, 16);  // le dernier a pris la place
  EXPECT_EQ(TPersSuppr(&psu, 3).NoPers, 15);
  const std::string avant = Contenu(Temp.Dossier() + "/Essai.psu");
  psu.SuppNo(99);
  EXPECT_EQ(psu.NbEnreg(), 3);
  EXPECT_EQ(psu.GetNbPersSuppr(), 3);
  psu.SupprimeList({4, 15});
  EXPECT_EQ(psu.NbEnreg(), 1);
  EXPECT_EQ(TPersSuppr(&psu, 1).NoPers, 16);
  EXPECT_NE(Contenu(Temp.Dossier() + "/Essai.psu"), avant);
  // Le .psu garde sa taille : les enregistrements libérés restent, à zéro.
  EXPECT_EQ(Contenu(Temp.Dossier() + "/Essai.psu").size(), 5u * 4);
  EXPECT_EQ(Gest->NombrePersonnes(), 0);
}

TEST_F(FicCotesTest, LectureAuDelaDeLaFinLeveLeDrapeau) {
  TPersSuppr lu(Gest->FicPersSuppr(), 0);
  lu.Lecture(30);
  EXPECT_TRUE(Gest->EnErreur());
  EXPECT_EQ(Gest->GenreErreur(), 1);
  // En erreur, les lectures rendent zéro et les écritures sont perdues.
  TExtPerson ext(Gest->FicExtPersons(), 0);
  ext.Enreg.NoPersonne = 3;
  const std::string exp = Contenu(Temp.Dossier() + "/Essai.exp");
  Gest->FicExtPersons()->ReturnNewNum();
  ext.Enregistrement(1);
  EXPECT_EQ(Contenu(Temp.Dossier() + "/Essai.exp"), exp);
}

}  // namespace
}  // namespace rqbase
