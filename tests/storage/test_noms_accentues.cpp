// Un dossier au nom accentué : Windows-1252 dans la bibliothèque, UTF-8 sur le disque.
#include <gtest/gtest.h>

#include <filesystem>

#include "dossier_essai.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/fichiers.h"

namespace rqbase {
namespace {

namespace fs = std::filesystem;

TEST(NomsAccentues, LeDossierPorteSonNomEnUtf8SurLeDisqueEtSeRouvre) {
  essai::TDossierTemp temp;
  const std::string nom = "Lefèvre Élise";  // Windows-1252 à l'exécution
  {
    TGestFichier gest(temp.Prs(nom), true, false, false, false, 1, mcLectureSeule, false);
    ASSERT_FALSE(gest.EnErreur());
  }
  // Sur le disque : les octets UTF-8, pas ceux de Windows-1252.
  const fs::path dossierOs = fs::path(temp.Racine) / "Lef\xC3\xA8vre \xC3\x89lise.rq2";
  ASSERT_TRUE(fs::is_directory(dossierOs));
  for (const char* ext : {".prs", ".exp", ".psu", ".xin", ".adb", ".dch"})
    EXPECT_TRUE(fs::is_regular_file(dossierOs / ("Lef\xC3\xA8vre \xC3\x89lise" + std::string(ext)))) << ext;
  EXPECT_TRUE(fs::is_directory(dossierOs / "Notices"));

  // Les aides de la couche utilitaire parlent le même texte interne.
  EXPECT_TRUE(DossierExiste(temp.Dossier(nom)));
  EXPECT_TRUE(FichierExiste(temp.Prs(nom)));

  TGestFichier relu(temp.Prs(nom), false, false, false, false, 0, mcLectureSeule, false);
  ASSERT_FALSE(relu.EnErreur());
  EXPECT_EQ(relu.NombrePersonnes(), 1);
  EXPECT_EQ(relu.AnneeVersion(), 2020);

  const std::string copie = temp.Racine + "/Copie à côté";
  ASSERT_TRUE(relu.DupliqueGenealogie(copie));
  EXPECT_TRUE(fs::is_regular_file(fs::path(temp.Racine) / "Copie \xC3\xA0 c\xC3\xB4t\xC3\xA9.rq2" /
                                  "Copie \xC3\xA0 c\xC3\xB4t\xC3\xA9.prs"));
}

}  // namespace
}  // namespace rqbase
