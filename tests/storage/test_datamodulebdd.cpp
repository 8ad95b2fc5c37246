#include "rqbase/storage/datamodulebdd.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>

#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/progression.h"
#include "rqbase/storage/schema_bdd.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using ::testing::ThrowsMessage;

// Retient ce que montre la barre ; peut demander l'abandon dès le départ ou
// vérifier l'état du disque au moment où une table est restructurée.
class TProgressionEssai : public TProgression {
 public:
  void Titre(const std::string& t) override { Titres.push_back(t); }
  void Texte(const std::string& t) override {
    Textes.push_back(t);
    if (AuTexte) AuTexte(t);
  }
  std::vector<std::string> Titres, Textes;
  std::function<void(const std::string&)> AuTexte;
};

class BaseTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Dossier = fs::temp_directory_path() /
              ("rq_bdd_" + std::to_string(::getpid()) + "_" +
               ::testing::UnitTest::GetInstance()->current_test_info()->name()) /
              "Famille.rq2";
    fs::remove_all(Dossier.parent_path());
    Adb = (Dossier / "Famille.adb").string();
    InstalleDialogue(&Boite);
  }
  void TearDown() override {
    InstalleDialogue(nullptr);
    fs::remove_all(Dossier.parent_path());
  }

  std::unique_ptr<TModuleBDD> CreeEtOuvre(TAccesDossier acces = TAccesDossier::Modifiable) {
    auto bdd = std::make_unique<TModuleBDD>(Adb, "5.90", acces);
    bdd->CreateDataBase();
    EXPECT_TRUE(bdd->OpenDataBase());
    return bdd;
  }
  std::unique_ptr<TModuleBDD> Ouvre(TAccesDossier acces = TAccesDossier::Modifiable) {
    auto bdd = std::make_unique<TModuleBDD>(Adb, "5.90", acces);
    EXPECT_TRUE(bdd->OpenDataBase());
    return bdd;
  }
  std::string Contenu(const std::string& chemin) const {
    std::ifstream f(chemin, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), {});
  }
  void EcritFichier(const std::string& chemin, const std::string& octets) const {
    fs::create_directories(fs::path(chemin).parent_path());
    std::ofstream(chemin, std::ios::binary) << octets;
  }
  // Une base d'avant les dernières évolutions, faite à la main : Evenements sans
  // DateLastModif, Geolocalisation sans CurrentAddress, NotesTranscription sans
  // son index Par_IDEvent, pas de table des noms ; 500 événements dedans.
  void FabriqueAncienneBase(int lignesTranscription = 10) const {
    fs::create_directories(Dossier);
    SQLite::Database b(Adb, SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    b.exec(
        "CREATE TABLE Evenements (ID INTEGER PRIMARY KEY AUTOINCREMENT, Type TINYINT, LibelleChamps VARCHAR(21),"
        " Donnee VARCHAR(101), NoPersA INTEGER, NoPersB INTEGER, Acte CHAR(3), TypeCalend CHAR(1), Date CHAR(10),"
        " Lieu INTEGER, LieuDit VARCHAR(51), Note INTEGER, NoIllustrationParDefaut INTEGER, LienExtEven INTEGER,"
        " _DONNEE VARCHAR(20), _DATE INTEGER, RANG_A INTEGER, RANG_B INTEGER);"
        "CREATE INDEX Evenements_ParNoPersA ON Evenements (NoPersA, RANG_A);"
        "CREATE TABLE Geolocalisation (ID_Lieu INTEGER, Lieu_Dit VARCHAR(51), Latitude DOUBLE, Longitude DOUBLE,"
        " Status INTEGER);"
        "CREATE TABLE NotesTranscription (ID INTEGER PRIMARY KEY AUTOINCREMENT, ID_Event INTEGER, NoPersA INTEGER,"
        " NoPersB INTEGER, ID_Illustration INTEGER, Note MEMO, Mot_Cle1 INTEGER, Mot_Cle2 INTEGER,"
        " Mot_Cle3 VARCHAR(20), FileVect BLOB);"
        "CREATE TABLE TabInformations (Champs VARCHAR(10), Donnees VARCHAR(20));");
    SQLite::Transaction tr(b);
    SQLite::Statement ev(b, "INSERT INTO Evenements (LibelleChamps, NoPersA) VALUES ('NAISSANCE', ?)");
    for (int i = 1; i <= 500; ++i) {
      ev.bind(1, i);
      ev.exec();
      ev.reset();
    }
    SQLite::Statement nt(b, "INSERT INTO NotesTranscription (ID_Event, Note) VALUES (?, 'acte')");
    for (int i = 1; i <= lignesTranscription; ++i) {
      nt.bind(1, i);
      nt.exec();
      nt.reset();
    }
    tr.commit();
  }
  static long Compte(TModuleBDD& bdd, const std::string& sql) {
    SQLite::Statement q(bdd.Base(), sql);
    q.executeStep();
    return q.getColumn(0).getInt();
  }

  fs::path Dossier;
  std::string Adb;
  TDialogueFixe Boite;
};

// Le schéma attendu, recopié du format de la base : colonnes dans l'ordre avec leur
// type déclaré, puis les index tels que le fichier les nomme.
const std::map<std::string, std::pair<std::string, std::set<std::string>>>& SchemaAttendu() {
  static const std::map<std::string, std::pair<std::string, std::set<std::string>>> s = {
      {"Evenements",
       {"ID INTEGER|Type TINYINT|LibelleChamps VARCHAR(21)|Donnee VARCHAR(101)|NoPersA INTEGER|NoPersB INTEGER|"
        "Acte CHAR(3)|TypeCalend CHAR(1)|Date CHAR(10)|Lieu INTEGER|LieuDit VARCHAR(51)|Note INTEGER|"
        "NoIllustrationParDefaut INTEGER|LienExtEven INTEGER|_DONNEE VARCHAR(20)|_DATE INTEGER|RANG_A INTEGER|"
        "RANG_B INTEGER|DateLastModif DATETIME",
        {"Evenements_ParType", "Evenements_ParLibEtDonnee", "Evenements_ParNoPersA", "Evenements_ParNoPersB",
         "Evenements_ParLieu", "Evenements_Par_DATE", "Evenements_Par_DateLastModif"}}},
      {"Illustrations",
       {"ID_ILLUSTRATION INTEGER|ID_EVEN INTEGER|CHEMIN VARCHAR(260)|RANG INTEGER", {"Illustrations_ParID_EVEN"}}},
      {"Sources",
       {"ID_SOURCE INTEGER|ID_EVEN INTEGER|TYPE VARCHAR(30)|DESCRIPTIF VARCHAR(300)|RANG INTEGER",
        {"Sources_ParID_EVEN"}}},
      {"PersAssociees",
       {"ID_PERSASSOC INTEGER|ID_EVEN INTEGER|LienQualite INTEGER|LienParente INTEGER|LienPers_No INTEGER|"
        "LienPers_NivNo CHAR(1)|Rang INTEGER",
        {"PersAssociees_ParID_EVEN", "PersAssociees_ParLienPers_No"}}},
      {"TabInformations", {"Champs VARCHAR(10)|Donnees VARCHAR(20)", {"TabInformations_ParChamps"}}},
      {"Geolocalisation",
       {"ID_Lieu INTEGER|Lieu_Dit VARCHAR(51)|Latitude DOUBLE|Longitude DOUBLE|Status INTEGER|"
        "CurrentAddress NVARCHAR(120)",
        {"Geolocalisation_ParIDetLieu"}}},
      {"IndexNomPrenoms",
       {"ID INTEGER|Nom VARCHAR(21)|Prenom VARCHAR(21)|NomSoundex VARCHAR(5)|PrenomSoundex VARCHAR(5)|"
        "AnneeMin SMALLINT|AnneeMax SMALLINT|NoPers BIGINT|RgNom SMALLINT|RgPrenom SMALLINT|"
        "RgPrenomUsuel SMALLINT|TypePersonne CHAR(3)|FicheSupprimee CHAR(3)|Sexe CHAR(3)",
        {"IndexNomPrenoms_ParNoPers"}}},
      {"NotesTranscription",
       {"ID INTEGER|ID_Event INTEGER|NoPersA INTEGER|NoPersB INTEGER|ID_Illustration INTEGER|Note MEMO|"
        "Mot_Cle1 INTEGER|Mot_Cle2 INTEGER|Mot_Cle3 VARCHAR(20)|FileVect BLOB",
        {"NotesTranscription_Par_IDEvent", "NotesTranscription_Par_IDIllustration",
         "NotesTranscription_Par_MotCle1", "NotesTranscription_Par_MotCle2", "NotesTranscription_Par_MotCle3"}}},
  };
  return s;
}

TEST_F(BaseTest, CreationDonneExactementLeSchemaEtLesReglages) {
  auto bdd = CreeEtOuvre();
  SQLite::Database& b = bdd->Base();
  std::set<std::string> tables;
  SQLite::Statement t(b, "SELECT name FROM sqlite_master WHERE type = 'table' AND name <> 'sqlite_sequence'");
  while (t.executeStep()) tables.insert(t.getColumn(0).getString());
  std::set<std::string> attendues;
  for (const auto& [nom, def] : SchemaAttendu()) attendues.insert(nom);
  EXPECT_EQ(tables, attendues);

  for (const auto& [nom, def] : SchemaAttendu()) {
    std::string colonnes;
    SQLite::Statement c(b, "SELECT name, type FROM pragma_table_info(?)");
    c.bind(1, nom);
    while (c.executeStep())
      colonnes += (colonnes.empty() ? "" : "|") + c.getColumn(0).getString() + " " + c.getColumn(1).getString();
    EXPECT_EQ(colonnes, def.first) << nom;
    std::set<std::string> index;
    SQLite::Statement i(b, "SELECT name FROM sqlite_master WHERE type = 'index' AND tbl_name = ? AND sql IS NOT NULL");
    i.bind(1, nom);
    while (i.executeStep()) index.insert(i.getColumn(0).getString());
    EXPECT_EQ(index, def.second) << nom;
    // Tous les index du schéma, primaires compris, se retrouvent par leur nom.
    for (const auto& ix : TableSchema(nom)->Index) EXPECT_TRUE(bdd->IndexExiste(nom, ix.Nom)) << ix.Nom;
  }
  EXPECT_EQ(bdd->TypeMoteurColonne("Evenements", "ID"), 12);
  EXPECT_EQ(bdd->TypeMoteurColonne("Evenements", "_DATE"), 7);
  EXPECT_EQ(bdd->TypeMoteurColonne("Evenements", "DateLastModif"), 27);
  EXPECT_EQ(bdd->TypeMoteurColonne("Evenements", "Absente"), 0);
  EXPECT_FALSE(bdd->IndexExiste("Evenements", "ParLieuDit"));

  SQLite::Statement journal(b, "PRAGMA journal_mode");
  journal.executeStep();
  EXPECT_EQ(journal.getColumn(0).getString(), "wal");
  EXPECT_EQ(Compte(*bdd, "PRAGMA page_size"), 4096);
  EXPECT_EQ(Compte(*bdd, "PRAGMA synchronous"), 2);
  EXPECT_EQ(Compte(*bdd, "SELECT 'abc' LIKE 'ABC'"), 0);  // comparaisons sensibles à la casse
  // Rien de plus que la création : la ligne "Vers" n'est écrite que sur demande.
  EXPECT_EQ(bdd->GetVersionBDD(), "0");
  EXPECT_FALSE(fs::exists(bdd->CheminCopieADB()));
}

TEST(SchemaBDD, TypeMoteurReluDuTypeDeclare) {
  struct {
    const char* Declare;
    bool Cle;
    int Type, Taille;
  } lignes[] = {
      {"CHAR(3)", false, 1, 3},     {"VARCHAR(101)", false, 2, 101}, {"nvarchar(120)", false, 4, 120},
      {"TINYINT", false, 5, 0},     {"SMALLINT", false, 6, 0},       {"INTEGER", false, 7, 0},
      {"BIGINT", false, 8, 0},      {"INTEGER", true, 12, 0},        {"DOUBLE", false, 21, 0},
      {"DATETIME", false, 27, 0},   {"BLOB", false, 31, 0},          {"MEMO", false, 33, 0},
      {"VARCHAR (20)", false, 2, 20}, {"TEXT", false, 0, 0},         {"VARCHAR(", false, 2, 0},
      {"VARCHAR(x)", false, 2, 0},  {"", false, 0, 0},               {"CHAR(-4)", false, 1, 0},
  };
  for (const auto& l : lignes) {
    EXPECT_EQ(TypeMoteurDepuisDeclare(l.Declare, l.Cle), l.Type) << l.Declare;
    EXPECT_EQ(TailleDepuisDeclare(l.Declare), l.Taille) << l.Declare;
  }
  // L'aller-retour par le type déclaré garde chaque colonne du schéma.
  for (const auto& t : SchemaBDD())
    for (const auto& c : t.Colonnes) {
      const std::string d = TypeDeclare(c.Type, c.Taille);
      EXPECT_EQ(TypeMoteurDepuisDeclare(d.substr(0, d.find(" PRIMARY")), c.Type == TypeAutoIncrement), c.Type);
      EXPECT_EQ(TailleDepuisDeclare(d), c.Taille) << t.Nom << "." << c.Nom;
    }
}

TEST_F(BaseTest, InformationsAllerRetourEnWindows1252EtUtf8SurDisque) {
  {
    auto bdd = CreeEtOuvre();
    EXPECT_EQ(bdd->GetInfoChps("INDEXNAME"), "0");
    bdd->MAJInfoChps("INDEXNAME", "UPDATED");
    bdd->MAJInfoChps("Lieu", "Évreux, été");
    bdd->MAJInfoChps("Lieu", "Sées");  // modifie la ligne, n'en ajoute pas
    bdd->MAJInfoChps("Vide", "");
    // Clé plus longue que la colonne : coupée pareil à l'écriture et à la lecture.
    bdd->MAJInfoChps("UPDATE_PROF", "UPDATED");
    bdd->MAJInfoChps("DCUM_VALUE", "123456789012345678901234");
    bdd->MAJTabInformation();
  }
  auto bdd = Ouvre();
  EXPECT_EQ(bdd->GetInfoChps("INDEXNAME"), "UPDATED");
  EXPECT_EQ(bdd->GetInfoChps("Lieu"), "Sées");
  EXPECT_EQ(bdd->GetInfoChps("Vide"), "");
  EXPECT_EQ(bdd->GetInfoChps("UPDATE_PROF"), "UPDATED");
  EXPECT_EQ(bdd->GetInfoChps("UPDATE_PRO"), "UPDATED");
  EXPECT_EQ(bdd->GetInfoChps("DCUM_VALUE"), "12345678901234567890");
  EXPECT_EQ(bdd->GetInfoChps("lieu"), "0");  // la casse compte
  EXPECT_EQ(bdd->GetVersionBDD(), "5.90");
  EXPECT_EQ(Compte(*bdd, "SELECT count(*) FROM TabInformations WHERE Champs = 'Lieu'"), 1);
  // Sur le disque, le texte est en UTF-8 : « é » fait deux octets.
  SQLite::Statement q(bdd->Base(), "SELECT hex(Donnees) FROM TabInformations WHERE Champs = 'Lieu'");
  ASSERT_TRUE(q.executeStep());
  EXPECT_EQ(q.getColumn(0).getString(), "53C3A96573");
}

TEST_F(BaseTest, MiseANiveauAjouteTablesColonnesEtIndexAvecCopieDeSecurite) {
  FabriqueAncienneBase();
  TProgressionEssai progression;
  bool copiePresentePendantEvenements = false;
  const std::string copie = (Dossier / "Famille-backup.adb").string();
  progression.AuTexte = [&](const std::string& t) {
    if (t == "Mise à jour de la table \"Evenements\"...") copiePresentePendantEvenements = fs::exists(copie);
  };
  auto bdd = std::make_unique<TModuleBDD>(Adb, "5.90");
  bdd->Progression = &progression;
  ASSERT_TRUE(bdd->OpenDataBase());

  EXPECT_TRUE(copiePresentePendantEvenements);
  EXPECT_FALSE(fs::exists(copie));
  EXPECT_EQ(bdd->CheminCopieADB(), copie);
  EXPECT_EQ(bdd->TypeMoteurColonne("Evenements", "DateLastModif"), 27);
  EXPECT_TRUE(bdd->IndexExiste("Evenements", "Par_DateLastModif"));
  EXPECT_EQ(bdd->TypeMoteurColonne("Geolocalisation", "CurrentAddress"), 4);
  EXPECT_TRUE(bdd->IndexExiste("NotesTranscription", "Par_IDEvent"));
  EXPECT_TRUE(bdd->TableExiste("IndexNomPrenoms"));
  EXPECT_EQ(Compte(*bdd, "SELECT count(*) FROM Evenements WHERE NoPersA BETWEEN 1 AND 500"), 500);
  EXPECT_THAT(progression.Titres, ::testing::Each(std::string("Mise à jour de la base de données...")));
  EXPECT_EQ(progression.Textes,
            (std::vector<std::string>{"Mise à jour de la table \"NotesTranscription\"...",
                                      "Mise à jour de la table \"Geolocalisation\"...",
                                      "Mise à jour de la table \"Evenements\"..."}));
  // La mise à niveau ne crée que ce qu'elle doit : les tables manquantes restent à
  // CreateDataBase.
  EXPECT_FALSE(bdd->TableExiste("Sources"));
  bdd.reset();

  // Une seconde ouverture n'a plus rien à faire.
  progression.Textes.clear();
  bdd = std::make_unique<TModuleBDD>(Adb, "5.90");
  bdd->Progression = &progression;
  ASSERT_TRUE(bdd->OpenDataBase());
  EXPECT_TRUE(progression.Textes.empty());
}

TEST_F(BaseTest, RestructurationAbandonneeLaisseLaTableCommeAvant) {
  FabriqueAncienneBase(20000);
  TProgressionEssai progression;
  progression.DemandeAbandon();
  auto bdd = std::make_unique<TModuleBDD>(Adb, "5.90");
  bdd->Progression = &progression;
  ASSERT_TRUE(bdd->OpenDataBase());
  EXPECT_FALSE(bdd->IndexExiste("NotesTranscription", "Par_IDEvent"));
  EXPECT_EQ(Compte(*bdd, "SELECT count(*) FROM NotesTranscription"), 20000);
}

TEST_F(BaseTest, DossierEnLectureSeuleNeChangeRienSurLeDisque) {
  FabriqueAncienneBase();
  const std::string avant = Contenu(Adb);
  {
    auto bdd = std::make_unique<TModuleBDD>(Adb, "5.90", TAccesDossier::LectureSeule);
    EXPECT_FALSE(bdd->CreateDataBase());
    ASSERT_TRUE(bdd->OpenDataBase());
    EXPECT_TRUE(bdd->EstEnLectureSeule());
    EXPECT_FALSE(bdd->ColonneExiste("Evenements", "DateLastModif"));
    EXPECT_EQ(bdd->GetInfoChps("INDEXNAME"), "0");
    bdd->MAJInfoChps("INDEXNAME", "UPDATED");
    EXPECT_EQ(bdd->GetInfoChps("INDEXNAME"), "0");
    bdd->BeginImport();
    EXPECT_FALSE(bdd->EnImport());
    EXPECT_EQ(Compte(*bdd, "SELECT count(*) FROM Evenements"), 500);
  }
  EXPECT_EQ(Contenu(Adb), avant);
  EXPECT_EQ(std::distance(fs::directory_iterator(Dossier), fs::directory_iterator()), 1);

  // Une base d'aujourd'hui (journal WAL) se lit aussi en lecture seule.
  fs::remove(Adb);
  CreeEtOuvre()->MAJInfoChps("Vers", "5.90");
  auto bdd = Ouvre(TAccesDossier::LectureSeule);
  EXPECT_EQ(bdd->GetVersionBDD(), "5.90");
}

TEST_F(BaseTest, FichierQuiNEstPasUneBaseEstMisDeCoteEtRemplace) {
  static const char octets[] = "ACRDB4\0\x01\x02 ancienne base";
  const std::string ancien(octets, sizeof octets - 1);
  EcritFichier(Adb, ancien);
  {
    // L'ouverture seule n'y touche pas.
    TModuleBDD bdd(Adb, "5.90");
    EXPECT_FALSE(bdd.OpenDataBase());
    EXPECT_FALSE(bdd.EstOuverte());
    EXPECT_EQ(Contenu(Adb), ancien);
    EXPECT_TRUE(Boite.Informations.empty());
  }
  auto bdd = CreeEtOuvre();
  EXPECT_EQ(Contenu((Dossier / "Famille_v4.adb").string()), ancien);
  EXPECT_TRUE(bdd->TableExiste("Evenements"));
  ASSERT_EQ(Boite.Informations.size(), 1u);
  EXPECT_THAT(Boite.Informations[0].Texte, HasSubstr("import GEDCOM"));
  EXPECT_THAT(Boite.Informations[0].Texte, HasSubstr("Famille_v4.adb"));

  // Un fichier trop court pour porter l'en-tête n'est pas une base non plus ;
  // un fichier vide en est une, qui n'a encore rien reçu.
  EXPECT_FALSE(TModuleBDD::EstFichierBase((Dossier / "Famille_v4.adb").string()));
  EcritFichier((Dossier / "court.adb").string(), "SQLite");
  EXPECT_FALSE(TModuleBDD::EstFichierBase((Dossier / "court.adb").string()));
  EcritFichier((Dossier / "vide.adb").string(), "");
  EXPECT_TRUE(TModuleBDD::EstFichierBase((Dossier / "vide.adb").string()));
  EXPECT_FALSE(TModuleBDD::EstFichierBase((Dossier / "absent.adb").string()));
}

TEST_F(BaseTest, DeuxDossiersOuvertsEnsemble) {
  const std::string adb1 = Adb;
  Adb = (Dossier.parent_path() / "Autre.rq2" / "Autre.adb").string();
  auto b2 = CreeEtOuvre();
  Adb = adb1;
  auto b1 = CreeEtOuvre();
  EXPECT_NE(b1->GetIdBDD(), b2->GetIdBDD());
  EXPECT_NE(b1->GetNomBase(), b2->GetNomBase());
  EXPECT_NE(b1->GetNomSession(), b2->GetNomSession());
  EXPECT_EQ(b1->GetNomBase(), "AccuracerBDD_" + std::to_string(b1->GetIdBDD()));
  EXPECT_THAT(b1->GetNomSession(), StartsWith("ses"));
  EXPECT_LT(std::stol(b1->GetNomSession().substr(3)), 100000);
  b1->MAJInfoChps("DCUM_STATE", "1");
  b2->MAJInfoChps("DCUM_STATE", "2");
  b1->BeginImport();
  b2->BeginImport();
  b1->EndImport();
  b2->EndImport();
  EXPECT_EQ(b1->GetInfoChps("DCUM_STATE"), "1");
  EXPECT_EQ(b2->GetInfoChps("DCUM_STATE"), "2");

  // Le même fichier deux fois : la connexion exclusive garde le second dehors.
  TModuleBDD intrus(Adb, "5.90");
  EXPECT_THAT([&] { intrus.OpenDataBase(); intrus.GetInfoChps("DCUM_STATE"); },
              ThrowsMessage<ERqBase>(StartsWith("Une erreur s'est produite sur la base Famille.adb\n")));
}

TEST_F(BaseTest, ImportValideParPaquetsDeMille) {
  auto bdd = CreeEtOuvre();
  bdd->BeginImport();
  EXPECT_EQ(bdd->GetCompteurImport(), 1);
  EXPECT_EQ(bdd->PremierNumEven, 1);
  EXPECT_EQ(bdd->PremierNumSource, 1);
  EXPECT_EQ(bdd->PremierNumIllustration, 1);
  EXPECT_EQ(Compte(*bdd, "SELECT count(*) FROM Evenements"), 0);  // la ligne du numéro est partie
  auto poste = [&](int n) {
    for (int i = 0; i < n; ++i) {
      SQLite::Statement& q = bdd->Requete("INSERT INTO Evenements (ID, LibelleChamps, NoPersA) VALUES (?, ?, ?)");
      q.bind(1, static_cast<int64_t>(bdd->PremierNumEven++));
      TModuleBDD::LieTexte(q, 2, "NAISSANCE");
      q.bind(3, i);
      EXPECT_EQ(bdd->PostInTable(q), 1);
    }
  };
  poste(999);
  EXPECT_EQ(bdd->GetCompteurImport(), 1000);
  poste(1);
  EXPECT_EQ(bdd->GetCompteurImport(), 1);  // paquet validé
  EXPECT_EQ(Compte(*bdd, "PRAGMA synchronous"), 1);
  poste(1500);
  EXPECT_EQ(bdd->GetCompteurImport(), 501);
  // Fermé sans EndImport : les deux paquets validés restent, le reste est défait.
  bdd.reset();
  bdd = Ouvre();
  EXPECT_EQ(Compte(*bdd, "SELECT count(*) FROM Evenements"), 2000);
  EXPECT_FALSE(bdd->EnImport());

  // Les numéros du paquet défait n'ont jamais eu de ligne : le moteur les redonne.
  // Un import mené à son terme garde tout et rend la synchronisation complète.
  bdd->BeginImport();
  EXPECT_EQ(bdd->PremierNumEven, 2001);
  poste(4);
  bdd->EndImport();
  bdd->BeginImport();
  EXPECT_EQ(bdd->PremierNumEven, 2005);  // déjà réservé : gardé tel quel
  poste(6);
  bdd->EndImport();
  EXPECT_EQ(bdd->GetCompteurImport(), 0);
  EXPECT_EQ(Compte(*bdd, "PRAGMA synchronous"), 2);
  bdd.reset();
  bdd = Ouvre();
  EXPECT_EQ(Compte(*bdd, "SELECT count(*) FROM Evenements"), 2010);
  // Un numéro donné par le moteur après l'import ne reprend jamais un numéro réservé.
  bdd->Base().exec("INSERT INTO Evenements (LibelleChamps) VALUES ('DECES')");
  EXPECT_GT(bdd->Base().getLastInsertRowid(), 2010);
}

TEST_F(BaseTest, ImportSansNumerosDejaPrisReserveLeSuivant) {
  auto bdd = CreeEtOuvre();
  bdd->Base().exec("INSERT INTO Sources (TYPE) VALUES ('acte'); INSERT INTO Sources (TYPE) VALUES ('acte')");
  bdd->DebutImport();
  EXPECT_EQ(bdd->PremierNumSource, 3);
  EXPECT_EQ(Compte(*bdd, "SELECT count(*) FROM Sources"), 2);
  bdd->FinImport();
  EXPECT_FALSE(bdd->EnImport());
}

TEST_F(BaseTest, AncienneBaseRemiseEnPlaceEtCopieSeulementSiUtile) {
  {
    auto bdd = CreeEtOuvre();
    bdd->MAJInfoChps("Etat", "ancien");
  }
  fs::copy_file(Adb, (Dossier / "Famille_old.adb").string());
  auto bdd = Ouvre();
  bdd->MAJInfoChps("Etat", "nouveau");
  // La colonne DateLastModif est là : pas de copie avant restructuration.
  bdd->CopieADB();
  EXPECT_FALSE(fs::exists(bdd->CheminCopieADB()));
  EXPECT_TRUE(bdd->RestoreOldADB());
  EXPECT_EQ(bdd->GetInfoChps("Etat"), "ancien");
  EXPECT_FALSE(fs::exists(bdd->CheminOldADB()));
  EXPECT_FALSE(bdd->RestoreOldADB());  // plus rien à remettre
  EXPECT_TRUE(bdd->EstOuverte());
  EXPECT_EQ(bdd->CheminV4ADB(), (Dossier / "Famille_v4.adb").string());
  EXPECT_EQ(bdd->CheminV5ADB(), (Dossier / "Famille_v5.adb").string());
  EXPECT_EQ(bdd->CheminMisDeCote(), (Dossier / "Famille.~adb").string());
}

TEST_F(BaseTest, RequeteEnEchecDonneLeMessageDeRestructuration) {
  auto bdd = CreeEtOuvre();
  const std::string attendu =
      "Une erreur s'est produite sur la base Famille.adb\nVeuillez restructurer votre dossier par le menu "
      "\"Utilitaire\" > \"Restructurer un dossier généalogique\"\npuis cochez l'option \"Réparation, "
      "réenregistrement...\"";
  EXPECT_EQ(bdd->TexteErreurBase(), attendu);
  EXPECT_THAT([&] { bdd->Requete("SELECT * FROM Absente"); }, ThrowsMessage<ERqBase>(attendu));
  // Un envoi refusé par le moteur laisse la requête réutilisable.
  SQLite::Statement& ajout = bdd->Requete("INSERT INTO TabInformations (Champs, Donnees) VALUES (?, ?)");
  TModuleBDD::LieTexte(ajout, 1, "Cle");
  TModuleBDD::LieTexte(ajout, 2, "1");
  bdd->PostInTable(ajout);
  EXPECT_THAT([&] { bdd->PostInTable(ajout); }, ThrowsMessage<ERqBase>(attendu));  // clé unique
  TModuleBDD::LieTexte(ajout, 1, "Autre");
  EXPECT_EQ(bdd->PostInTable(ajout), 1);
  // Une base fermée refuse aussi proprement.
  TModuleBDD fermee(Adb + ".absente", "5.90");
  EXPECT_FALSE(fermee.OpenDataBase());
  EXPECT_EQ(fermee.GetInfoChps("Vers"), "0");
  EXPECT_THAT([&] { fermee.Base(); }, ThrowsMessage<ERqBase>(StartsWith("Une erreur s'est produite sur la base ")));
}

// Une base chargée en mémoire se lit, se met à niveau et s'écrit comme son fichier,
// sans que rien n'arrive sur le disque.
TEST_F(BaseTest, ImageEnMemoireLueCommeLeFichier) {
  {
    auto bdd = CreeEtOuvre();
    bdd->MAJTabInformation();
    bdd->MAJInfoChps("Lieu", "Évreux");
  }
  const std::string octets = Contenu(Adb);
  ASSERT_EQ(octets.substr(18, 2), std::string("\2\2"));  // une base en WAL
  const std::string ailleurs = (Dossier.parent_path() / "Absent" / "Image.adb").string();
  {
    TModuleBDD image(ailleurs, "5.90", TAccesDossier::LectureSeule);
    ASSERT_TRUE(image.ChargeImage(octets.data(), octets.size()));
    ASSERT_TRUE(image.OpenDataBase());
    EXPECT_TRUE(image.EstEnLectureSeule());
    EXPECT_EQ(image.GetVersionBDD(), "5.90");
    EXPECT_EQ(image.GetInfoChps("Lieu"), "Évreux");
    image.MAJInfoChps("Lieu", "Sées");
    EXPECT_EQ(image.GetInfoChps("Lieu"), "Évreux");
  }
  // Une base d'avant : la mise à niveau a lieu en mémoire, sans copie de sécurité.
  fs::remove(Adb);
  FabriqueAncienneBase();
  const std::string ancienne = Contenu(Adb);
  {
    TModuleBDD image(ailleurs, "5.90");
    ASSERT_TRUE(image.ChargeImage(ancienne.data(), ancienne.size()));
    EXPECT_TRUE(image.CreateDataBase());
    ASSERT_TRUE(image.OpenDataBase());
    EXPECT_TRUE(image.ColonneExiste("Evenements", "DateLastModif"));
    EXPECT_TRUE(image.TableExiste("Sources"));
    EXPECT_EQ(Compte(image, "SELECT count(*) FROM Evenements"), 500);
    image.MAJInfoChps("Lieu", "Sées");
    EXPECT_EQ(image.GetInfoChps("Lieu"), "Sées");
    EXPECT_FALSE(image.RestoreOldADB());
  }
  EXPECT_FALSE(fs::exists(fs::path(ailleurs).parent_path()));
  EXPECT_EQ(Contenu(Adb), ancienne);
  EXPECT_EQ(std::distance(fs::directory_iterator(Dossier), fs::directory_iterator()), 1);

  // Des octets d'un autre moteur ne sont pas une base ; une base abîmée donne le
  // message de restructuration et laisse l'objet fermé.
  TModuleBDD image(ailleurs, "5.90");
  EXPECT_FALSE(image.ChargeImage("ACRDB4 ancienne base", 20));
  EXPECT_FALSE(image.EstOuverte());
  std::string abimee = octets;
  for (size_t i = 100; i < abimee.size(); i += 7) abimee[i] = char(0xA5);
  EXPECT_THAT([&] { image.ChargeImage(abimee.data(), abimee.size()) && image.OpenDataBase(); },
              ThrowsMessage<ERqBase>(StartsWith("Une erreur s'est produite sur la base Image.adb\n")));
  EXPECT_FALSE(image.EstOuverte());
}

TEST_F(BaseTest, DrapeauDeReentreeDesTables) {
  TModuleBDD bdd(Adb, "5.90");
  EXPECT_FALSE(bdd.ReentreeBloquee("Evenements"));
  bdd.Cancel("Evenements");
  EXPECT_TRUE(bdd.ReentreeBloquee("Evenements"));
  bdd.EditInTable("Evenements");
  EXPECT_FALSE(bdd.ReentreeBloquee("Evenements"));
  bdd.DeleteInTable("Sources");
  EXPECT_TRUE(bdd.ReentreeBloquee("Sources"));
  bdd.InsertInTable("Sources");
  EXPECT_FALSE(bdd.ReentreeBloquee("Sources"));
}

}  // namespace
}  // namespace rqbase
