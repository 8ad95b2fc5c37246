#include "rqbase/storage/datamodulebdd.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <random>
#include <set>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/platform/journal.h"
#include "rqbase/platform/progression.h"
#include "rqbase/storage/schema_bdd.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqbase {

namespace {

constexpr long TaillePaquetImport = 1000;
// Délai de verrou 1 ms et 1000 essais : une seconde d'attente au plus.
constexpr int AttenteVerrouMs = 1000;
// Tous les combien d'instructions du moteur une restructuration sert la progression.
constexpr int PasProgression = 20000;

std::mutex MutexIdentites;
int ProchainIdBDD = 0;
std::set<std::string> SessionsVivantes;

std::string NouvelleSession() {
  static std::mt19937 generateur(std::random_device{}());
  std::uniform_int_distribution<int> tirage(0, 99999);
  // Deux dossiers ouverts ensemble ne doivent jamais partager leur session.
  for (;;) {
    std::string nom = "ses" + std::to_string(tirage(generateur));
    if (SessionsVivantes.insert(nom).second) return nom;
  }
}

std::string SansExtension(const std::string& chemin) {
  const size_t slash = chemin.find_last_of('/');
  const size_t point = chemin.find_last_of('.');
  if (point == std::string::npos || (slash != std::string::npos && point < slash)) return chemin;
  return chemin.substr(0, point);
}

std::string NomSeul(const std::string& chemin) {
  const size_t slash = chemin.find_last_of('/');
  return slash == std::string::npos ? chemin : chemin.substr(slash + 1);
}

// Texte coupé à la taille de la colonne, en caractères (un octet Windows-1252 chacun).
std::string CoupeATaille(const std::string& texte, const char* table, const char* colonne) {
  const TTableSchema* t = TableSchema(table);
  const TColonneSchema* c = t ? t->Colonne(colonne) : nullptr;
  if (c == nullptr || c->Taille <= 0 || texte.size() <= static_cast<size_t>(c->Taille)) return texte;
  return texte.substr(0, static_cast<size_t>(c->Taille));
}

// Un chemin en URI SQLite : tout octet hors des caractères sûrs est écrit %HH.
std::string UriFichier(const std::string& chemin) {
  static const char hexa[] = "0123456789ABCDEF";
  std::string uri = "file:";
  for (unsigned char c : chemin) {
    if (std::isalnum(c) || c == '/' || c == '.' || c == '-' || c == '_' || c == '~') {
      uri += static_cast<char>(c);
    } else {
      uri += '%';
      uri += hexa[c >> 4];
      uri += hexa[c & 15];
    }
  }
  return uri;
}

struct TEtatProgression {
  TProgression* Progression;
  long Tics = 0;
};

// ACRTableProgressMAJ : avance la barre, sert le drapeau d'abandon (1 interrompt la requête).
int ProgressionRestructure(void* donnee) {
  auto* etat = static_cast<TEtatProgression*>(donnee);
  const long position = std::min<long>(99, ++etat->Tics);
  if (position != etat->Progression->Pos) etat->Progression->Position(position);
  return etat->Progression->Abandon() ? 1 : 0;
}

}  // namespace

TModuleBDD::TModuleBDD(const std::string& cheminAdb, const std::string& versionTexte, TAccesDossier acces)
    : CheminAdb(cheminAdb), Version(versionTexte), Acces(acces) {
  std::lock_guard<std::mutex> verrou(MutexIdentites);
  IdBDD = ProchainIdBDD++;
  NomSession = NouvelleSession();
}

TModuleBDD::~TModuleBDD() {
  try {
    DestroyDataBaseBDD();
  } catch (const std::exception& e) {
    // Un destructeur ne lève pas : la fermeture manquée reste au journal.
    AddLog("Fermeture de la base " + CheminAdb + " : " + e.what());
  }
  std::lock_guard<std::mutex> verrou(MutexIdentites);
  SessionsVivantes.erase(NomSession);
}

std::string TModuleBDD::GetNomBase() const {
  char tampon[32];
  std::snprintf(tampon, sizeof tampon, "AccuracerBDD_%i", IdBDD);
  return tampon;
}

std::string TModuleBDD::TexteErreurBase() const {
  return "Une erreur s'est produite sur la base " + NomSeul(CheminAdb) +
         "\nVeuillez restructurer votre dossier par le menu \"Utilitaire\" > \"Restructurer un dossier "
         "généalogique\"\npuis cochez l'option \"Réparation, réenregistrement...\"";
}

void TModuleBDD::ErreurMoteur(const std::exception& e) const {
  if (const auto* deja = dynamic_cast<const ERqBase*>(&e)) throw *deja;
  AddLog("Base " + CheminAdb + " : " + e.what());
  throw ERqBase(TexteErreurBase());
}

// --- Chemins ---

std::string TModuleBDD::CheminCopieADB() const { return SansExtension(CheminAdb) + "-backup.adb"; }
std::string TModuleBDD::CheminOldADB() const { return SansExtension(CheminAdb) + "_old.adb"; }
std::string TModuleBDD::CheminV4ADB() const { return SansExtension(CheminAdb) + "_v4.adb"; }
std::string TModuleBDD::CheminV5ADB() const { return SansExtension(CheminAdb) + "_v5.adb"; }
std::string TModuleBDD::CheminMisDeCote() const { return SansExtension(CheminAdb) + ".~adb"; }

bool TModuleBDD::EstFichierBase(const std::string& chemin) {
  auto fichier = TFichierBrut::Ouvre(chemin, TFichierBrut::TAcces::Lecture, TFichierBrut::TDisposition::Ouvre);
  if (!fichier) return false;
  // Un fichier vide est une base SQLite qui n'a encore rien reçu.
  if (fichier->Taille() == 0) return true;
  char entete[16] = {};
  if (fichier->LitA(0, entete, sizeof entete) != static_cast<int64_t>(sizeof entete)) return false;
  return std::memcmp(entete, "SQLite format 3", 16) == 0;
}

// --- Connexion ---

void TModuleBDD::Connecte(bool lectureSeule) {
  if (!lectureSeule) {
    Bdd = std::make_unique<SQLite::Database>(CheminOs(CheminAdb).string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE,
                                             AttenteVerrouMs);
    // SQLite ouvre en lecture seule, sans le dire, un fichier protégé en écriture :
    // on reprend alors le chemin de la lecture seule.
    if (sqlite3_db_readonly(Bdd->getHandle(), "main") != 1) {
      LectureSeuleEffective = false;
      AppliqueReglages();
      return;
    }
    Bdd.reset();
  }
  // En lecture seule, une base en WAL exclusif ne s'ouvre qu'en « immuable » :
  // rien n'est créé à côté d'elle (ni -wal ni -shm). Un -wal laissé par un arrêt
  // brutal tient des données validées : on l'ouvre alors normalement pour les voir.
  const bool walLaisse = FichierExiste(CheminAdb + "-wal");
  const std::string cheminOs = CheminOs(CheminAdb).string();
  const std::string nom = walLaisse ? cheminOs : UriFichier(cheminOs) + "?immutable=1";
  Bdd = std::make_unique<SQLite::Database>(nom, SQLite::OPEN_READONLY | SQLite::OPEN_URI, AttenteVerrouMs);
  LectureSeuleEffective = true;
  AppliqueReglages();
}

void TModuleBDD::AppliqueReglages() {
  // Le mode exclusif doit précéder le passage en WAL : l'index du journal reste
  // alors en mémoire, sans fichier -shm, et aucun autre processus n'entre.
  Bdd->exec("PRAGMA locking_mode=EXCLUSIVE");
  if (!LectureSeuleEffective) {
    // Sans effet sur une base déjà garnie : seule une base neuve prend cette taille.
    Bdd->exec("PRAGMA page_size=4096");
    SQLite::Statement journal(*Bdd, "PRAGMA journal_mode=WAL");
    journal.executeStep();
  }
  Bdd->exec(EnImport() ? "PRAGMA synchronous=NORMAL" : "PRAGMA synchronous=FULL");
  Bdd->exec("PRAGMA case_sensitive_like=ON");
  // Prend le verrou tout de suite plutôt qu'à la première requête.
  SQLite::Statement lecture(*Bdd, "SELECT count(*) FROM sqlite_master");
  lecture.executeStep();
}

bool TModuleBDD::EstOuverte() const { return Bdd != nullptr; }
bool TModuleBDD::EstEnLectureSeule() const { return Bdd != nullptr && LectureSeuleEffective; }

SQLite::Database& TModuleBDD::Base() {
  if (!Bdd) throw ERqBase(TexteErreurBase());
  return *Bdd;
}

void TModuleBDD::DeleteLesTables() {
  Requetes.clear();
  Blocages.clear();
}

void TModuleBDD::DestroyDataBaseBDD() {
  // L'import resté ouvert est annulé depuis son dernier paquet validé.
  Transaction.reset();
  CompteurImport = 0;
  DeleteLesTables();
  Bdd.reset();
  LectureSeuleEffective = false;
}

// --- Création et ouverture ---

void TModuleBDD::MetDeCoteAncienneBase() {
  std::error_code ec;
  fs::rename(CheminOs(CheminAdb), CheminOs(CheminV4ADB()), ec);
  if (ec) {
    AddLog("Base " + CheminAdb + " : mise de côté impossible (" + ec.message() + ")");
    throw ERqBase(TexteErreurBase());
  }
  AddLog("Base " + CheminAdb + " d'un ancien format mise de côté sous " + CheminV4ADB());
  Dialogue().Information("La base de données " + NomSeul(CheminAdb) +
                             " est d'un ancien format que ce programme ne sait plus lire.\n"
                             "Elle a été conservée sous le nom " + NomSeul(CheminV4ADB()) +
                             " et une base neuve a été créée.\n\n"
                             "Les événements, champs, sources et illustrations de ce dossier devront être "
                             "repris par un import GEDCOM.",
                         "Evolution de votre base de données");
}

bool TModuleBDD::CreateDataBase() {
  if (Acces == TAccesDossier::LectureSeule) return false;
  return Protege([&] {
    if (!Bdd && FichierExiste(CheminAdb) && !EstFichierBase(CheminAdb)) MetDeCoteAncienneBase();
    const fs::path dossier = fs::path(CheminAdb).parent_path();
    if (!dossier.empty() && !DossierExiste(dossier.string())) {
      std::error_code ec;
      fs::create_directories(CheminOs(dossier.string()), ec);
      if (!DossierExiste(dossier.string())) return false;
    }
    if (!Bdd) Connecte(false);
    if (LectureSeuleEffective) return false;
    for (const TTableSchema& table : SchemaBDD())
      if (!TableExiste(table.Nom)) CreeTable(table.Nom);
    return true;
  });
}

bool TModuleBDD::OpenDataBase() {
  const bool ouverte = Protege([&] {
    if (Bdd) return true;
    if (!FichierExiste(CheminAdb)) return false;
    if (!EstFichierBase(CheminAdb)) {
      AddLog("Base " + CheminAdb + " : ce n'est pas une base SQLite, laissée telle quelle");
      return false;
    }
    Connecte(Acces == TAccesDossier::LectureSeule);
    return true;
  });
  if (ouverte) UpdateOldBase();
  return ouverte;
}

void TModuleBDD::CreeTable(const std::string& nom) {
  const TTableSchema* table = TableSchema(nom);
  if (table == nullptr) throw ERqBase(TexteErreurBase());
  SQLite::Transaction tr(*Bdd);
  Bdd->exec(SqlCreationTable(*table));
  for (const TIndexSchema& index : table->Index) {
    const std::string sql = SqlCreationIndex(*table, index);
    if (!sql.empty()) Bdd->exec(sql);
  }
  tr.commit();
}

// --- Mise à niveau ---

void TModuleBDD::UpdateOldBase() {
  if (Acces != TAccesDossier::Modifiable || !Bdd || LectureSeuleEffective) return;
  Protege([&] {
    if (!TableExiste("NotesTranscription"))
      CreeTable("NotesTranscription");
    else
      UpdateTableTranscription();
    if (!TableExiste("Geolocalisation")) CreeTable("Geolocalisation");
    if (!TableExiste("IndexNomPrenoms")) CreeTable("IndexNomPrenoms");
    if (TableExiste("Geolocalisation")) AddColumnGeoAddress();
    if (TableExiste("Evenements")) AjouterTypeDateEven();
  });
}

void TModuleBDD::UpdateTableTranscription() {
  if (IndexExiste("NotesTranscription", "Par_IDEvent")) return;
  const TTableSchema& t = *TableSchema("NotesTranscription");
  Restructure(t.Nom, SqlCreationIndex(t, *t.IndexNomme("Par_IDEvent")));
}

void TModuleBDD::AddColumnGeoAddress() {
  if (ColonneExiste("Geolocalisation", "CurrentAddress")) return;
  const TTableSchema& t = *TableSchema("Geolocalisation");
  Restructure(t.Nom, SqlAjoutColonne(t, *t.Colonne("CurrentAddress")));
}

void TModuleBDD::AjouterTypeDateEven() {
  if (ColonneExiste("Evenements", "DateLastModif")) return;
  const TTableSchema& t = *TableSchema("Evenements");
  CopieADB();
  Restructure(t.Nom, SqlAjoutColonne(t, *t.Colonne("DateLastModif")) + ";" +
                         SqlCreationIndex(t, *t.IndexNomme("Par_DateLastModif")));
  DeleteCopieADB();
}

// Une restructuration se fait d'un bloc : abandonnée, elle est défaite et la base
// reste comme avant ; la mise à niveau sera reproposée à la prochaine ouverture.
void TModuleBDD::Restructure(const std::string& table, const std::string& sql) {
  TProgression& progression = Progression ? *Progression : ProgressionMuette();
  progression.Titre("Mise à jour de la base de données...");
  progression.Texte("Mise à jour de la table \"" + table + "\"...");
  progression.Maximum(100);
  progression.Position(0);
  TEtatProgression etat{&progression};
  sqlite3_progress_handler(Bdd->getHandle(), PasProgression, &ProgressionRestructure, &etat);
  try {
    SQLite::Transaction tr(*Bdd);
    Bdd->exec(sql);
    tr.commit();
  } catch (const SQLite::Exception& e) {
    sqlite3_progress_handler(Bdd->getHandle(), 0, nullptr, nullptr);
    if (e.getErrorCode() == SQLITE_INTERRUPT && progression.Abandon()) {
      AddLog("Base " + CheminAdb + " : mise à jour de la table " + table + " abandonnée");
      return;
    }
    throw;
  }
  sqlite3_progress_handler(Bdd->getHandle(), 0, nullptr, nullptr);
  progression.Position(100);
}

// --- Copies de sécurité ---

void TModuleBDD::CopieADB() {
  if (FichierExiste(CheminCopieADB()) || !Bdd || ColonneExiste("Evenements", "DateLastModif")) return;
  const bool lectureSeule = LectureSeuleEffective;
  DestroyDataBaseBDD();
  std::error_code ec;
  fs::copy_file(CheminOs(CheminAdb), CheminOs(CheminCopieADB()), fs::copy_options::overwrite_existing, ec);
  if (ec) AddLog("Base " + CheminAdb + " : copie de sécurité impossible (" + ec.message() + ")");
  Protege([&] { Connecte(lectureSeule); });
}

void TModuleBDD::DeleteCopieADB() {
  std::error_code ec;
  fs::remove(CheminOs(CheminCopieADB()), ec);
}

bool TModuleBDD::RestoreOldADB() {
  if (!FichierExiste(CheminOldADB())) return false;
  DestroyDataBaseBDD();
  std::error_code ec;
  fs::remove(CheminOs(CheminAdb), ec);
  fs::rename(CheminOs(CheminOldADB()), CheminOs(CheminAdb), ec);
  if (ec) AddLog("Base " + CheminAdb + " : retour de l'ancienne base impossible (" + ec.message() + ")");
  return OpenDataBase();
}

// --- TabInformations ---

std::string TModuleBDD::GetVersionBDD() { return GetInfoChps("Vers"); }

void TModuleBDD::MAJTabInformation() { MAJInfoChps("Vers", Version); }

// La clé est coupée comme à l'écriture, pour qu'une clé plus longue que la
// colonne ("UPDATE_PROF") se retrouve.
std::string TModuleBDD::GetInfoChps(const std::string& cle) {
  if (!Bdd) return "0";
  return Protege([&] {
    if (!TableExiste("TabInformations")) return std::string("0");
    SQLite::Statement& q = Requete("SELECT \"Donnees\" FROM \"TabInformations\" WHERE \"Champs\" = ?");
    LieTexte(q, 1, CoupeATaille(cle, "TabInformations", "Champs"));
    std::string valeur = q.executeStep() ? TexteColonne(q, 0) : std::string("0");
    q.tryReset();
    return valeur;
  });
}

void TModuleBDD::MAJInfoChps(const std::string& cle, const std::string& valeur) {
  if (!Bdd || LectureSeuleEffective) return;
  const std::string c = CoupeATaille(cle, "TabInformations", "Champs");
  const std::string v = CoupeATaille(valeur, "TabInformations", "Donnees");
  SQLite::Statement& maj = Requete("UPDATE \"TabInformations\" SET \"Donnees\" = ? WHERE \"Champs\" = ?");
  LieTexte(maj, 1, v);
  LieTexte(maj, 2, c);
  if (PostInTable(maj) > 0) return;
  SQLite::Statement& ajout = Requete("INSERT INTO \"TabInformations\" (\"Champs\", \"Donnees\") VALUES (?, ?)");
  LieTexte(ajout, 1, c);
  LieTexte(ajout, 2, v);
  PostInTable(ajout);
}

// --- Import ---

long TModuleBDD::ReserveNumero(const char* table, const char* colonneId) {
  Bdd->exec(std::string("INSERT INTO ") + Guillemets(table) + " DEFAULT VALUES");
  const long numero = static_cast<long>(Bdd->getLastInsertRowid());
  SQLite::Statement efface(*Bdd, std::string("DELETE FROM ") + Guillemets(table) + " WHERE " +
                                     Guillemets(colonneId) + " = ?");
  efface.bind(1, static_cast<int64_t>(numero));
  efface.exec();
  return numero;
}

void TModuleBDD::BeginImport() {
  if (!Bdd || LectureSeuleEffective || Transaction) return;
  Protege([&] {
    // Chaque paquet validé reste intact même si la machine s'arrête : le WAL en
    // synchronous=NORMAL le garantit, la durabilité fine ne compte pas pendant un import.
    Bdd->exec("PRAGMA synchronous=NORMAL");
    Transaction = std::make_unique<SQLite::Transaction>(*Bdd);
    CompteurImport = 1;
    if (PremierNumEven == 0) PremierNumEven = ReserveNumero("Evenements", "ID");
    if (PremierNumSource == 0) PremierNumSource = ReserveNumero("Sources", "ID_SOURCE");
    if (PremierNumIllustration == 0)
      PremierNumIllustration = ReserveNumero("Illustrations", "ID_ILLUSTRATION");
  });
}

void TModuleBDD::EndImport() {
  if (CompteurImport == 0) return;
  Protege([&] {
    if (Transaction) Transaction->commit();
    Transaction.reset();
    CompteurImport = 0;
    Bdd->exec("PRAGMA synchronous=FULL");
  });
}

// --- Aides de table ---

void TModuleBDD::InsertInTable(const std::string& table) { Blocages[table] = false; }
void TModuleBDD::EditInTable(const std::string& table) { Blocages[table] = false; }
void TModuleBDD::Cancel(const std::string& table) { Blocages[table] = true; }
void TModuleBDD::DeleteInTable(const std::string& table) {
  // Baissé puis levé : la suppression, comme l'annulation, laisse la table bloquée.
  Blocages[table] = false;
  Blocages[table] = true;
}
bool TModuleBDD::ReentreeBloquee(const std::string& table) const {
  auto it = Blocages.find(table);
  return it != Blocages.end() && it->second;
}

int TModuleBDD::PostInTable(SQLite::Statement& requete) {
  return Protege([&] {
    int lignes = 0;
    try {
      lignes = requete.exec();
    } catch (...) {
      requete.tryReset();
      throw;
    }
    requete.tryReset();
    if (CompteurImport != 0 && CompteurImport % TaillePaquetImport == 0) {
      Transaction->commit();
      CompteurImport = 1;
      Transaction = std::make_unique<SQLite::Transaction>(*Bdd);
    } else if (CompteurImport != 0) {
      ++CompteurImport;
    }
    return lignes;
  });
}

int64_t TModuleBDD::PostInTableIndex(SQLite::Statement& requete) {
  PostInTable(requete);
  return Bdd->getLastInsertRowid();
}

SQLite::Statement& TModuleBDD::Requete(const std::string& sql) {
  return Protege([&]() -> SQLite::Statement& {
    auto& place = Requetes[sql];
    if (!place) {
      place = std::make_unique<SQLite::Statement>(Base(), sql);
    } else {
      place->tryReset();
      place->clearBindings();
    }
    return *place;
  });
}

void TModuleBDD::LieTexte(SQLite::Statement& requete, int index, const std::string& cp1252) {
  requete.bind(index, VersUtf8(cp1252));
}

std::string TModuleBDD::TexteColonne(SQLite::Statement& requete, int colonne) {
  return DepuisUtf8(requete.getColumn(colonne).getString());
}

// --- Structure ---

bool TModuleBDD::TableExiste(const std::string& table) {
  return Protege([&] {
    SQLite::Statement& q = Requete("SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?");
    LieTexte(q, 1, table);
    const bool existe = q.executeStep();
    q.tryReset();
    return existe;
  });
}

int TModuleBDD::TypeMoteurColonne(const std::string& table, const std::string& colonne) {
  return Protege([&] {
    SQLite::Statement& q = Requete("SELECT type, pk FROM pragma_table_info(?) WHERE name = ?");
    LieTexte(q, 1, table);
    LieTexte(q, 2, colonne);
    int type = 0;
    if (q.executeStep()) type = TypeMoteurDepuisDeclare(q.getColumn(0).getString(), q.getColumn(1).getInt() != 0);
    q.tryReset();
    return type;
  });
}

bool TModuleBDD::ColonneExiste(const std::string& table, const std::string& colonne) {
  return Protege([&] {
    SQLite::Statement& q = Requete("SELECT 1 FROM pragma_table_info(?) WHERE name = ?");
    LieTexte(q, 1, table);
    LieTexte(q, 2, colonne);
    const bool existe = q.executeStep();
    q.tryReset();
    return existe;
  });
}

bool TModuleBDD::IndexExiste(const std::string& table, const std::string& index) {
  const TTableSchema* schema = TableSchema(table);
  const TIndexSchema* def = schema ? schema->IndexNomme(index) : nullptr;
  if (def && IndexEstCleDeLigne(*schema, *def))
    return TypeMoteurColonne(table, def->Colonnes[0]) == TypeAutoIncrement;
  return Protege([&] {
    SQLite::Statement& q =
        Requete("SELECT 1 FROM sqlite_master WHERE type = 'index' AND tbl_name = ? AND name = ?");
    LieTexte(q, 1, table);
    LieTexte(q, 2, NomIndexSql(table, index));
    const bool existe = q.executeStep();
    q.tryReset();
    return existe;
  });
}

}  // namespace rqbase
