#include "rqbase/util/fichiers.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace rqbase {
namespace {

namespace fs = std::filesystem;

TEST(Fichiers, BarresObliques) {
  EXPECT_EQ(AjouteSlashSiNecessaire("/a/b"), "/a/b/");
  EXPECT_EQ(AjouteSlashSiNecessaire("/a/b/"), "/a/b/");
  EXPECT_EQ(SupprimeSlashSiNecessaire("/a/b/"), "/a/b");
  EXPECT_EQ(SupprimeSlashSiNecessaire("/"), "/");
  EXPECT_EQ(CheminSysteme("Images\\portrait.jpg"), "Images/portrait.jpg");
}

TEST(Fichiers, CopieCompteEtSuppressionDUnDossier) {
  const fs::path racine = fs::temp_directory_path() / ("rq_fichiers_" + std::to_string(::getpid()));
  const fs::path source = racine / "Famille.rq2";
  fs::create_directories(source / "Notices");
  std::ofstream(source / "Famille.prs") << "x";
  std::ofstream(source / "Notices" / "np1.txt") << "y";

  EXPECT_TRUE(FichierExiste((source / "Famille.prs").string()));
  EXPECT_FALSE(FichierExiste(source.string()));
  EXPECT_TRUE(DossierExiste(source.string()));
  EXPECT_EQ(CountFileAndDirInDirectory(source.string()), 3);
  EXPECT_EQ(CountFileAndDirInDirectory((racine / "absent").string()), 0);

  int vus = 0;
  ASSERT_TRUE(CopyDirectory(source.string(), (racine / "Copie.rq2").string(), [&] { return ++vus > 0; }));
  EXPECT_EQ(vus, 3);
  EXPECT_TRUE(FichierExiste((racine / "Copie.rq2" / "Notices" / "np1.txt").string()));
  // Arrêt demandé dès le premier élément.
  EXPECT_FALSE(CopyDirectory(source.string(), (racine / "Arret").string(), [] { return false; }));

  EXPECT_TRUE(DeleteDirectoryRecursif(source.string()));
  EXPECT_FALSE(DossierExiste(source.string()));
  fs::remove_all(racine);
}

}  // namespace
}  // namespace rqbase
