// Le fichier .dch abîmé : ce qui est lu, ce qui est mis de côté, ce qui est dit, et ce qui
// n'est jamais écrasé. Les fichiers de donnees/ sont un catalogue de 60 champs (la table
// par défaut et un champ de l'utilisateur, CARRIERE) enregistré en UTF-8 avec sa marque,
// dont les 512 premiers octets ont été effacés, ou coupé au milieu de son 28e champ.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/fields/fichier_dch.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/contexte_dossier.h"

using namespace rqbase;
namespace fs = std::filesystem;

namespace {

std::string Contenu(const fs::path& chemin) {
  std::ifstream f(chemin, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(f), std::istreambuf_iterator<char>());
}

std::string Donnee(const std::string& nom) { return Contenu(fs::path(RQ_DONNEES_CHAMPS) / nom); }

class DchAbimeTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Dossier = fs::temp_directory_path() / ("rq_dch_abime_" + std::to_string(::getpid()) + "_" +
                                           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(Dossier);
    fs::create_directories(Dossier);
    Chemin = (Dossier / "famille.dch").string();
    InstalleDialogue(&Messages);
  }
  void TearDown() override {
    InstalleDialogue(nullptr);
    fs::remove_all(Dossier);
  }
  void Pose(const std::string& octets, const std::string& chemin = "") {
    std::ofstream(chemin.empty() ? Chemin : chemin, std::ios::binary) << octets;
  }
  std::unique_ptr<TDefChpsCs> Ouvre(TContexteDossier* contexte = nullptr) {
    return std::make_unique<TDefChpsCs>(contexte, false, Chemin);
  }
  // Les fichiers du dossier, par nom.
  std::vector<std::string> Fichiers() const {
    std::vector<std::string> noms;
    for (const auto& e : fs::directory_iterator(Dossier)) noms.push_back(e.path().filename().string());
    std::sort(noms.begin(), noms.end());
    return noms;
  }
  fs::path Dossier;
  std::string Chemin;
  TDialogueFixe Messages;
};

const std::string kMisDeCote = "famille (endommag\xC3\xA9).dch";  // nom sur le disque, en UTF-8

TEST_F(DchAbimeTest, MarqueUtf8SauteeEtTexteRameneEnWindows1252) {
  Pose(Donnee("utf8_bom.dch"));
  auto cat = Ouvre();
  EXPECT_FALSE(cat->ErreurES());
  ASSERT_EQ(cat->Count(), 60);
  EXPECT_EQ(cat->RetourneLibelleEcran("BAPTEME"), "Baptême");
  EXPECT_EQ(cat->Champs.back()->LibelleInterne, "CARRIERE");
  EXPECT_EQ(cat->Champs.back()->LibelleEcran, "Carrière à l'étranger");
  EXPECT_EQ(cat->TypesIllustration.CommaText(), "Générale,Transcription");
  // Lu en entier : rien n'est mis de côté ni dit.
  EXPECT_EQ(Fichiers(), std::vector<std::string>{"famille.dch"});
  EXPECT_TRUE(Messages.Informations.empty());
  // Réécrit en Windows-1252, sans marque, les mêmes 60 champs.
  ASSERT_TRUE(cat->Sauvegarde());
  const std::string ecrit = Contenu(Chemin);
  EXPECT_EQ(ecrit.substr(0, 4), "60\r\n");
  EXPECT_NE(ecrit.find("Carrière à l'étranger"), std::string::npos);
  EXPECT_EQ(Ouvre()->Count(), 60);
}

TEST_F(DchAbimeTest, DebutEffaceMisDeCoteIntactAvantTouteEcriture) {
  const std::string abime = Donnee("debut_efface.dch");
  Pose(abime);
  auto cat = Ouvre();
  EXPECT_FALSE(cat->ErreurES());
  // Rien de lisible : le catalogue n'a que les champs de mise à niveau...
  EXPECT_EQ(cat->Count(), 15);
  // ... mais le fichier de l'utilisateur est là, octet pour octet, sous un autre nom.
  EXPECT_EQ(Fichiers(), (std::vector<std::string>{kMisDeCote, "famille.dch"}));
  EXPECT_EQ(Contenu(Dossier / kMisDeCote), abime);
  ASSERT_EQ(Messages.Informations.size(), 1u);
  EXPECT_EQ(Messages.Informations[0].Texte,
            "Le catalogue des champs « famille.dch » est abîmé (octet de contrôle à la ligne 1). Il a été mis de "
            "côté sous le nom « famille (endommagé).dch », et le catalogue du dossier est refait de ce qui a pu en "
            "être lu.");
  EXPECT_EQ(Messages.Informations[0].Titre, "Catalogue des champs");
  // Le catalogue refait se relit en entier : la prochaine ouverture ne met rien de côté.
  Messages.Informations.clear();
  EXPECT_EQ(Ouvre()->Count(), 15);
  EXPECT_TRUE(Messages.Informations.empty());
  EXPECT_EQ(Fichiers().size(), 2u);
}

TEST_F(DchAbimeTest, FichierCoupeGardeSesChampsEtPrendUnNomLibre) {
  // Une première mise de côté occupe déjà le nom.
  Pose("ancien", (Dossier / kMisDeCote).string());
  const std::string coupe = Donnee("coupe.dch");
  Pose(coupe);
  auto cat = Ouvre();
  EXPECT_FALSE(cat->ErreurES());
  // Les 28 lignes présentes sont prises (la dernière, coupée, en champ DECORATI), puis les
  // champs de mise à niveau qui manquent.
  ASSERT_GE(cat->Count(), 28);
  EXPECT_EQ(cat->Champs[0]->LibelleInterne, "NOM");
  EXPECT_EQ(cat->Champs[26]->LibelleInterne, "DISPENSES_AFFINITE");
  EXPECT_EQ(cat->Champs[27]->LibelleInterne, "DECORATI");
  const std::string second = "famille (endommag\xC3\xA9) (2).dch";
  EXPECT_EQ(Contenu(Dossier / second), coupe);
  EXPECT_EQ(Contenu(Dossier / kMisDeCote), "ancien");
  ASSERT_EQ(Messages.Informations.size(), 1u);
  EXPECT_NE(Messages.Informations[0].Texte.find("(60 champs annoncés, 28 présents)"), std::string::npos);
  EXPECT_NE(Messages.Informations[0].Texte.find("« famille (endommagé) (2).dch »"), std::string::npos);
}

TEST_F(DchAbimeTest, DossierEnLectureSeuleNiRenommeNiEcrit) {
  const std::string abime = Donnee("coupe.dch");
  Pose(abime);
  TContexteDossier contexte((Dossier / "famille.prs").string(), true);
  auto cat = Ouvre(&contexte);
  EXPECT_FALSE(cat->ErreurES());
  EXPECT_GE(cat->Count(), 28);  // la partie lisible est montrée
  EXPECT_EQ(Fichiers(), std::vector<std::string>{"famille.dch"});
  EXPECT_EQ(Contenu(Chemin), abime);
  ASSERT_EQ(Messages.Informations.size(), 1u);
  EXPECT_NE(Messages.Informations[0].Texte.find("lecture seule"), std::string::npos);
}

TEST_F(DchAbimeTest, MiseDeCoteImpossibleRienNEstEcrit) {
  // 240 + 4 octets : le nom passe ; avec " (endommagé)" il dépasse 255 octets et le
  // système refuse le renommage.
  Chemin = (Dossier / (std::string(240, 'n') + ".dch")).string();
  const std::string abime = Donnee("debut_efface.dch");
  Pose(abime);
  TContexteDossier contexte((Dossier / "famille.prs").string());
  auto cat = Ouvre(&contexte);
  EXPECT_TRUE(cat->ErreurES());
  EXPECT_TRUE(contexte.EnErreur());
  ASSERT_EQ(Messages.Erreurs.size(), 1u);
  EXPECT_NE(Messages.Erreurs[0].Texte.find("n'a pas pu être mis de côté"), std::string::npos);
  // Ni à l'ouverture ni plus tard : le fichier reste tel quel, seul dans le dossier.
  EXPECT_FALSE(cat->Sauvegarde());
  EXPECT_FALSE(cat->PriseEnCompteModification());
  EXPECT_EQ(Contenu(Chemin), abime);
  EXPECT_EQ(Fichiers().size(), 1u);
}

TEST_F(DchAbimeTest, LienSymboliqueJamaisSuivi) {
  const std::string autre = (Dossier / "ailleurs.txt").string();
  Pose("1\r\nNOM\r\n", autre);
  fs::create_symlink(autre, Chemin);
  // À l'ouverture : le lien ne se lit pas, rien n'est écrit, le dossier est arrêté.
  TContexteDossier contexte((Dossier / "famille.prs").string());
  auto cat = Ouvre(&contexte);
  EXPECT_TRUE(cat->ErreurES());
  EXPECT_TRUE(contexte.EnErreur());
  EXPECT_FALSE(cat->Sauvegarde());
  // Pour un dossier neuf, qui écrit tout de suite : le fichier visé par le lien ne change pas.
  auto neuf = std::make_unique<TDefChpsCs>(nullptr, true, Chemin);
  EXPECT_EQ(Contenu(autre), "1\r\nNOM\r\n");
  EXPECT_TRUE(fs::is_regular_file(autre));
}

// Le diagnostic de la lecture, ligne par ligne (fichiers écrits ici, CR LF).
TEST(DecodeDch, CeQuiEmpecheDeLireEnEntier) {
  const std::string queue =
      "\r\nPROFESSION\r\n\r\n\r\nNAISSANCE\r\nBAPTEME\r\n\r\nDECES\r\nINHUMATION\r\n\r\nUNION\r\nCTR-MARIAGE\r\n"
      "Générale\r\nGénérale\r\n\r\nRESIDENCE\r\n\r\n";
  const std::string complet = "1\r\nNOM\tNom\tNOM\r\n" + queue + "RQ2020\r\nv\r\nGénérale\r\n";
  struct TCas {
    std::string Texte, Dommage;
  };
  const TCas cas[] = {
      {complet, ""},
      {complet + "\r\n  \r\n", ""},                        // lignes blanches de fin
      {"1\r\nNOM\tNom\tNOM\r\n" + queue, ""},             // ancien format, fini après la résidence
      {"\xEF\xBB\xBF" "1\r\nNOM\tNom\tNOM\r\n", ""},     // marque UTF-8
      {"", "fichier vide"},
      {"\xEF\xBB\xBF", "fichier vide"},
      {"douze\r\nNOM\r\n", "nombre de champs illisible"},
      {"-1\r\n", "nombre de champs illisible"},
      {"500\r\nA\r\nB\r\n", "500 champs annoncés, 2 présents"},
      {"1\r\nNOM\x01\tNom\r\n", "octet de contrôle à la ligne 2"},
      {complet + "NOTE\r\n", "1 ligne non lue en fin de fichier"},
      {"1\r\nNOM\r\n" + queue + "AUTRE\r\nCHOSE\r\n", "2 lignes non lues en fin de fichier"},
      {"\xEF\xBB\xBF" "1\r\nNOM\xE9\r\n", "texte UTF-8 mal formé"},
      {"\xEF\xBB\xBF" "1\r\nNOM\xCE\xA9\r\n", "caractères sans équivalent en Windows-1252"},
  };
  for (const auto& c : cas) {
    const TContenuDch lu = DecodeDch(c.Texte);
    EXPECT_EQ(lu.Dommage, c.Dommage) << c.Texte;
    // Ce que le catalogue réécrit de ce qu'il a lu se relit toujours en entier.
    EXPECT_TRUE(DecodeDch(CodeDch(lu)).Entier()) << c.Texte;
  }
  // Ce qui est lu malgré les dommages : l'octet de contrôle est ôté, le texte UTF-8 est
  // ramené en Windows-1252 ('?' sans équivalent, octet invalide pris tel quel).
  EXPECT_EQ(DecodeDch("1\r\nNOM\x01\tNom\r\n").Champs[0], "NOM\tNom");
  EXPECT_EQ(DecodeDch("\xEF\xBB\xBF" "1\r\nBapt\xC3\xAAme\xCE\xA9\r\n").Champs[0], "Baptême?");
  EXPECT_EQ(DecodeDch("\xEF\xBB\xBF" "1\r\nNOM\xE9\r\n").Champs[0], "NOM\xE9");
  EXPECT_TRUE(DecodeDch("\xEF\xBB\xBF" "1\r\nNOM\r\n").Utf8);
}

}  // namespace
