// TGestFichier : noms de fichiers, création, ouverture, drapeaux, dossier entier.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <SQLiteCpp/SQLiteCpp.h>
#include <openssl/evp.h>
#include <sys/stat.h>

#include <cstring>

#include "dossier_essai.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/storage/fic_xml.h"
#include "rqbase/storage/gest_fic.h"
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

TEST_F(GestFichierTest, CheminRefuseParLeSystemeLeveLeDrapeauSansExceptionEtrangere) {
  // Un composant de plus de 255 octets : le système refuse le chemin avant tout nom fabriqué.
  const std::string dossier = Temp.Racine + "/" + std::string(300, 'a') + ".rq2/";
  std::unique_ptr<TGestFichier> g;
  EXPECT_NO_THROW(g = std::make_unique<TGestFichier>(dossier + "a.prs", true));
  ASSERT_TRUE(g);
  EXPECT_TRUE(g->EnErreur());
  EXPECT_EQ(g->DerniereReponse(), 0);  // aucune question posée
}

TEST_F(GestFichierTest, ConversionRq2013SeLitAuTypeDeLaColonneDate) {
  EXPECT_FALSE(Cree()->IsConvertedForRQ2013());  // _DATE est un entier dans la base courante
  {
    SQLite::Database b(Temp.Dossier() + "/Essai.adb", SQLite::OPEN_READWRITE);
    b.exec("ALTER TABLE Evenements RENAME COLUMN _DATE TO _DATE_ENTIER");
    b.exec("ALTER TABLE Evenements ADD COLUMN _DATE DATETIME");
  }
  auto g = Ouvre();
  EXPECT_TRUE(g->IsConvertedForRQ2013());
  g->ConvertTableEven();  // ne fait rien
  EXPECT_TRUE(g->IsConvertedForRQ2013());
  // Sans la base (personnes, supprimés et XML seuls), rien ne peut le dire.
  TGestFichier sansBase(Temp.Prs(), false, true, false, false, 0, mcLectureSeule);
  EXPECT_FALSE(sansBase.IsConvertedForRQ2013());
}

TEST_F(GestFichierTest, CreationPoseLesFichiersEtLEnTete) {
  auto g = Cree(1);
  ASSERT_FALSE(g->EnErreur());
  EXPECT_EQ(g->AnneeVersion(), 2020);
  for (const char* ext : {".prs", ".exp", ".psu", ".xin", ".adb"})
    EXPECT_TRUE(std::filesystem::exists(Temp.Dossier() + "/Essai" + ext)) << ext;
  EXPECT_TRUE(std::filesystem::is_directory(Temp.Dossier() + "/Notices"));
  EXPECT_EQ(g->FicPersons()->NbPersEffective(), 1);
  EXPECT_EQ(g->FicPersons()->NoDeCujus, 1);
  EXPECT_EQ(g->FicPersons()->Signet1, -1);
  EXPECT_EQ(g->FicPersons()->Signet2, 1);
  EXPECT_EQ(g->NombrePersonnes(), 1);
  EXPECT_EQ(asNoStradoCujus, 1);
  g.reset();

  const std::string prs = Contenu(Temp.Prs());
  ASSERT_EQ(prs.size(), 2u * 644);
  TEnregPersonne entete, premiere;
  std::memcpy(&entete, prs.data(), 644);
  std::memcpy(&premiere, prs.data() + 644, 644);
  EXPECT_EQ(int{entete.Pere.No}, 1);
  EXPECT_EQ(int{entete.Mere.No}, 1);
  EXPECT_EQ(int{entete.Note}, 1);  // copie des images demandée par défaut
  EXPECT_EQ(std::count(entete.Prenoms, entete.Prenoms + 71, '$'), 4);
  EXPECT_STREQ(premiere.Nom, "X");
  EXPECT_EQ(premiere.Type, 'P');
  EXPECT_EQ(Contenu(Temp.Dossier() + "/Essai.psu"), std::string(4, '\0'));
  EXPECT_EQ(Contenu(Temp.Dossier() + "/Essai.exp"), std::string(2904, '\0'));

  auto r = Ouvre();
  ASSERT_FALSE(r->EnErreur());
  EXPECT_EQ(r->AnneeVersion(), 2020);
  EXPECT_FALSE(r->IsReadOnly());
  EXPECT_EQ(r->NombrePersonnes(), 1);
}

TEST_F(GestFichierTest, IdGeneaFinitParLeDebutDuMd5DuChemin) {
  auto g = Cree();
  const std::string id = g->GetIdGenea();
  ASSERT_EQ(id.size(), 20u);
  const std::string chemin = g->FabriqueNomFichier(tfPersons);
  unsigned char md[16];
  unsigned int n = 0;
  EVP_Digest(chemin.data(), chemin.size(), md, &n, EVP_md5(), nullptr);
  char attendu[8];
  std::snprintf(attendu, sizeof attendu, "%02X%02X", md[0], md[1]);
  EXPECT_EQ(id.substr(16), attendu);
  EXPECT_EQ(id.find_first_not_of("0123456789ABCDEF"), std::string::npos);
  EXPECT_EQ(g->FicXml()->LectureValeur("LienIdPers", "IdGenea"), id);
  EXPECT_TRUE(g->VerifIdPersOk(id + "0000ABCD"));
  EXPECT_FALSE(g->VerifIdPersOk(""));
  EXPECT_THAT(Contenu(Temp.Dossier() + "/Essai.xin"), HasSubstr("<XmlForFiliora>"));
}

TEST_F(GestFichierTest, CreerSurUnDossierExistantNeChangeRienEtGardeLaReponse) {
  Cree(1).reset();
  const auto avant = Instantane(Temp.Dossier());
  Dialogue_.Reponse = ReponseAnnuler;
  auto g = Cree(1);
  EXPECT_TRUE(g->EnErreur());
  EXPECT_EQ(g->DerniereReponse(), ReponseAnnuler);
  ASSERT_EQ(Dialogue_.Questions.size(), 1u);
  EXPECT_EQ(Dialogue_.Questions[0].Titre, "Création d'un dossier généalogique");
  EXPECT_THAT(Dialogue_.Questions[0].Texte, HasSubstr("La généalogie \"Essai\" existe déjà !\nElle contient 1 personnes."));
  g.reset();
  EXPECT_EQ(Instantane(Temp.Dossier()), avant);
}

TEST_F(GestFichierTest, DossierEnLectureSeuleNeChangeRienSurLeDisque) {
  Cree(1).reset();
  for (auto& e : std::filesystem::recursive_directory_iterator(Temp.Dossier()))
    std::filesystem::permissions(e.path(), (std::filesystem::perms::owner_write | std::filesystem::perms::group_write | std::filesystem::perms::others_write), std::filesystem::perm_options::remove);
  std::filesystem::permissions(Temp.Dossier(), (std::filesystem::perms::owner_write | std::filesystem::perms::group_write | std::filesystem::perms::others_write), std::filesystem::perm_options::remove);
  const auto avant = Instantane(Temp.Dossier());
  {
    auto g = Ouvre();
    EXPECT_FALSE(g->EnErreur());
    EXPECT_TRUE(g->IsReadOnly());
    EXPECT_EQ(g->NombrePersonnes(), 1);
    const long n = g->FicPersons()->ReturnNewNum();
    EXPECT_EQ(n, 2);  // en mémoire seulement
    g->EcritureEntete();
  }
  EXPECT_EQ(Instantane(Temp.Dossier()), avant);
}

TEST_F(GestFichierTest, AncienDossierSansBaseSOuvreEnLectureSeule) {
  Cree(1).reset();
  std::filesystem::remove(Temp.Dossier() + "/Essai.adb");
  auto g = Ouvre();
  EXPECT_EQ(g->AnneeVersion(), 2009);
  EXPECT_TRUE(g->IsReadOnly());
  g.reset();
  TGestFichier sansProtection(Temp.Prs(), false, false, false, false, 0, mcSansProtection);
  EXPECT_FALSE(sansProtection.IsReadOnly());
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
  TFichierBrut::Pannes().EchoueEcritureApres(0, ".prs");
  g->FicPersons()->ReturnNewNum();
  EXPECT_TRUE(g->EnErreur());
  TFichierBrut::Pannes().Raz();
  TEnregPersonne e{};
  EXPECT_FALSE(g->FicPersons()->EcritEnreg(1, e));  // plus aucune écriture
  g->EcritureEntete();
  EXPECT_EQ(g->NombrePersonnes(), 0);
  g.reset();
  EXPECT_EQ(Contenu(Temp.Prs()), avant);
}

TEST_F(GestFichierTest, EcritureCourteNEstPasUnEchecMaisZeroOctetEnEstUn) {
  auto g = Cree(1);
  TFichierBrut::Pannes().EcritureCourteApres(0, ".psu");
  g->FicPersSuppr()->AjouteNo(1);
  EXPECT_FALSE(g->EnErreur());
  TFichierBrut::Pannes().Raz();
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
