#include "rqbase/platform/fichier.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <filesystem>

namespace rqbase {
namespace {

namespace fs = std::filesystem;

class FichierBrutTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Dossier = fs::temp_directory_path() / ("rq_fichier_" + std::to_string(::getpid()) + "_" +
                                           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::create_directories(Dossier);
    Chemin = (Dossier / "essai.prs").string();
  }
  void TearDown() override {
    TFichierBrut::Pannes().Raz();
    fs::permissions(Dossier, fs::perms::owner_all, fs::perm_options::add);
    fs::remove_all(Dossier);
  }
  std::unique_ptr<TFichierBrut> Ouvre(TFichierBrut::TDisposition d,
                                      TFichierBrut::TAcces a = TFichierBrut::TAcces::LectureEcriture) {
    return TFichierBrut::Ouvre(Chemin, a, d);
  }
  fs::path Dossier;
  std::string Chemin;
};

TEST_F(FichierBrutTest, EcritEtRelitAUnePosition) {
  auto f = Ouvre(TFichierBrut::TDisposition::OuvreOuCree);
  ASSERT_TRUE(f);
  EXPECT_EQ(f->EcritA(644, "abc", 3), 3);
  EXPECT_EQ(f->Taille(), 647);
  char lu[4] = {};
  EXPECT_EQ(f->LitA(644, lu, 3), 3);
  EXPECT_STREQ(lu, "abc");
  EXPECT_EQ(f->LitA(646, lu, 3), 1);  // fin de fichier : lecture courte
  EXPECT_EQ(f->LitA(-1, lu, 3), -1);
  EXPECT_TRUE(f->Tronque(10));
  EXPECT_EQ(f->Taille(), 10);
  EXPECT_TRUE(f->Flush());
}

TEST_F(FichierBrutTest, DispositionsEtModeLecture) {
  EXPECT_FALSE(Ouvre(TFichierBrut::TDisposition::Ouvre));  // le fichier n'existe pas encore
  {
    auto f = Ouvre(TFichierBrut::TDisposition::OuvreOuCree);
    ASSERT_TRUE(f);
    f->EcritA(0, "xyz", 3);
  }
  EXPECT_EQ(Ouvre(TFichierBrut::TDisposition::OuvreOuCree)->Taille(), 3);  // conservé
  auto lecture = Ouvre(TFichierBrut::TDisposition::Ouvre, TFichierBrut::TAcces::Lecture);
  ASSERT_TRUE(lecture);
  EXPECT_TRUE(lecture->EnLectureSeule());
  EXPECT_EQ(lecture->EcritA(0, "a", 1), -1);
  EXPECT_FALSE(lecture->Tronque(0));
  EXPECT_EQ(Ouvre(TFichierBrut::TDisposition::CreeOuRemplace)->Taille(), 0);  // vidé
  EXPECT_FALSE(TFichierBrut::Ouvre(Dossier.string(), TFichierBrut::TAcces::Lecture, TFichierBrut::TDisposition::Ouvre));
}

TEST_F(FichierBrutTest, EcritureImmediateSeCoupeEtRevient) {
  auto f = Ouvre(TFichierBrut::TDisposition::OuvreOuCree);
  ASSERT_TRUE(f);
  EXPECT_TRUE(f->EcritureImmediate());
  EXPECT_TRUE(f->ChangeEcritureImmediate(false));
  EXPECT_FALSE(f->EcritureImmediate());
  EXPECT_EQ(f->EcritA(0, "12345", 5), 5);
  EXPECT_TRUE(f->ChangeEcritureImmediate(true));
  char lu[6] = {};
  EXPECT_EQ(f->LitA(0, lu, 5), 5);
  EXPECT_STREQ(lu, "12345");
}

TEST_F(FichierBrutTest, PannesInjectees) {
  auto f = Ouvre(TFichierBrut::TDisposition::OuvreOuCree);
  ASSERT_TRUE(f);
  TFichierBrut::Pannes().EchoueEcritureApres(2);
  EXPECT_EQ(f->EcritA(0, "aa", 2), 2);
  EXPECT_EQ(f->EcritA(2, "bb", 2), 2);
  EXPECT_EQ(f->EcritA(4, "cc", 2), -1);  // la troisième échoue...
  EXPECT_EQ(f->EcritA(4, "cc", 2), -1);  // ...et les suivantes aussi
  EXPECT_EQ(f->Taille(), 4);

  TFichierBrut::Pannes().Raz();
  TFichierBrut::Pannes().EcritureCourteApres(0);
  EXPECT_EQ(f->EcritA(0, "wxyz", 4), 2);

  TFichierBrut::Pannes().Raz();
  TFichierBrut::Pannes().LectureCourteApres(1);
  char lu[4];
  EXPECT_EQ(f->LitA(0, lu, 4), 4);
  EXPECT_EQ(f->LitA(0, lu, 4), 2);

  // Une panne limitée à un autre fichier ne touche pas celui-ci.
  TFichierBrut::Pannes().Raz();
  TFichierBrut::Pannes().EchoueLectureApres(0, ".exp");
  EXPECT_EQ(f->LitA(0, lu, 4), 4);
}

TEST_F(FichierBrutTest, EcritureRefuseeCommeUnDossierEnLectureSeule) {
  { Ouvre(TFichierBrut::TDisposition::OuvreOuCree)->EcritA(0, "a", 1); }
  TFichierBrut::Pannes().RefuseEcriture(".prs");
  EXPECT_FALSE(Ouvre(TFichierBrut::TDisposition::OuvreOuCree));
  EXPECT_EQ(TFichierBrut::DerniereErreur(), EACCES);
  EXPECT_TRUE(Ouvre(TFichierBrut::TDisposition::Ouvre, TFichierBrut::TAcces::Lecture));
}

TEST_F(FichierBrutTest, DossierEnLectureSeule) {
  { Ouvre(TFichierBrut::TDisposition::OuvreOuCree)->EcritA(0, "a", 1); }
  ::chmod(Chemin.c_str(), 0444);
  if (::geteuid() == 0) GTEST_SKIP() << "root écrit partout";
  EXPECT_FALSE(Ouvre(TFichierBrut::TDisposition::OuvreOuCree));
  EXPECT_TRUE(Ouvre(TFichierBrut::TDisposition::Ouvre, TFichierBrut::TAcces::Lecture));
}

}  // namespace
}  // namespace rqbase
