// La base <nom>.adb entre les mains d'autres programmes SQLite : le vrai programme
// sqlite3 la lit ou l'écrit entre deux de nos ouvertures, un écrivain est tué après
// avoir validé des lignes, le dossier passe en lecture seule. Chaque fois, nos
// ouvertures (lecture seule et écriture) s'ouvrent, lisent toutes les lignes
// validées et ne changent rien à ce qu'elles n'ont pas à changer. Puis les mises de
// côté : jamais rien d'écrasé, l'utilisateur prévenu.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/journal.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/util/erreur.h"

namespace rqbase {
namespace {

namespace fs = std::filesystem;
using ::testing::HasSubstr;

// Le programme sqlite3 du système (paquet Debian sqlite3). Son absence est une
// erreur du poste de test, pas une raison de sauter ces tests.
std::string ProgrammeSqlite3() {
  const char* path = std::getenv("PATH");
  std::stringstream dossiers(path ? path : "");
  for (std::string d; std::getline(dossiers, d, ':');) {
    const fs::path p = fs::path(d.empty() ? "." : d) / "sqlite3";
    if (::access(p.c_str(), X_OK) == 0) return p.string();
  }
  return "";
}

std::string Apostrophes(const std::string& texte) {
  std::string r = "'";
  for (char c : texte) r += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return r + "'";
}

class BaseEtOutilsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Sqlite3 = ProgrammeSqlite3();
    ASSERT_FALSE(Sqlite3.empty()) << "programme sqlite3 introuvable dans PATH : installez le paquet Debian sqlite3 "
                                     "(scripts/dependances.sh)";
    Racine = fs::temp_directory_path() / ("rq_bdd_outils_" + std::to_string(::getpid()) + "_" +
                                          ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(Racine);
    Dossier = Racine / "Famille.rq2";
    fs::create_directories(Dossier);
    Adb = (Dossier / "Famille.adb").string();
    InstalleDialogue(&Boite);
  }
  void TearDown() override {
    InstalleDialogue(nullptr);
    fs::permissions(Dossier, fs::perms::owner_all, fs::perm_options::add);
    fs::remove_all(Racine);
  }

  // Lance sqlite3 sur la base ; rend son code de sortie, sa sortie dans `sortie`.
  int Outil(const std::string& options, const std::string& sql, std::string* sortie = nullptr) const {
    const std::string commande =
        Apostrophes(Sqlite3) + " " + options + " " + Apostrophes(Adb) + " " + Apostrophes(VersUtf8(sql)) + " 2>&1";
    FILE* tube = ::popen(commande.c_str(), "r");
    if (tube == nullptr) return -1;
    std::string lu;
    char tampon[512];
    for (size_t n; (n = std::fread(tampon, 1, sizeof tampon, tube)) > 0;) lu.append(tampon, n);
    const int etat = ::pclose(tube);
    if (sortie) *sortie = lu;
    return WIFEXITED(etat) ? WEXITSTATUS(etat) : -1;
  }
  // Ce que sqlite3 répond à une requête qui rend une valeur (fin de ligne ôtée).
  std::string Valeur(const std::string& options, const std::string& sql) const {
    std::string sortie;
    EXPECT_EQ(Outil(options, sql, &sortie), 0) << sortie;
    while (!sortie.empty() && (sortie.back() == '\n' || sortie.back() == '\r')) sortie.pop_back();
    return sortie;
  }

  // Les fichiers du dossier avec leur contenu.
  std::map<std::string, std::string> Etat() const {
    std::map<std::string, std::string> r;
    for (const auto& e : fs::directory_iterator(Dossier)) {
      std::ifstream f(e.path(), std::ios::binary);
      r[e.path().filename().string()] = std::string(std::istreambuf_iterator<char>(f), {});
    }
    return r;
  }
  bool Existe(const std::string& suffixe) const { return fs::exists(Adb + suffixe); }

  static void Poste(TModuleBDD& bdd, int noPers) {
    SQLite::Statement& q = bdd.Requete("INSERT INTO Evenements (LibelleChamps, Donnee, NoPersA) VALUES (?, ?, ?)");
    TModuleBDD::LieTexte(q, 1, "NAISSANCE");
    TModuleBDD::LieTexte(q, 2, "Né à Sées");
    q.bind(3, noPers);
    bdd.PostInTable(q);
  }
  // Une base créée par nous, avec `n` événements, refermée.
  void Garnit(int n) {
    TModuleBDD bdd(Adb, "5.90");
    bdd.CreateDataBase();
    ASSERT_TRUE(bdd.OpenDataBase());
    bdd.MAJTabInformation();
    bdd.BeginImport();
    for (int i = 1; i <= n; ++i) Poste(bdd, i);
    bdd.EndImport();
  }
  static long Evenements(TModuleBDD& bdd) {
    SQLite::Statement q(bdd.Base(), "SELECT count(*) FROM Evenements");
    q.executeStep();
    return q.getColumn(0).getInt();
  }
  // Nos deux ouvertures : chacune doit s'ouvrir et compter `attendu` événements.
  long CompteEnLectureSeule() {
    TModuleBDD bdd(Adb, "5.90", TAccesDossier::LectureSeule);
    EXPECT_TRUE(bdd.OpenDataBase());
    EXPECT_TRUE(bdd.EstEnLectureSeule());
    return Evenements(bdd);
  }

  std::string Sqlite3;
  fs::path Racine, Dossier;
  std::string Adb;
  TDialogueFixe Boite;
};

TEST_F(BaseEtOutilsTest, LectureParSqlite3PuisNosOuvertures) {
  Garnit(50);
  EXPECT_FALSE(Existe("-wal"));
  // Notre lecture seule laisse le dossier tel qu'elle l'a trouvé.
  const auto propre = Etat();
  EXPECT_EQ(CompteEnLectureSeule(), 50);
  EXPECT_EQ(Etat(), propre);

  EXPECT_EQ(Valeur("-readonly", "SELECT count(*) FROM Evenements"), "50");
  // Un lecteur en lecture seule ne peut vider ni effacer ses fichiers de travail :
  // ils restent à côté de la base.
  EXPECT_TRUE(Existe("-wal"));
  EXPECT_TRUE(Existe("-shm"));

  // Notre lecture seule s'ouvre malgré eux, ne change pas la base, et, dernière à
  // fermer, efface ces fichiers vides.
  EXPECT_EQ(CompteEnLectureSeule(), 50);
  EXPECT_EQ(Etat(), propre);
  EXPECT_EQ(Valeur("-readonly", "SELECT count(*) FROM Evenements"), "50");
  EXPECT_TRUE(Existe("-wal"));
  {
    TModuleBDD bdd(Adb, "5.90", TAccesDossier::Modifiable);
    ASSERT_TRUE(bdd.OpenDataBase());
    EXPECT_FALSE(bdd.EstEnLectureSeule());
    EXPECT_EQ(Evenements(bdd), 50);
    EXPECT_EQ(bdd.GetVersionBDD(), "5.90");
    // Base ouverte en écriture : l'index partagé orphelin est effacé, et l'outil ne
    // peut pas entrer.
    EXPECT_FALSE(Existe("-shm"));
    std::string refus;
    EXPECT_NE(Outil("-readonly", "SELECT count(*) FROM Evenements", &refus), 0);
    EXPECT_THAT(refus, HasSubstr("locked"));
    for (int i = 51; i <= 60; ++i) Poste(bdd, i);
  }
  // Fermée : tout est dans le fichier, le dossier est propre.
  EXPECT_FALSE(Existe("-wal"));
  EXPECT_FALSE(Existe("-shm"));
  EXPECT_EQ(Valeur("-readonly", "SELECT count(*) FROM Evenements WHERE Donnee = 'Né à Sées'"), "60");
  EXPECT_EQ(CompteEnLectureSeule(), 60);
}

TEST_F(BaseEtOutilsTest, EcritureParSqlite3PuisNosOuvertures) {
  Garnit(3);
  EXPECT_EQ(Outil("", "INSERT INTO Evenements (LibelleChamps, Donnee, NoPersA) VALUES ('DECES', 'Évreux', 9);"
                      "INSERT INTO TabInformations (Champs, Donnees) VALUES ('Lieu', 'Évreux');"
                      "PRAGMA journal_mode=DELETE;"),
            0);
  EXPECT_EQ(Valeur("", "PRAGMA journal_mode"), "delete");
  EXPECT_EQ(CompteEnLectureSeule(), 4);
  TModuleBDD bdd(Adb, "5.90");
  ASSERT_TRUE(bdd.OpenDataBase());
  EXPECT_EQ(Evenements(bdd), 4);
  // Le texte écrit en UTF-8 par l'outil revient en Windows-1252.
  EXPECT_EQ(bdd.GetInfoChps("Lieu"), "Évreux");
  SQLite::Statement q(bdd.Base(), "SELECT Donnee FROM Evenements WHERE NoPersA = 9");
  ASSERT_TRUE(q.executeStep());
  EXPECT_EQ(TModuleBDD::TexteColonne(q, 0), "Évreux");
  // Le journal repasse en WAL à notre ouverture en écriture.
  SQLite::Statement journal(bdd.Base(), "PRAGMA journal_mode");
  journal.executeStep();
  EXPECT_EQ(journal.getColumn(0).getString(), "wal");
}

// Un écrivain valide des lignes en WAL puis est tué (SIGKILL) avant tout
// point de reprise : ses lignes ne sont que dans le -wal.
enum class TEcrivain { Nous, AutreProgramme };

class EcrivainTueTest : public BaseEtOutilsTest, public ::testing::WithParamInterface<TEcrivain> {
 protected:
  void EcritPuisMeurt(int lignes) {
    int tube[2];
    ASSERT_EQ(::pipe(tube), 0);
    const pid_t enfant = ::fork();
    ASSERT_GE(enfant, 0);
    if (enfant == 0) {
      ::close(tube[0]);
      try {
        if (GetParam() == TEcrivain::Nous) {
          TModuleBDD bdd(Adb, "5.90");
          if (!bdd.OpenDataBase()) ::_exit(2);
          bdd.BeginImport();  // un paquet validé, puis des lignes validées une à une
          for (int i = 0; i < lignes / 2; ++i) Poste(bdd, 1000 + i);
          bdd.EndImport();
          for (int i = lignes / 2; i < lignes; ++i) Poste(bdd, 1000 + i);
          (void)!::write(tube[1], "v", 1);
          for (;;) ::pause();
        }
        // Un navigateur de bases ordinaire : verrous partagés et index -shm.
        SQLite::Database b(Adb, SQLite::OPEN_READWRITE);
        b.exec("PRAGMA journal_mode=WAL; PRAGMA wal_autocheckpoint=0");
        for (int i = 0; i < lignes; ++i)
          b.exec("INSERT INTO Evenements (LibelleChamps, NoPersA) VALUES ('DECES', " + std::to_string(1000 + i) + ")");
        (void)!::write(tube[1], "v", 1);
        for (;;) ::pause();
      } catch (...) {
        ::_exit(3);
      }
    }
    ::close(tube[1]);
    char c = 0;
    ASSERT_EQ(::read(tube[0], &c, 1), 1) << "l'écrivain n'a pas validé ses lignes";
    ::close(tube[0]);
    ::kill(enfant, SIGKILL);
    int etat = 0;
    ::waitpid(enfant, &etat, 0);
    ASSERT_TRUE(WIFSIGNALED(etat));
  }
};

TEST_P(EcrivainTueTest, LesLignesValideesSontToutesLues) {
  Garnit(5);
  EcritPuisMeurt(40);
  ASSERT_TRUE(Existe("-wal"));
  ASSERT_GT(fs::file_size(Adb + "-wal"), 0u);
  const auto avant = Etat();

  // Lecture seule dans un dossier modifiable : la base et son journal ne changent pas
  // (le journal n'est pas reversé) ; seul l'index -shm peut apparaître.
  EXPECT_EQ(CompteEnLectureSeule(), 45);
  auto apres = Etat();
  apres.erase("Famille.adb-shm");
  auto attendu = avant;
  attendu.erase("Famille.adb-shm");
  EXPECT_EQ(apres, attendu);

  // Dossier qu'on ne peut écrire : rien n'y est créé ni changé, le journal est lu.
  const auto dossierOuvert = Etat();
  fs::permissions(Dossier, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  EXPECT_EQ(CompteEnLectureSeule(), 45);
  EXPECT_EQ(Etat(), dossierOuvert);
  fs::permissions(Dossier, fs::perms::owner_write, fs::perm_options::add);

  // Le programme sqlite3 voit les mêmes lignes.
  EXPECT_EQ(Valeur("-readonly", "SELECT count(*) FROM Evenements"), "45");

  // En écriture : tout est là, et la fermeture reverse le journal dans la base.
  {
    TModuleBDD bdd(Adb, "5.90");
    ASSERT_TRUE(bdd.OpenDataBase());
    EXPECT_EQ(Evenements(bdd), 45);
    Poste(bdd, 2000);
  }
  EXPECT_FALSE(Existe("-wal"));
  EXPECT_FALSE(Existe("-shm"));
  EXPECT_EQ(Valeur("-readonly", "SELECT count(*) FROM Evenements"), "46");
  EXPECT_EQ(Valeur("-readonly", "PRAGMA integrity_check"), "ok");
}

INSTANTIATE_TEST_SUITE_P(Ecrivains, EcrivainTueTest, ::testing::Values(TEcrivain::Nous, TEcrivain::AutreProgramme),
                         [](const auto& info) { return info.param == TEcrivain::Nous ? "Nous" : "AutreProgramme"; });

TEST_F(BaseEtOutilsTest, DossierEnLectureSeuleSansJournalNeRecoitRien) {
  Garnit(7);
  const auto avant = Etat();
  ASSERT_EQ(avant.size(), 1u);
  fs::permissions(Dossier, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                  fs::perm_options::remove);
  EXPECT_EQ(CompteEnLectureSeule(), 7);
  EXPECT_EQ(Etat(), avant);
}

// --- Mises de côté ---

class MiseDeCoteTest : public BaseEtOutilsTest {
 protected:
  void SetUp() override {
    BaseEtOutilsTest::SetUp();
    Journal = Racine / "donnees";
    const char* ancien = std::getenv("XDG_DATA_HOME");
    if (ancien) AncienXdg = ancien;
    ::setenv("XDG_DATA_HOME", Journal.c_str(), 1);
    fs::create_directories(Journal / "rqbase");
  }
  void TearDown() override {
    if (AncienXdg.empty())
      ::unsetenv("XDG_DATA_HOME");
    else
      ::setenv("XDG_DATA_HOME", AncienXdg.c_str(), 1);
    BaseEtOutilsTest::TearDown();
  }
  std::string LitJournal() const {
    std::ifstream f(FichierJournal(), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), {});
  }
  void Ecrit(const std::string& chemin, const std::string& octets) const {
    std::ofstream(chemin, std::ios::binary) << octets;
  }
  std::string Lit(const std::string& nom) const {
    std::ifstream f(Dossier / nom, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(f), {});
  }
  fs::path Journal;
  std::string AncienXdg;
};

TEST_F(MiseDeCoteTest, AncienMoteurDeuxFoisSansRienEcraser) {
  Ecrit(Adb, "ACRDB4 premiere");
  {
    TModuleBDD bdd(Adb, "5.90");
    ASSERT_TRUE(bdd.CreateDataBase());
  }
  ASSERT_EQ(Lit("Famille_v4.adb"), "ACRDB4 premiere");
  fs::remove(Adb);
  Ecrit(Adb, "ACRDB4 seconde");
  {
    TModuleBDD bdd(Adb, "5.90");
    ASSERT_TRUE(bdd.CreateDataBase());
    EXPECT_TRUE(bdd.TableExiste("Evenements"));
  }
  EXPECT_EQ(Lit("Famille_v4.adb"), "ACRDB4 premiere");
  EXPECT_EQ(Lit("Famille_v4 (2).adb"), "ACRDB4 seconde");
  ASSERT_EQ(Boite.Informations.size(), 2u);
  EXPECT_THAT(Boite.Informations[0].Texte, HasSubstr("sous le nom Famille_v4.adb"));
  EXPECT_THAT(Boite.Informations[1].Texte, HasSubstr("sous le nom Famille_v4 (2).adb"));
  EXPECT_THAT(Boite.Informations[1].Texte, HasSubstr("import GEDCOM"));
  EXPECT_THAT(LitJournal(), HasSubstr("mise de côté sous " + (Dossier / "Famille_v4 (2).adb").string()));
}

TEST_F(MiseDeCoteTest, ConversionInacheveeAvecSonJournal) {
  Garnit(4);
  ASSERT_TRUE(TModuleBDD::MetDeCoteConversionInachevee(Adb));
  EXPECT_FALSE(Existe(""));
  ASSERT_TRUE(fs::exists(Dossier / "Famille.~adb"));

  // Une seconde base inachevée, avec un journal garni laissé par un arrêt brutal :
  // le nom est pris, elle va sous le suivant et son journal la suit.
  Garnit(2);
  fs::copy_file(Adb, Adb + ".copie");
  Ecrit(Adb + "-wal", "journal");
  Ecrit((Dossier / "Famille (2).~adb-wal").string(), "autre");  // le suivant a déjà un journal : sauté
  ASSERT_TRUE(TModuleBDD::MetDeCoteConversionInachevee(Adb));
  EXPECT_FALSE(Existe(""));
  EXPECT_FALSE(Existe("-wal"));
  EXPECT_EQ(Lit("Famille (3).~adb"), Lit("Famille.adb.copie"));
  EXPECT_EQ(Lit("Famille (3).~adb-wal"), "journal");
  EXPECT_EQ(Lit("Famille (2).~adb-wal"), "autre");
  ASSERT_EQ(Boite.Informations.size(), 2u);
  EXPECT_EQ(Boite.Informations[1].Texte,
            "La base de données Famille.adb laissée par une conversion inachevée a été conservée sous le nom "
            "Famille (3).~adb.");
  EXPECT_THAT(LitJournal(), HasSubstr("conversion inachevée mise de côté sous " +
                                      (Dossier / "Famille (3).~adb").string()));
  // La première mise de côté est intacte : elle se relit.
  SQLite::Database premiere((Dossier / "Famille.~adb").string(), SQLite::OPEN_READONLY);
  EXPECT_EQ(premiere.execAndGet("SELECT count(*) FROM Evenements").getInt(), 4);

  // Rien à mettre de côté : échec sans rien toucher.
  EXPECT_FALSE(TModuleBDD::MetDeCoteConversionInachevee(Adb));
  EXPECT_EQ(Boite.Informations.size(), 2u);
}

}  // namespace
}  // namespace rqbase
