// Un dossier ne perd rien : un seul écrivain, l'enregistrement avant son compte, les
// fichiers hostiles refusés, l'identifiant stable, et le dossier entier copié, renommé ou
// supprimé entièrement ou pas du tout.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "dossier_essai.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/storage/gest_fic_pers.h"

namespace rqbase {
namespace {

namespace fs = std::filesystem;
using essai::Contenu;
using essai::Ecrit;
using essai::Instantane;
using testing::ElementsAre;
using testing::HasSubstr;

class SureteTest : public testing::Test {
 protected:
  void SetUp() override {
    InstalleDialogue(&Dialogue_);
    ::setenv("RQBASE_ATTENTE_VERROU", "50", 1);
  }
  void TearDown() override {
    InstalleDialogue(nullptr);
    TFichierBrut::Pannes().Raz();
    ::unsetenv("RQBASE_ATTENTE_VERROU");
  }
  // Un dossier « Essai » de `n` personnes nommées P1, P2... (la première est « X »).
  void CreeAvec(int n, const std::string& nom = "Essai") {
    TGestFichier g(Temp.Prs(nom), true, false, false, false, 1);
    ASSERT_FALSE(g.EnErreur());
    for (int i = 2; i <= n; ++i) AjoutePersonne(g, "P" + std::to_string(i));
  }
  static long AjoutePersonne(TGestFichier& g, const std::string& nom) {
    TPerson p(g.FicPersons(), 0);
    p.NouvelleFiche(-3);
    p.SetNom(nom);
    p.Enregistrement();
    g.EcritureEntete();
    return p.No();
  }
  std::unique_ptr<TGestFichier> Ouvre(bool lectureSeule = false, const std::string& nom = "Essai") {
    return std::make_unique<TGestFichier>(Temp.Prs(nom), false, false, false, false, 0, mcLectureSeule, lectureSeule);
  }
  essai::TDossierTemp Temp;
  TDialogueFixe Dialogue_{ReponseNon};
};

TEST_F(SureteTest, UnSeulEcrivainLesLecteursAttendentOuSontRefuses) {
  CreeAvec(2);
  auto ecrivain = Ouvre();
  ASSERT_FALSE(ecrivain->EnErreur());
  for (bool lectureSeule : {false, true}) {
    const auto debut = std::chrono::steady_clock::now();
    auto second = Ouvre(lectureSeule);
    EXPECT_TRUE(second->EnErreur());
    EXPECT_EQ(second->FicPersons(), nullptr);  // rien n'a été lu ni ouvert
    EXPECT_THAT(second->MessageErreur(), HasSubstr("est déjà ouvert en écriture"));
    EXPECT_LT(std::chrono::steady_clock::now() - debut, std::chrono::seconds(5));  // attente bornée
  }
  ecrivain.reset();
  // Deux lecteurs ensemble ; un écrivain attend qu'ils aient fini.
  auto l1 = Ouvre(true), l2 = Ouvre(true);
  EXPECT_FALSE(l1->EnErreur());
  EXPECT_FALSE(l2->EnErreur());
  EXPECT_TRUE(Ouvre()->EnErreur());
  l1.reset();
  l2.reset();
  auto apres = Ouvre();
  EXPECT_FALSE(apres->EnErreur());
  EXPECT_EQ(apres->NombrePersonnes(), 2);
}

TEST_F(SureteTest, LEnregistrementPrecedeLeCompteQuiLeCouvre) {
  CreeAvec(2);
  const std::string prs = Temp.Prs();
  {
    auto g = Ouvre();
    // L'enregistrement passe, l'en-tête qui devait le compter échoue : la personne n'est
    // pas comptée, et la commande le sait.
    TFichierBrut::Pannes().EchoueEcritureApres(1, ".prs");
    AjoutePersonne(*g, "Perdue");
    EXPECT_TRUE(g->EcritureRatee());
    TFichierBrut::Pannes().Raz();
  }
  {
    auto g = Ouvre();
    EXPECT_EQ(g->FicPersons()->NbPersEffective(), 2);
    // Le numéro non compté est redonné, et l'enregistrement à moitié fait recouvert.
    EXPECT_EQ(AjoutePersonne(*g, "Gardee"), 3);
    EXPECT_FALSE(g->EcritureRatee());
  }
  // Disque plein au milieu d'un enregistrement : aucune personne fantôme, ni maintenant ni après.
  {
    auto g = Ouvre();
    TFichierBrut::Pannes().EcritureCourteApres(0, ".prs");
    for (int i = 0; i < 3; ++i) AjoutePersonne(*g, "Fantome");
    EXPECT_TRUE(g->EcritureRatee());
    TFichierBrut::Pannes().Raz();
  }
  auto g = Ouvre(true);
  EXPECT_EQ(g->FicPersons()->NbPersEffective(), 3);
  EXPECT_STREQ(TPerson(g->FicPersons(), 3).Enreg.Nom, "Gardee");
}

// Créé sans première personne, un dossier a tout de même la fiche de son numéro réservé : la
// lire ne met pas le dossier en erreur, et les écritures qui suivent passent.
TEST_F(SureteTest, NumeroReserveDUnDossierNeufSeLitSansErreur) {
  {
    TGestFichier g(Temp.Prs(), true, false, false, false, 0);
    ASSERT_FALSE(g.EnErreur());
  }
  EXPECT_EQ(std::filesystem::file_size(Temp.Prs()), 2u * 644u);
  auto g = Ouvre();
  ASSERT_EQ(g->FicPersons()->NbPersEffective(), 1);
  TPerson un(g->FicPersons(), 1);
  EXPECT_FALSE(g->EnErreur());
  EXPECT_STREQ(un.Enreg.Nom, "");
  EXPECT_EQ(AjoutePersonne(*g, "Suivante"), 2);
  EXPECT_FALSE(g->EcritureRatee());
  EXPECT_FALSE(g->EnErreur());
}

TEST_F(SureteTest, FichiersHostilesNiSuivisNiAttendus) {
  CreeAvec(3);
  const std::string d = Temp.Dossier() + "/";
  // Un .xin qui mène hors du dossier : le fichier visé ne change jamais.
  const std::string dehors = Temp.Racine + "/dehors.txt";
  Ecrit(dehors, "à garder");
  fs::remove(d + "Essai.xin");
  fs::create_symlink(dehors, d + "Essai.xin");
  fs::remove(d + "lienidpers.cpt");  // l'ouverture voudra réécrire l'identifiant
  // Un tube à la place des supprimés : l'ouverture ne l'attend pas.
  fs::remove(d + "Essai.psu");
  ASSERT_EQ(::mkfifo((d + "Essai.psu").c_str(), 0644), 0);
  {
    auto g = Ouvre();
    EXPECT_EQ(g->FicPersSuppr()->Fichier(), nullptr);
    EXPECT_EQ(g->FicPersons()->NbPersEffective(), 3);
  }
  EXPECT_EQ(Contenu(dehors), "à garder");
  EXPECT_TRUE(fs::is_symlink(fs::symlink_status(d + "Essai.xin")));

  // Des comptes qui annoncent plus que le fichier ne tient sont lus aussi loin qu'il va.
  fs::remove(d + "Essai.psu");
  std::string psu(8, '\0');
  const int32_t enorme = 2000000000;
  std::memcpy(psu.data(), &enorme, 4);
  Ecrit(d + "Essai.psu", psu);
  std::string prs = Contenu(d + "Essai.prs");
  std::memcpy(prs.data() + 3, &enorme, 4);  // le compte de l'en-tête des personnes
  Ecrit(d + "Essai.prs", prs);
  auto g = Ouvre(true);
  EXPECT_EQ(g->FicPersSuppr()->NbEnreg(), 1);
  EXPECT_EQ(g->FicPersSuppr()->GetNbPersSuppr(), 0);
  EXPECT_EQ(g->FicPersons()->NbPersEffective(), 3);
}

TEST_F(SureteTest, IdentifiantStableEtLectureSeuleSansEcriture) {
  CreeAvec(1);
  std::string id;
  {
    auto g = Ouvre();
    id = g->GetIdGenea();
    EXPECT_EQ(id.size(), 20u);
  }
  EXPECT_EQ(Ouvre()->GetIdGenea(), id);  // le marqueur garde l'identifiant
  fs::remove(Temp.Dossier() + "/lienidpers.cpt");
  // En lecture seule, l'identifiant se refait en mémoire sans rien écrire.
  const auto avant = Instantane(Temp.Dossier());
  Ouvre(true).reset();
  EXPECT_EQ(Instantane(Temp.Dossier()), avant);
  // En écriture, il est refait une fois, avec son marqueur, puis ne bouge plus.
  const std::string nouveau = Ouvre()->GetIdGenea();
  EXPECT_TRUE(fs::exists(Temp.Dossier() + "/lienidpers.cpt"));
  EXPECT_EQ(Ouvre()->GetIdGenea(), nouveau);
}

TEST_F(SureteTest, LaSuppressionNEnleveQueCeQuiEstAuDossier) {
  CreeAvec(2);
  const std::string d = Temp.Dossier() + "/";
  Ecrit(d + "mes-notes.txt", "à moi");
  Ecrit(d + "Essai.r3", "dictionnaire");
  fs::create_directories(d + "Images");
  Ecrit(d + "Images/portrait.jpg", "image");
  Ecrit(d + "Notices/np1.txt", "notice");
  Ecrit(d + "Notices/autre.txt", "à moi aussi");
  auto g = Ouvre();
  const TCompteRendu r = g->SupprimeDossier();
  ASSERT_TRUE(r.Reussi) << r.Message;
  EXPECT_THAT(r.Conserves, ElementsAre("Notices/autre.txt", "mes-notes.txt"));
  EXPECT_EQ(Contenu(d + "mes-notes.txt"), "à moi");
  EXPECT_EQ(Contenu(d + "Notices/autre.txt"), "à moi aussi");
  for (const char* parti : {"Essai.prs", "Essai.adb", "Essai.r3", "Images", "Notices/np1.txt", "lienidpers.cpt"})
    EXPECT_FALSE(fs::exists(d + parti)) << parti;
  // Sans rien d'étranger, le dossier lui-même disparaît.
  CreeAvec(1, "Vide");
  ASSERT_TRUE(Ouvre(false, "Vide")->SupprimeDossier().Reussi);
  EXPECT_FALSE(fs::exists(Temp.Dossier("Vide")));
}

TEST_F(SureteTest, SeulUnDossierGenealogiqueSeSupprime) {
  const std::string autre = Temp.Racine + "/autre";
  fs::create_directories(autre);
  Ecrit(autre + "/export.prs", std::string(1288, '\0'));
  Ecrit(autre + "/garde.txt", "x");
  const auto avant = Instantane(Temp.Racine);
  TGestFichier g(autre + "/export.prs", false, false, false, true);
  const TCompteRendu r = g.SupprimeDossier();
  EXPECT_FALSE(r.Reussi);
  EXPECT_THAT(r.Message, HasSubstr("n'est pas un dossier généalogique"));
  EXPECT_EQ(Instantane(Temp.Racine), avant);
}

TEST_F(SureteTest, RenommageEntierOuDefait) {
  CreeAvec(3);
  Ecrit(Temp.Dossier() + "/Essai.d12", "dictionnaire");
  // Un fichier du nouveau nom déjà là : le renommage s'arrête et défait ce qu'il a fait.
  Ecrit(Temp.Dossier() + "/Neuf.psu", "obstacle");
  auto avant = Instantane(Temp.Racine);
  {
    auto g = Ouvre();
    const TCompteRendu r = g->RenommeDossier("Neuf");
    EXPECT_FALSE(r.Reussi);
    EXPECT_THAT(r.Message, HasSubstr("rien n'a changé"));
  }
  EXPECT_EQ(Instantane(Temp.Racine), avant);
  // Vers un dossier qui existe : refusé sans rien toucher.
  fs::remove(Temp.Dossier() + "/Neuf.psu");
  fs::create_directories(Temp.Dossier("Pris"));
  avant = Instantane(Temp.Racine);
  EXPECT_FALSE(Ouvre()->RenommeDossier("Pris").Reussi);
  EXPECT_EQ(Instantane(Temp.Racine), avant);
  {
    auto g = Ouvre();
    ASSERT_TRUE(g->RenommeDossier("Neuf").Reussi);
  }
  EXPECT_FALSE(fs::exists(Temp.Dossier()));
  EXPECT_TRUE(fs::exists(Temp.Dossier("Neuf") + "/Neuf.d12"));
  auto g = Ouvre(true, "Neuf");
  ASSERT_FALSE(g->EnErreur());
  EXPECT_EQ(g->NombrePersonnes(), 3);
  EXPECT_STREQ(TPerson(g->FicPersons(), 3).Enreg.Nom, "P3");
}

TEST_F(SureteTest, RenommageInterrompuLaisseUnDossierEntierSousUnSeulNom) {
  CreeAvec(2);
  const std::string d = Temp.Dossier() + "/";
  // Tué pendant qu'il donnait les seconds noms : le dossier s'ouvre sous l'ancien nom.
  fs::create_hard_link(d + "Essai.prs", d + "Neuf.prs");
  fs::create_hard_link(d + "Essai.adb", d + "Neuf.adb");
  EXPECT_EQ(Ouvre()->NombrePersonnes(), 2);
  // Le renommage repris passe, et aucun ancien nom ne reste.
  ASSERT_TRUE(Ouvre()->RenommeDossier("Neuf").Reussi);
  for (const auto& e : fs::directory_iterator(Temp.Dossier("Neuf")))
    EXPECT_NE(e.path().filename().string().rfind("Essai", 0), 0u) << e.path();
  // Tué après le renommage du dossier, avant le départ des anciens noms : entier sous le
  // nouveau, et les anciens noms partent avec lui à la suppression.
  const std::string n = Temp.Dossier("Neuf") + "/";
  fs::create_hard_link(n + "Neuf.prs", n + "Essai.prs");
  auto g = Ouvre(false, "Neuf");
  EXPECT_EQ(g->NombrePersonnes(), 2);
  const TCompteRendu r = g->SupprimeDossier();
  ASSERT_TRUE(r.Reussi);
  EXPECT_TRUE(r.Conserves.empty());
  EXPECT_FALSE(fs::exists(Temp.Dossier("Neuf")));
}

TEST_F(SureteTest, CopieEntiereOuRien) {
  CreeAvec(3);
  Ecrit(Temp.Dossier() + "/Essai.r1", "dictionnaire");
  fs::create_directories(Temp.Dossier("Prise"));
  const auto avant = Instantane(Temp.Racine);
  EXPECT_FALSE(Ouvre(true)->DupliqueDossier(Temp.Racine + "/Prise").Reussi);
  EXPECT_EQ(Instantane(Temp.Racine), avant);
  // Une panne en route : rien n'est laissé, ni la cible, ni le dossier de travail.
  TFichierBrut::Pannes().EchoueEcritureApres(2, "Copie");
  EXPECT_FALSE(Ouvre(true)->DupliqueDossier(Temp.Racine + "/Copie").Reussi);
  TFichierBrut::Pannes().Raz();
  EXPECT_EQ(Instantane(Temp.Racine), avant);
  ASSERT_TRUE(Ouvre(true)->DupliqueDossier(Temp.Racine + "/Copie").Reussi);
  EXPECT_TRUE(fs::exists(Temp.Dossier("Copie") + "/Copie.r1"));
  EXPECT_FALSE(fs::exists(Temp.Dossier("Copie") + "/Copie.xin"));  // la copie aura son identifiant
  auto g = Ouvre(true, "Copie");
  ASSERT_FALSE(g->EnErreur());
  EXPECT_EQ(g->NombrePersonnes(), 3);
  EXPECT_STREQ(TPerson(g->FicPersons(), 2).Enreg.Nom, "P2");
}

}  // namespace
}  // namespace rqbase
