// TGestFichier : noms de fichiers, création, ouverture, drapeaux, dossier entier.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <SQLiteCpp/SQLiteCpp.h>
#include <openssl/evp.h>
#include <sys/stat.h>

#include <cstring>

#include "dossier_essai.h"
#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/storage/fic_xml.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

using essai::Contenu;
using essai::Instantane;
using testing::HasSubstr;
using testing::StrEq;
using testing::ThrowsMessage;

class GestFichierTest : public testing::Test {
 protected:
  void SetUp() override { InstalleDialogue(&Dialogue_); }
  void TearDown() override {
    InstalleDialogue(nullptr);
    TFichierBrut::Pannes().Raz();
  }
  std::unique_ptr<TGestFichier> Cree(int premierePersonne = 0, const std::string& nom = "Essai") {
    return std::make_unique<TGestFichier>(Temp.Prs(nom), true, false, false, false, premierePersonne);
  }
  std::unique_ptr<TGestFichier> Ouvre(bool lectureSeule = false, const std::string& nom = "Essai") {
    return std::make_unique<TGestFichier>(Temp.Prs(nom), false, false, false, false, 0, mcLectureSeule,
                                          lectureSeule);
  }
  essai::TDossierTemp Temp;
  TDialogueFixe Dialogue_{ReponseNon};
};

TEST(FabriqueNomFichier, DonneLeNomDeChaqueType) {
  TGestFichier g("/d/Famille.rq2/Famille.prs", false, false, false, true);
  const struct {
    int type;
    const char* attendu;
  } lignes[] = {
      {tfPersons, "/d/Famille.rq2/Famille.prs"}, {tfQux, "/d/Famille.rq2/Famille.qux"},
      {tfExp, "/d/Famille.rq2/Famille.exp"},     {tfPsu, "/d/Famille.rq2/Famille.psu"},
      {tfNomSeul, "/d/Famille.rq2/Famille."},    {tfPreq, "/d/Famille.rq2/Famille.preq"},
      {tfGnp, "/d/Famille.rq2/Notices/Famille.gnp"}, {tfLienIdCpt, "/d/Famille.rq2/lienidpers.cpt"},
      {tfLienIdDbf, "/d/Famille.rq2/lienidpers.dbf"}, {tfXin, "/d/Famille.rq2/Famille.xin"},
      {tfAdb, "/d/Famille.rq2/Famille.adb"},     {tfEveneq, "/d/Famille.rq2/Famille.eveneq"},
  };
  for (const auto& l : lignes) EXPECT_EQ(g.FabriqueNomFichier(l.type), l.attendu) << l.type;
  EXPECT_EQ(g.FabriqueNomFichier(tfDico, 12, true), "/d/Famille.rq2/Famille.d12");
  EXPECT_EQ(g.FabriqueNomFichier(tfDico, 7, false), "/d/Famille.rq2/Famille.r7");
  EXPECT_FALSE(g.IsExt2009());
  TGestFichier vieux("/d/Famille.rq/Famille.prs", false, false, false, true);
  EXPECT_TRUE(vieux.IsExt2009());
  TGestFichier capitales("/d/Famille.RQ2/Famille.prs", false, false, false, true);
  EXPECT_FALSE(capitales.IsExt2009());
}

TEST(FabriqueNomFichier, CheminTropLongLeve) {
  const std::string dossier = "/" + std::string(245, 'a') + ".rq2/";
  TGestFichier g(dossier + "Nom.prs", false, false, false, true);
  EXPECT_NO_THROW(g.FabriqueNomFichier(tfPersons));  // 258 caractères
  EXPECT_THAT([&] { g.FabriqueNomFichier(tfEveneq); }, ThrowsMessage<ERqBase>(StrEq("Nom de fichier trop long !")));
  // Dès l'ouverture, le premier nom fabriqué lève.
  EXPECT_THROW(TGestFichier(dossier + std::string(30, 'n') + ".prs"), ERqBase);
}

TEST_F(GestFichierTest, CheminTropLongRefuseAvantDeRienCreer) {
  // 240 à 255 caractères : le dossier tiendrait, pas ses fichiers ; 300 : le système refuserait.
  for (size_t longueur : {240u, 250u, 300u}) {
    const std::string dossier = Temp.Racine + "/" + std::string(longueur - Temp.Racine.size(), 'a') + ".rq2/";
    EXPECT_THAT([&] { TGestFichier g(dossier + "aaaa.prs", true); }, ThrowsMessage<ERqBase>(StrEq("Nom de fichier trop long !")))
        << longueur;
    EXPECT_TRUE(std::filesystem::is_empty(Temp.Racine)) << longueur;  // rien n'est resté
  }
}

TEST_F(GestFichierTest, BaseDUnDossierSansExtensionRq2EstMiseDeCote) {
  Cree(1).reset();
  const std::string ancien = Temp.Racine + "/Vieux.rq";
  std::filesystem::rename(Temp.Dossier(), ancien);
  for (const char* ext : {".prs", ".exp", ".psu", ".xin", ".adb"})
    std::filesystem::rename(ancien + "/Essai" + ext, ancien + "/Vieux" + ext);
  TGestFichier g(ancien + "/Vieux.prs", false, false, false, false, 0, mcSansProtection);
  EXPECT_FALSE(std::filesystem::exists(ancien + "/Vieux.adb") && !std::filesystem::exists(ancien + "/Vieux.~adb"));
  EXPECT_TRUE(std::filesystem::exists(ancien + "/Vieux.~adb"));
  EXPECT_EQ(g.AnneeVersion(), 2009);
}

TEST_F(GestFichierTest, EcritureEnPanneLeveLeDrapeauEtArreteLesEcritures) {
  auto g = Cree(1);
  const std::string avant = Contenu(Temp.Prs());
  // Un numéro neuf ne touche pas au disque : c'est l'enregistrement qui le fait compter.
  const long no = g->FicPersons()->ReturnNewNum();
  EXPECT_EQ(Contenu(Temp.Prs()), avant);
  TFichierBrut::Pannes().EchoueEcritureApres(0, ".prs");
  TEnregPersonne e{};
  EXPECT_FALSE(g->FicPersons()->EcritEnreg(no, e));
  EXPECT_TRUE(g->EnErreur());
  EXPECT_TRUE(g->EcritureRatee());
  TFichierBrut::Pannes().Raz();
  EXPECT_FALSE(g->FicPersons()->EcritEnreg(1, e));  // plus aucune écriture, même après la panne
  g->EcritureEntete();
  g.reset();
  EXPECT_EQ(Contenu(Temp.Prs()), avant);
}

TEST_F(GestFichierTest, EcritureCourteEstUnEchecEtLeCompteNeLaCouvrePas) {
  auto g = Cree(1);
  const std::string avant = Contenu(Temp.Dossier() + "/Essai.psu");
  TFichierBrut::Pannes().EcritureCourteApres(0, ".psu");
  g->FicPersSuppr()->AjouteNo(1);
  EXPECT_TRUE(g->EcritureRatee());
  TFichierBrut::Pannes().Raz();
  g.reset();
  // La moitié de l'enregistrement est peut-être là, mais l'en-tête ne le compte pas.
  const std::string apres = Contenu(Temp.Dossier() + "/Essai.psu");
  EXPECT_EQ(apres.substr(0, 4), avant.substr(0, 4));
  EXPECT_EQ(Ouvre(true)->FicPersSuppr()->NbEnreg(), 0);
}

TEST_F(GestFichierTest, ZeroOctetLuEstUnEchecEtLeDrapeauSuitChaqueLecture) {
  auto g = Cree(1);
  g->FicPersSuppr()->AjouteNo(1);
  TFichierBrut::Pannes().EchoueLectureApres(0, ".psu");
  TPersSuppr lu(g->FicPersSuppr(), 1);
  EXPECT_TRUE(g->EnErreur());
  EXPECT_EQ(g->GenreErreur(), 1);
  EXPECT_EQ(int{lu.NoPers}, 0);
  TFichierBrut::Pannes().Raz();
  // Le drapeau est affecté par chaque entrée-sortie : on le baisse, une lecture réussie le garde bas.
  g->FixeErreur(false);
  lu.Lecture(1);
  EXPECT_FALSE(g->EnErreur());
}

TEST_F(GestFichierTest, CopieRenommageEtSuppressionDuDossierEntier) {
  {
    auto g = Cree(1);
    std::filesystem::create_directories(Temp.Dossier() + "/Images");
    essai::Ecrit(Temp.Dossier() + "/Images/photo.jpg", "JPG");
    essai::Ecrit(Temp.Dossier() + "/Notices/np1.txt", "notice");
    ASSERT_TRUE(g->DupliqueGenealogie(Temp.Racine + "/Copie"));
  }
  EXPECT_EQ(Contenu(Temp.Dossier("Copie") + "/Copie.prs"), Contenu(Temp.Prs()));
  EXPECT_TRUE(std::filesystem::exists(Temp.Dossier("Copie") + "/Copie.adb"));
  EXPECT_EQ(Contenu(Temp.Dossier("Copie") + "/Images/photo.jpg"), "JPG");
  EXPECT_EQ(Contenu(Temp.Dossier("Copie") + "/Notices/np1.txt"), "notice");
  {
    auto c = Ouvre(false, "Copie");
    EXPECT_EQ(c->NombrePersonnes(), 1);
    ASSERT_TRUE(c->RenommeGenealogie("Autre"));
  }
  EXPECT_FALSE(std::filesystem::exists(Temp.Dossier("Copie")));
  for (const char* ext : {".prs", ".exp", ".psu", ".xin", ".adb"})
    EXPECT_TRUE(std::filesystem::exists(Temp.Dossier("Autre") + "/Autre" + ext)) << ext;
  {
    auto a = Ouvre(false, "Autre");
    EXPECT_FALSE(a->EnErreur());
    EXPECT_EQ(a->NombrePersonnes(), 1);
    EXPECT_TRUE(a->SuppressionGenealogie());
  }
  EXPECT_FALSE(std::filesystem::exists(Temp.Dossier("Autre")));
  EXPECT_TRUE(std::filesystem::exists(Temp.Dossier()));
}

TEST(PutFilesInReadWrite, RendInscriptibleEtRefuseUnDossierAbsent) {
  essai::TDossierTemp t;
  essai::Ecrit(t.Racine + "/a", "x");
  std::filesystem::permissions(t.Racine + "/a", std::filesystem::perms::owner_read);
  EXPECT_TRUE(PutFilesInReadWrite(t.Racine));
  EXPECT_NE(std::filesystem::status(t.Racine + "/a").permissions() & std::filesystem::perms::owner_write,
            std::filesystem::perms::none);
  EXPECT_FALSE(PutFilesInReadWrite(t.Racine + "/absent"));
  EXPECT_EQ(ConstruitAccesGenealogie("/d/", "Nom"), "/d/Nom.rq2/Nom.prs");
}

}  // namespace
}  // namespace rqbase

namespace rqbase {
namespace {

// La question de l'ouverture qui fait de PROFESSION un événement : un dossier neuf naît à
// jour ; un dossier dont le catalogue a une profession en champ simple demande, et seul Oui
// change les lignes, le catalogue et la clé.
TEST(MiseAJourProfession, SeulOuiFaitDeLaProfessionUnEvenement) {
  essai::TDossierTemp temp;
  TDialogueFixe dlg(ReponseNon);
  InstalleDialogue(&dlg);
  {
    TGestFichier neuf(temp.Prs(), true, false, false, false, 1);
    ASSERT_FALSE(neuf.EnErreur());
    EXPECT_EQ(neuf.ModuleBDD()->GetInfoChps("UPDATE_PROF"), "UPDATED");
    // Un ancien état : la profession en champ simple, une ligne de champ simple, la clé à "0".
    neuf.GetDefChpsCs()->RechercheChampsInternePtr("PROFESSION")->Type = tcCpa;
    ASSERT_TRUE(neuf.GetDefChpsCs()->Sauvegarde());
    neuf.ModuleBDD()->MAJInfoChps("UPDATE_PROF", "0");
    TChpsSimple chp(neuf.ModuleBDD());
    chp.Enreg.SetLibelle("PROFESSION");
    chp.Enreg.SetDonnee("tonnelier");
    chp.Enreg.NoPersA = 1;
    ASSERT_TRUE(neuf.ModuleBDD()->EnregistrementChpsSimple(&chp));
  }
  auto ouvre = [&] { return std::make_unique<TGestFichier>(temp.Prs(), false, false, false, false, 0); };
  {
    auto g = ouvre();
    EXPECT_EQ(dlg.Questions.size(), 1u);
    EXPECT_EQ(g->ModuleBDD()->GetInfoChps("UPDATE_PROF"), "0");
    EXPECT_EQ(g->GetDefChpsCs()->RechercheChampsInternePtr("PROFESSION")->Type, tcCpa);
    EXPECT_TRUE(g->ModuleBDD()->ChpsSimpleExistsForPerson(1, "PROFESSION"));
  }
  dlg.Reponse = ReponseOui;
  {
    auto g = ouvre();
    EXPECT_EQ(dlg.Questions.size(), 2u);
    EXPECT_EQ(g->ModuleBDD()->GetInfoChps("UPDATE_PROF"), "UPDATED");
    EXPECT_EQ(g->GetDefChpsCs()->RechercheChampsInternePtr("PROFESSION")->Type, tcEc);
    EXPECT_FALSE(g->ModuleBDD()->ChpsSimpleExistsForPerson(1, "PROFESSION"));
    EXPECT_TRUE(g->ModuleBDD()->EvenExistsForPerson(1, "PROFESSION"));
  }
  auto g = ouvre();
  EXPECT_EQ(dlg.Questions.size(), 2u);  // plus de question
  InstalleDialogue(nullptr);
}

}  // namespace
}  // namespace rqbase
