// TDefChpsCs et le fichier .dch : création, relecture, mise à niveau, fichiers abîmés,
// fusion et changement de structure.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/fields/fichier_dch.h"
#include "rqbase/fields/table_defaut.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/dossier/gest_fic.h"
#include "rqbase/util/erreur.h"

using namespace rqbase;
namespace fs = std::filesystem;

namespace {

class CatalogueTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Dossier = fs::temp_directory_path() /
              ("rq_catalogue_" + std::to_string(::getpid()) + "_" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(Dossier);
    fs::create_directories(Dossier);
    Chemin = (Dossier / "famille.dch").string();
  }
  void TearDown() override {
    TFichierBrut::Pannes().Raz();
    __asStructFilenameNew.clear();
    fs::remove_all(Dossier);
  }
  std::unique_ptr<TDefChpsCs> Ouvre(bool nouveau = false) {
    return std::make_unique<TDefChpsCs>(nullptr, nouveau, Chemin);
  }
  void Ecrit(const std::string& texte, const std::string& chemin = "") {
    std::ofstream(chemin.empty() ? Chemin : chemin, std::ios::binary) << texte;
  }
  std::string Relit() {
    std::ifstream f(Chemin, std::ios::binary);
    std::stringstream s;
    s << f.rdbuf();
    return s.str();
  }
  static std::vector<std::string> Libelles(const TDefChpsCs& c) {
    std::vector<std::string> v;
    for (const auto& chp : c.Champs) v.push_back(chp->LibelleInterne);
    return v;
  }
  fs::path Dossier;
  std::string Chemin;
};

// Un fichier d'ancien dossier : quelques champs, sans la marque RQ2020.
std::string AncienFichier() {
  return "4\r\n"
         "NOM\tNom\tNOM\t\t1\t40\t\t\t\t\tN\tP\r\n"
         "NAISSANCE\tNaissance\tES\t\t1\t20\t\tBIRT\t\t\tN\tP\r\n"
         "RECENSEMENT\tRecensement\tEC\t\t1\t60\t\tCENS\t\t\tO\tP\r\n"
         "DDMF\tDate dern. modif.\tDDMF\t\t1\t10\t\tCHAN\t\t\tN\tP\r\n"
         "\r\nPROFESSION\r\n\r\n"
         "\r\nNAISSANCE\r\nBAPTEME\r\n"
         "\r\nDECES\r\nINHUMATION\r\n"
         "\r\nUNION\r\nCTR-MARIAGE\r\n"
         "Générale,Actes\r\n"
         "\r\n"
         "\r\nRESIDENCE\r\n\r\n";
}

class FausseReecriture : public TReecritureValeurs {
 public:
  bool ChangementType(const TChpCs& a, const TChpCs&, long, long) override {
    Appels.push_back("type " + a.LibelleInterne);
    return true;
  }
  bool AjusteMorceauxEvens(const TChpCs& a, const TChpCs& n, long, long) override {
    Appels.push_back("morceaux " + a.LibelleInterne + " " + std::to_string(a.NbMorceaux) + "->" +
                     std::to_string(n.NbMorceaux));
    return true;
  }
  bool RenommeLibelleInterne(const std::string& a, const std::string& n) override {
    Appels.push_back("renomme " + a + " " + n);
    return true;
  }
  std::vector<std::string> Appels;
};

}  // namespace

TEST_F(CatalogueTest, DossierNeufRecoitLaTableParDefautEtLEnregistre) {
  auto cat = Ouvre(true);
  ASSERT_FALSE(cat->ErreurES());
  ASSERT_EQ(cat->Count(), 59);
  EXPECT_EQ(cat->Champs.front()->LibelleInterne, "NOM");
  EXPECT_EQ(cat->Champs.back()->LibelleInterne, "REGISTRE_MATRICULE");
  EXPECT_TRUE(cat->Modifie);
  EXPECT_TRUE(fs::exists(Chemin));
  // Dictionnaires : les numéros fixés restent, les autres suivent le plus haut (44).
  EXPECT_EQ(cat->RechercheChampsInternePtr("SERVICE_MILITAIRE")->IndexFicDupli[0], 44);
  EXPECT_EQ(cat->RechercheChampsInternePtr("BANS")->IndexFicDupli[0], 30);
  EXPECT_EQ(cat->RechercheChampsInternePtr("NOM")->IndexFicDupli[0], 0);
  EXPECT_EQ(cat->RechercheChampsInternePtr("SOSA")->IndexFicDupli[0], 0);
  EXPECT_EQ(cat->RechercheChampsInternePtr("IMAGE")->IndexFicDupli[0], 45);
  EXPECT_EQ(cat->RechercheChampsInternePtr("NAISSANCE")->IndexFicDupli[0], 46);
  EXPECT_EQ(cat->TypesIllustration.CommaText(), "Générale,Transcription");
  EXPECT_EQ(cat->TypesSource.CommaText(), "Générale");
  // Rangs : parmi les événements et parmi les champs personnels.
  EXPECT_EQ(cat->RechercheChampsInternePtr("IMAGE")->Rang1, 0);
  EXPECT_EQ(cat->RechercheChampsInternePtr("NOM")->Rang1, -1);
  EXPECT_EQ(cat->RechercheChampsInterneRgEven("BAPTEME"), 2);
  EXPECT_EQ(cat->RetChpCsRgEven(2, false)->LibelleInterne, "BAPTEME");
  EXPECT_EQ(cat->RetChpCsRgEven(1, true)->LibelleInterne, "ADOPTION");  // IMAGE, (NAISSANCE, BAPTEME)
  EXPECT_EQ(cat->RetChpCsRgPerso(0, false)->LibelleInterne, "IMAGE");
}

TEST_F(CatalogueTest, RelectureRendLeMemeCatalogueEtLeMemeFichier) {
  auto a = Ouvre(true);
  const std::string premier = Relit();
  auto b = Ouvre(false);
  EXPECT_EQ(Libelles(*a), Libelles(*b));
  EXPECT_FALSE(b->AncienFormat());
  for (int i = 0; i < a->Count(); ++i) EXPECT_EQ(a->Champs[size_t(i)]->Code(), b->Champs[size_t(i)]->Code());
  b->Sauvegarde();
  EXPECT_EQ(Relit(), premier);
  EXPECT_EQ(DecodeDch(premier).Champs.size(), 59u);
  EXPECT_EQ(CodeDch(DecodeDch(premier)), premier);
}

TEST_F(CatalogueTest, AncienDossierEstMisANiveauDansLOrdreEtEnregistre) {
  Ecrit(AncienFichier());
  auto cat = Ouvre(false);
  ASSERT_FALSE(cat->ErreurES());
  EXPECT_TRUE(cat->AncienFormat());
  EXPECT_EQ(Libelles(*cat),
            (std::vector<std::string>{"NOM", "NAISSANCE", "RECENSEMENT", "DDMF", "FILIATION_PERE", "FILIATION_MERE",
                                      "ORIGINE_DONNEE", "EMAIL", "ABN_NOTIF", "S_P", "RELATION_PRIV", "P_SA",
                                      "DDNOTIF", "DISTANCECUM", "FAVORIS", "IMAGE_SIGNATURE", "SIGNALEMENT",
                                      "REGISTRE_MATRICULE"}));
  // RECENSEMENT existait : restructuré en quatre morceaux, libellé d'écran inchangé.
  const TChpCs* rec = cat->RechercheChampsInternePtr("RECENSEMENT");
  EXPECT_EQ(rec->RetTailleMorceauChn(), "90, 4, 3, 3");
  EXPECT_EQ(rec->RetNomMorceauxChn(), "Quartier, n° maison, n° ménage, n° individu");
  EXPECT_EQ(rec->LibelleEcran, "Recensement");
  EXPECT_EQ(cat->RechercheChampsInternePtr("DDMF")->TailleMorceaux[0], 16);
  EXPECT_FALSE(cat->RechercheChampsInternePtr("SIGNALEMENT")->AvecResume);
  // Phrases posées, symboles posés puisque rien n'en portait.
  const TChpCs* n = cat->RechercheChampsInternePtr("NAISSANCE");
  EXPECT_EQ(n->Expressions.Count(), 6);
  EXPECT_EQ(n->Symbole, "°");
  EXPECT_EQ(n->LibelleMasculin, "Né");
  EXPECT_EQ(cat->TypesSource.CommaText(), "Générale,Actes");
  EXPECT_EQ(cat->TypesNote.CommaText(), "Générale");  // ligne vide : la valeur par défaut
  EXPECT_EQ(cat->TypesIllustration.CommaText(), "Générale,Transcription");
  // Le fichier est réécrit dans la forme complète, avec la marque.
  auto relu = DecodeDch(Relit());
  EXPECT_FALSE(relu.Ancien);
  EXPECT_EQ(relu.Champs.size(), 18u);
}

TEST_F(CatalogueTest, RecensementAbsentArriveAvecSonLibelleDOrigine) {
  Ecrit("1\r\nNOM\tNom\tNOM\t\t1\t40\r\n");
  auto cat = Ouvre(false);
  const TChpCs* rec = cat->RechercheChampsInternePtr("RECENSEMENT");
  ASSERT_NE(rec, nullptr);
  EXPECT_EQ(rec->LibelleEcran, "Recencement");
  EXPECT_FALSE(rec->AvecResume);
  EXPECT_EQ(rec->NbMorceaux, 4);
  // Les équivalences manquent : valeurs par défaut.
  EXPECT_EQ(cat->EquivNaissance.LibelleChamp2, "BAPTEME");
}

TEST_F(CatalogueTest, SymbolesDejaPresentsNeSontPasRemplaces) {
  Ecrit("1\r\nNAISSANCE\tNaissance\tES\t\t1\t20\t\tBIRT\t\t\tN\tP\t*\tVenu\tVenue\r\n");
  auto cat = Ouvre(false);
  EXPECT_TRUE(cat->Modifie);
  EXPECT_EQ(cat->RechercheChampsInternePtr("NAISSANCE")->Symbole, "*");
}

TEST_F(CatalogueTest, FichierCoupeNImporteOuSOuvreSansCasse) {
  auto modele = Ouvre(true);
  const std::string complet = Relit();
  const fs::path misDeCote = Dossier / "famille (endommag\xC3\xA9).dch";
  int misesDeCote = 0;
  for (size_t coupe = 0; coupe <= complet.size(); coupe += 61) {
    Ecrit(complet.substr(0, coupe));
    auto cat = Ouvre(false);
    EXPECT_FALSE(cat->ErreurES());
    EXPECT_GE(cat->Count(), 14) << coupe;  // au moins les champs de mise à niveau
    EXPECT_LE(cat->Count(), 59 + 15) << coupe;
    // Un fichier coupé n'est jamais perdu : mis de côté tel quel quand la lecture ne l'a
    // pas pris en entier.
    if (fs::exists(misDeCote)) {
      ++misesDeCote;
      std::ifstream f(misDeCote, std::ios::binary);
      EXPECT_EQ(std::string(std::istreambuf_iterator<char>(f), {}), complet.substr(0, coupe)) << coupe;
      EXPECT_FALSE(DecodeDch(complet.substr(0, coupe)).Entier()) << coupe;
      fs::remove(misDeCote);
    } else {
      EXPECT_TRUE(DecodeDch(complet.substr(0, coupe)).Entier()) << coupe;
    }
    EXPECT_TRUE(DecodeDch(Relit()).Entier()) << coupe;
  }
  EXPECT_GT(misesDeCote, 80);
}

TEST_F(CatalogueTest, CompteDeLignesIllisibleOuTropGrand) {
  auto c = DecodeDch("douze\r\nNOM\tNom\tNOM\r\n\r\nX\r\n\r\n");
  EXPECT_TRUE(c.Champs.empty());
  EXPECT_EQ(c.EquivProfession.LibelleChamp1, "PROFESSION");  // rien n'est lu après
  EXPECT_FALSE(c.Ancien);
  auto d = DecodeDch("500\r\nA\r\nB\r\n");
  EXPECT_EQ(d.Champs, (std::vector<std::string>{"A", "B"}));
  EXPECT_TRUE(d.Ancien);
  auto e = DecodeDch("0\r\nU\r\nP\r\nQ\r\n");  // un rôle entier, rien d'autre
  EXPECT_EQ(e.EquivProfession.LibelleUtilisateur, "U");
  EXPECT_EQ(e.EquivNaissance.LibelleChamp1, "NAISSANCE");
  auto f = DecodeDch("0\r\nU\r\nP\r\n");  // deux lignes seulement : le rôle garde sa valeur
  EXPECT_EQ(f.EquivProfession.LibelleUtilisateur, "");
  EXPECT_TRUE(DecodeDch("").Champs.empty());
}

TEST_F(CatalogueTest, DossierNeufPrisSurUnModeleDch) {
  const std::string modele = (Dossier / "modele.DCH").string();
  Ecrit("2\r\nNOM\tNom\tNOM\t\t1\t40\r\nMETIER\tMétier\tEC\t\t1\t50\r\n", modele);
  __asStructFilenameNew = modele;
  auto cat = Ouvre(true);
  EXPECT_EQ(Libelles(*cat), (std::vector<std::string>{"NOM", "METIER"}));
  ASSERT_TRUE(fs::exists(Chemin));
  EXPECT_EQ(DecodeDch(Relit()).Champs.size(), 2u);
  // Une autre extension n'est pas un modèle.
  fs::remove(Chemin);
  const std::string autre = (Dossier / "modele.txt").string();
  Ecrit("1\r\nNOM\tNom\tNOM\r\n", autre);
  __asStructFilenameNew = autre;
  EXPECT_EQ(Ouvre(true)->Count(), 59);
}

TEST_F(CatalogueTest, LectureRateeNEcrasePasLeCatalogue) {
  Ecrit(AncienFichier());
  TFichierBrut::Pannes().EchoueLectureApres(0, "famille.dch");
  auto cat = Ouvre(false);
  EXPECT_TRUE(cat->ErreurES());
  EXPECT_EQ(cat->Count(), 0);
  TFichierBrut::Pannes().Raz();
  EXPECT_EQ(Relit(), AncienFichier());
}

TEST_F(CatalogueTest, EcritureRateeGardeLAncienFichier) {
  auto cat = Ouvre(true);
  const std::string avant = Relit();
  cat->AjoutSignature();
  TFichierBrut::Pannes().EchoueEcritureApres(0, "famille.dch");
  EXPECT_FALSE(cat->Sauvegarde());
  EXPECT_TRUE(cat->ErreurES());
  TFichierBrut::Pannes().Raz();
  EXPECT_EQ(Relit(), avant);
}

TEST_F(CatalogueTest, RecherchesEtRolesDesEvenementsStandard) {
  auto cat = Ouvre(true);
  EXPECT_EQ(cat->RechercheChampsInterneRg("NOM"), 0);
  EXPECT_EQ(cat->RechercheChampsInterneRg("INCONNU"), -1);
  EXPECT_EQ(cat->RechercheChampsLibelleEcranPtr("Baptême")->LibelleInterne, "BAPTEME");
  EXPECT_EQ(cat->RetourneLibelleEcran("DECES"), "Décès");
  EXPECT_EQ(cat->RetChpCsChnLibelEcranLibelInterne("Décès#_EQDECES")->LibelleInterne, "DECES");
  EXPECT_EQ(cat->EquivNaissance.RetourneLibelleEcran(*cat), "Naissance ou Donnée équivalente");
  EXPECT_TRUE(cat->IsEvenStandard("INHUMATION"));
  EXPECT_FALSE(cat->IsEvenStandard("PROFESSION"));
  EXPECT_TRUE(cat->IsEvenNaissance(cat->RechercheChampsInternePtr("BAPTEME")));
  EXPECT_FALSE(cat->IsEvenNaissanceUniquement(cat->RechercheChampsInternePtr("BAPTEME")));
  EXPECT_TRUE(cat->IsDateUnion(cat->RechercheChampsInternePtr("UNION"), 52));
  // Équivalences en cascade, sans répétition ; PACS est donc une union.
  const auto eq = cat->RechercheChampsInternePtr("UNION")->GetEquivalences(cat.get(), true);
  EXPECT_EQ(eq, (std::vector<std::string>{"CTR-MARIAGE", "PACS", "CONCUBINAGE", "BANS", "FIANCAILLES"}));
  EXPECT_EQ(cat->RechercheChampsInternePtr("UNION")->GetEquivalences(cat.get(), false),
            (std::vector<std::string>{"CTR-MARIAGE"}));
  EXPECT_TRUE(cat->RechercheChampsInternePtr("PACS")->IsEvenementUnion(cat.get()));
  EXPECT_FALSE(cat->RechercheChampsInternePtr("DIVORCE")->IsEvenementUnion(cat.get()));
  TStringList evens;
  cat->AjouteEvenement(evens, true);
  EXPECT_EQ(evens.IndexOf("Naissance"), -1);
  EXPECT_GE(evens.IndexOf("Adoption"), 0);
}

TEST_F(CatalogueTest, NouveauLibelleEtSignature) {
  auto cat = Ouvre(true);
  auto autre = std::make_unique<TDefChpsCs>(nullptr, true, (Dossier / "autre.dch").string());
  autre->CreatChpCs("NAISSANCE0\tX\tES");
  EXPECT_EQ(cat->NouveauLibelleInterne("NAISSANCE", autre.get()), "NAISSANCE1");
  EXPECT_EQ(cat->NouveauLibelleInterne("ABCDEFGHIJKLMNOPQRST", nullptr), "ABCDEFGHIJKLMNOPQ0");
  EXPECT_FALSE(cat->IsSignatureExist());  // la SIGNATURE par défaut est un booléen
  cat->AjoutSignature();
  EXPECT_TRUE(cat->IsSignatureExist());
  EXPECT_EQ(cat->Champs.back()->TagGedCom, "_SIG");
}

TEST_F(CatalogueTest, ChangementDeStructureSansReecritureNeTouchePasAuxDonnees) {
  auto ancien = Ouvre(true);
  auto nouveau = std::make_unique<TDefChpsCs>(nullptr, true, (Dossier / "nouveau.dch").string());
  nouveau->RechercheChampsInternePtr("RESIDENCE")->SetNbMorceaux(2);
  nouveau->RechercheChampsInternePtr("TITRE")->Type = tcCpn;
  nouveau->RechercheChampsInternePtr("DECES")->LibelleEcran = "Mort";  // pas un changement de forme
  const auto plan = nouveau->PlanAjusteStructure(*ancien);
  ASSERT_EQ(plan.size(), 2u);
  EXPECT_EQ(plan[0].Libelle, "RESIDENCE");
  EXPECT_EQ(plan[0].Genre, TReecriture::MorceauxEvens);
  EXPECT_EQ(plan[1].Genre, TReecriture::Type);
  EXPECT_THROW(nouveau->AjusteStructureFichier(false, ancien.get(), 0, 0), ERqBase);
  FausseReecriture r;
  nouveau->Reecritures = &r;
  nouveau->AjusteStructureFichier(false, ancien.get(), 0, 0);
  EXPECT_EQ(r.Appels, (std::vector<std::string>{"morceaux RESIDENCE 1->2", "type TITRE"}));
}

TEST_F(CatalogueTest, FusionDUnAutreCatalogue) {
  auto local = Ouvre(true);
  auto source = std::make_unique<TDefChpsCs>(nullptr, true, (Dossier / "source.dch").string());
  source->CreatChpCs("METIER\tMétier\tEC\t\t1\t50\t\tOCCU\t77");
  source->RechercheChampsInternePtr("RESIDENCE")->SetNbMorceaux(3);  // événement, même liaison
  source->RechercheChampsInternePtr("TITRE")->Type = tcCpn;          // type différent
  const int avant = local->Count();
  EXPECT_THROW(local->MajStruct(false, source.get()), ERqBase);
  EXPECT_EQ(local->Count(), avant);  // rien n'a changé
  EXPECT_EQ(local->RechercheChampsInternePtr("RESIDENCE")->NbMorceaux, 1);

  FausseReecriture r;
  local->Reecritures = &r;
  local->MajStruct(true, source.get());
  EXPECT_EQ(r.Appels, (std::vector<std::string>{"morceaux RESIDENCE 1->3", "renomme TITRE TITRE0"}));
  EXPECT_EQ(local->RechercheChampsInternePtr("RESIDENCE")->NbMorceaux, 3);
  EXPECT_EQ(local->RechercheChampsInternePtr("TITRE0")->Type, tcCpa);
  EXPECT_EQ(local->RechercheChampsInternePtr("TITRE")->Type, tcCpn);
  EXPECT_EQ(local->Count(), avant + 2);  // TITRE copié, METIER ajouté
  const TChpCs* metier = local->RechercheChampsInternePtr("METIER");
  ASSERT_NE(metier, nullptr);
  EXPECT_NE(metier->IndexFicDupli[0], 0);
  auto relu = Ouvre(false);
  EXPECT_EQ(relu->Count(), avant + 2);
}

TEST_F(CatalogueTest, PhrasesMisesAJourSeulementQuandEllesManquent) {
  auto cat = Ouvre(true);
  EXPECT_FALSE(cat->UpdateAllExpressionsField());
  cat->RechercheChampsInternePtr("DIVORCE")->Expressions.Clear();
  cat->RechercheChampsInternePtr("UNION")->Expressions.SetDelimitedText("#S (s'épousent) #D");
  EXPECT_TRUE(cat->UpdateAllExpressionsField());
  EXPECT_EQ(cat->RechercheChampsInternePtr("DIVORCE")->Expressions.Count(), 3);
  EXPECT_EQ(cat->RechercheChampsInternePtr("UNION")->Expressions.Count(), 1);
  EXPECT_FALSE(cat->UpdateExpressionsField("PROCES", ""));
}

TEST_F(CatalogueTest, LeDossierCreeEtRouvreSonCatalogue) {
  const std::string prs = (Dossier / "famille.rq2" / "famille.prs").string();
  {
    TGestFichier g(prs, true, false, false, false, 0);
    ASSERT_FALSE(g.EnErreur());
    ASSERT_NE(g.GetDefChpsCs(), nullptr);
    EXPECT_EQ(g.GetDefChpsCs()->Count(), 59);
    EXPECT_EQ(g.GetDefChpsCs()->CheminCatalogue(), g.FabriqueNomFichier(tfDch));
  }
  const std::string dch = (Dossier / "famille.rq2" / "famille.dch").string();
  ASSERT_TRUE(fs::exists(dch));
  // Un catalogue d'ancien dossier : la mise à niveau se fait à l'ouverture et s'enregistre.
  Ecrit(AncienFichier(), dch);
  {
    TGestFichier g(prs);
    ASSERT_FALSE(g.EnErreur());
    ASSERT_NE(g.GetDefChpsCs(), nullptr);
    EXPECT_EQ(g.GetDefChpsCs()->Count(), 18);
  }
  TContenuDch relu;
  ASSERT_TRUE(LitFichierDch(dch, relu));
  EXPECT_EQ(relu.Champs.size(), 18u);
  // En lecture seule, rien n'est écrit.
  Ecrit(AncienFichier(), dch);
  {
    TGestFichier g(prs, false, false, false, false, 0, mcLectureSeule, true);
    ASSERT_NE(g.GetDefChpsCs(), nullptr);
    EXPECT_EQ(g.GetDefChpsCs()->Count(), 18);
  }
  ASSERT_TRUE(LitFichierDch(dch, relu));
  EXPECT_EQ(relu.Champs.size(), 4u);
}
