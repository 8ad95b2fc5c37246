#include "rqbase/storage/datamodulebdd.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <random>
#include <set>

#include "rqbase/platform/attributs.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/platform/journal.h"
#include "rqbase/platform/progression.h"
#include "rqbase/platform/remplacement.h"
#include "rqbase/storage/schema_bdd.h"
#include "rqbase/util/erreur.h"
#include "rqbase/util/fichiers.h"

namespace fs = std::filesystem;

namespace rqbase {

namespace {
// Sans comptes de mémoire, chaque allocation de SQLite se passe d'un verrou global. Le réglage
// ne vaut qu'avant la première connexion du processus : il est posé au chargement.
const int gSansComptesMemoire = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);

// Les index des événements qu'aucune requête d'un import ne lit.
constexpr const char* kIndexSuspendusEnImport[] = {"ParType", "ParLibEtDonnee", "ParLieu", "Par_DATE",
                                                    "Par_DateLastModif"};
}  // namespace

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

std::string DossierDe(const std::string& chemin) {
  const size_t slash = chemin.find_last_of('/');
  if (slash == std::string::npos) return ".";
  return slash == 0 ? "/" : chemin.substr(0, slash);
}

// Vrai si le chemin désigne quoi que ce soit, lien compris (il n'est pas suivi).
bool EntreeExiste(const std::string& chemin) {
  std::error_code ec;
  return fs::exists(fs::symlink_status(CheminOs(chemin), ec));
}

// "<base> (n)<ext>" pour n >= 2, le nom tel quel pour n = 1.
std::string NomNumerote(const std::string& chemin, int n) {
  if (n < 2) return chemin;
  const std::string nom = NomSeul(chemin);
  const size_t point = nom.find_last_of('.');
  const size_t coupe = point == std::string::npos || point == 0 ? chemin.size() : chemin.size() - (nom.size() - point);
  return chemin.substr(0, coupe) + " (" + std::to_string(n) + ")" + chemin.substr(coupe);
}

// Les deux fichiers de travail de SQLite qui accompagnent une base en journal WAL.
constexpr const char* Compagnons[] = {"-wal", "-shm"};

// Vrai pour l'en-tête d'une base SQLite, ou pour rien du tout (une base neuve).
bool EnteteBase(const void* octets, size_t taille) {
  return taille == 0 || (taille >= 16 && std::memcmp(octets, "SQLite format 3", 16) == 0);
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
  return EnteteBase(entete, sizeof entete);
}

// --- Mises de côté ---

std::string TModuleBDD::MetDeCote(const std::string& cheminAdb, const std::string& cible) {
  for (int n = 1; n < 10000; ++n) {
    const std::string nom = NomNumerote(cible, n);
    if (EntreeExiste(nom) || EntreeExiste(nom + Compagnons[0]) || EntreeExiste(nom + Compagnons[1])) continue;
    // Le journal part le premier : laissé seul, il serait effacé par SQLite à la
    // création de la base suivante (ou, pire, appliqué à elle), et ses lignes validées
    // perdues. S'il ne peut partir, rien ne bouge.
    const std::string wal = cheminAdb + Compagnons[0];
    int erreur = 0;
    const bool avecWal = EntreeExiste(wal);
    if (avecWal && !RenommeSansEcraser(wal, nom + Compagnons[0], &erreur)) {
      if (erreur == EEXIST) continue;
      AddLog("Base " + cheminAdb + " : mise de côté du journal sous " + nom + Compagnons[0] + " impossible (" +
             std::strerror(erreur) + ")");
      return "";
    }
    if (!RenommeSansEcraser(cheminAdb, nom, &erreur)) {
      int retour = 0;
      if (avecWal && !RenommeSansEcraser(nom + Compagnons[0], wal, &retour))
        AddLog("Base " + cheminAdb + " : journal resté sous " + nom + Compagnons[0]);
      if (erreur == EEXIST) continue;
      AddLog("Base " + cheminAdb + " : mise de côté sous " + nom + " impossible (" + std::strerror(erreur) + ")");
      return "";
    }
    // L'index -shm ne tient rien qui ne soit dans le journal : il suit s'il le peut.
    const std::string shm = cheminAdb + Compagnons[1];
    if (EntreeExiste(shm) && !RenommeSansEcraser(shm, nom + Compagnons[1], &erreur))
      AddLog("Base " + cheminAdb + " : index " + shm + " laissé en place (" + std::strerror(erreur) + ")");
    return nom;
  }
  AddLog("Base " + cheminAdb + " : aucun nom libre pour la mettre de côté sous " + cible);
  return "";
}

bool TModuleBDD::MetDeCoteConversionInachevee(const std::string& cheminAdb) {
  const std::string nom = MetDeCote(cheminAdb, SansExtension(cheminAdb) + ".~adb");
  if (nom.empty()) return false;
  AddLog("Base " + cheminAdb + " laissée par une conversion inachevée mise de côté sous " + nom);
  Dialogue().Information("La base de données " + NomSeul(cheminAdb) +
                             " laissée par une conversion inachevée a été conservée sous le nom " + NomSeul(nom) +
                             ".",
                         "Base de données mise de côté");
  return true;
}

// --- Connexion ---

void TModuleBDD::Connecte(bool lectureSeule) {
  try {
    ConnecteSelonAcces(lectureSeule);
  } catch (...) {
    // Une connexion à moitié réglée ne sert à rien : la base reste fermée.
    DestroyDataBaseBDD();
    throw;
  }
}

void TModuleBDD::ConnecteSelonAcces(bool lectureSeule) {
  if (!lectureSeule) {
    // Une connexion ne sert qu'au fil de son dossier : sans verrou interne (OPEN_NOMUTEX),
    // chaque appel à SQLite coûte un verrou de moins.
    Bdd = std::make_unique<SQLite::Database>(CheminOs(CheminAdb).string(), SQLite::OPEN_NOMUTEX | SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE,
                                             AttenteVerrouMs);
    // SQLite ouvre en lecture seule, sans le dire, un fichier protégé en écriture :
    // on reprend alors le chemin de la lecture seule.
    if (sqlite3_db_readonly(Bdd->getHandle(), "main") != 1) {
      LectureSeuleEffective = false;
      AppliqueReglages(true);
      EffaceIndexPartageOrphelin();
      return;
    }
    Bdd.reset();
  }
  ConnecteLectureSeule();
}

// Lire sans écrire, selon ce que le dossier permet :
// - dossier où l'on peut écrire : une connexion ordinaire, avec les verrous
//   partagés et l'index -shm de SQLite, interdite d'écrire (ConnecteSansEcrire) ;
//   elle voit ce qu'un -wal tient de validé, et un programme qui écrirait en même
//   temps ne peut rien fausser de ce qu'elle lit ;
// - dossier qu'on ne peut écrire, sans -wal : le fichier est toute la base et rien
//   ne peut la changer : « immuable », ni verrou ni fichier créé ;
// - dossier qu'on ne peut écrire, avec un -wal (laissé par un arrêt brutal ou un
//   autre programme) : « immuable » ignorerait ses lignes validées. Le système de
//   fichiers sans verrous (unix-none) en mode exclusif garde l'index du journal en
//   mémoire : le -wal est lu, rien n'est créé ni écrit.
// Le mode exclusif ordinaire n'est pas possible en lecture seule : il veut un verrou
// en écriture sur le fichier.
void TModuleBDD::ConnecteLectureSeule() {
  std::string nom = UriFichier(CheminOs(CheminAdb).string());
  bool exclusif = false;
  if (!SansDroitEcriture(DossierDe(CheminAdb))) {
    if (ConnecteSansEcrire()) return;
    nom += "?mode=ro";
  } else if (!EntreeExiste(CheminAdb + Compagnons[0])) {
    nom += "?immutable=1";
  } else {
    nom += "?mode=ro&vfs=unix-none";
    exclusif = true;
  }
  Bdd = std::make_unique<SQLite::Database>(nom, SQLite::OPEN_NOMUTEX | SQLite::OPEN_READONLY | SQLite::OPEN_URI, AttenteVerrouMs);
  LectureSeuleEffective = true;
  AppliqueReglages(exclusif);
}

// Une connexion ouverte en lecture-écriture mais interdite d'écrire (query_only) :
// comme tout lecteur en WAL, elle crée au besoin -wal et -shm, mais, dernière à se
// fermer, elle les efface comme elle les a trouvés (un -wal vide n'a rien à reverser),
// si bien qu'une lecture laisse le dossier tel quel ; elle fait même disparaître
// ceux, vides, qu'un autre programme avait laissés. Un -wal garni (arrêt brutal)
// n'est pas reversé à la fermeture : la base garde ses octets, le -wal reste pour la
// prochaine ouverture en écriture. Un fichier protégé en écriture, ou un journal
// d'annulation « chaud » (qu'une connexion en écriture rejouerait dans la base),
// renvoient à la lecture seule ordinaire : false.
bool TModuleBDD::ConnecteSansEcrire() {
  if (EntreeExiste(CheminAdb + "-journal")) return false;
  std::error_code ec;
  const auto tailleWal = fs::file_size(CheminOs(CheminAdb + Compagnons[0]), ec);
  const bool walGarni = !ec && tailleWal > 0;
  Bdd = std::make_unique<SQLite::Database>(CheminOs(CheminAdb).string(), SQLite::OPEN_NOMUTEX | SQLite::OPEN_READWRITE, AttenteVerrouMs);
  if (sqlite3_db_readonly(Bdd->getHandle(), "main") == 1) {
    Bdd.reset();
    return false;
  }
  Bdd->exec("PRAGMA query_only=ON");
  if (walGarni) sqlite3_db_config(Bdd->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
  LectureSeuleEffective = true;
  AppliqueReglages(false);
  return true;
}

void TModuleBDD::AppliqueReglages(bool exclusif) {
  // Le mode exclusif doit précéder le passage en WAL : l'index du journal reste
  // alors en mémoire, sans fichier -shm, et aucun autre processus n'entre.
  if (exclusif) Bdd->exec("PRAGMA locking_mode=EXCLUSIVE");
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

// Ouverte en écriture exclusive et en WAL, la connexion tient l'index du journal en
// mémoire et le verrou exclusif du fichier : un -shm laissé par un autre programme
// ne sert plus à personne (un programme qui s'en servirait tiendrait un verrou
// partagé, et notre ouverture aurait échoué). Il est effacé pour que le dossier
// redevienne propre ; le -wal, lui, est vidé et effacé par SQLite à la fermeture.
void TModuleBDD::EffaceIndexPartageOrphelin() {
  SQLite::Statement journal(*Bdd, "PRAGMA journal_mode");
  if (!journal.executeStep() || journal.getColumn(0).getString() != "wal") return;
  std::error_code ec;
  const fs::path shm = CheminOs(CheminAdb + Compagnons[1]);
  if (fs::is_regular_file(fs::symlink_status(shm, ec))) fs::remove(shm, ec);
}

bool TModuleBDD::ChargeImage(const void* octets, size_t taille) {
  DestroyDataBaseBDD();
  if (!EnteteBase(octets, taille)) return false;
  try {
    return ChargeImageEnMemoire(octets, taille);
  } catch (...) {
    DestroyDataBaseBDD();
    throw;
  }
}

bool TModuleBDD::ChargeImageEnMemoire(const void* octets, size_t taille) {
  return Protege([&] {
    Bdd = std::make_unique<SQLite::Database>(":memory:", SQLite::OPEN_NOMUTEX | SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    EnMemoire = true;
    LectureSeuleEffective = Acces == TAccesDossier::LectureSeule;
    if (taille > 0) {
      auto* copie = static_cast<unsigned char*>(sqlite3_malloc64(taille));
      if (copie == nullptr) throw ERqBase(TexteErreurBase());
      std::memcpy(copie, octets, taille);
      // Une base en mémoire n'a pas de journal WAL : les octets 18 et 19 de l'en-tête
      // (versions d'écriture et de lecture, 2 pour WAL) repassent à 1, le journal
      // ordinaire. Seul le mode de journal change, pas le contenu des pages.
      if (taille >= 20 && copie[18] == 2 && copie[19] == 2) copie[18] = copie[19] = 1;
      const int rc = sqlite3_deserialize(
          Bdd->getHandle(), "main", copie, static_cast<sqlite3_int64>(taille), static_cast<sqlite3_int64>(taille),
          SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE |
              (LectureSeuleEffective ? SQLITE_DESERIALIZE_READONLY : 0));
      if (rc != SQLITE_OK) throw SQLite::Exception(Bdd->getHandle(), rc);
    }
    AppliqueReglages(true);
    return true;
  });
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
  // Un parcours laissé ouvert est une requête de plus : la connexion ne se ferme pas sur elle.
  ParcoursEvens.reset();
  ParcoursChps.reset();
  ParcoursDonnees.reset();
  ParcoursSources.reset();
  ParcoursIllustrations.reset();
}

void TModuleBDD::DestroyDataBaseBDD() {
  // L'import resté ouvert est annulé depuis son dernier paquet validé.
  Transaction.reset();
  CompteurImport = 0;
  DeleteLesTables();
  Bdd.reset();
  LectureSeuleEffective = false;
  EnMemoire = false;
}

// --- Création et ouverture ---

void TModuleBDD::MetDeCoteAncienneBase() {
  const std::string nom = MetDeCote(CheminAdb, CheminV4ADB());
  if (nom.empty()) throw ERqBase(TexteErreurBase());
  AddLog("Base " + CheminAdb + " d'un ancien format mise de côté sous " + nom);
  Dialogue().Information("La base de données " + NomSeul(CheminAdb) +
                             " est d'un ancien format que ce programme ne sait plus lire.\n"
                             "Elle a été conservée sous le nom " + NomSeul(nom) +
                             " et une base neuve a été créée.\n\n"
                             "Les événements, champs, sources et illustrations de ce dossier devront être "
                             "repris par un import GEDCOM.",
                         "Evolution de votre base de données");
}

bool TModuleBDD::CreateDataBase() {
  if (Acces == TAccesDossier::LectureSeule) return false;
  return Protege([&] {
    if (!Bdd) {
      if (FichierExiste(CheminAdb) && !EstFichierBase(CheminAdb)) MetDeCoteAncienneBase();
      const fs::path dossier = fs::path(CheminAdb).parent_path();
      if (!dossier.empty() && !DossierExiste(dossier.string())) {
        std::error_code ec;
        fs::create_directories(CheminOs(dossier.string()), ec);
        if (!DossierExiste(dossier.string())) return false;
      }
      Connecte(false);
    }
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

void TModuleBDD::RefaitIndexManquants() {
  const TTableSchema& t = *TableSchema("Evenements");
  // Un index dont une colonne manque (base ancienne pas encore mise à niveau) attend sa mise
  // à niveau : il n'est pas refait ici.
  std::vector<const TIndexSchema*> aFaire;
  for (const char* nom : kIndexSuspendusEnImport) {
    const TIndexSchema* index = t.IndexNomme(nom);
    if (IndexExiste(t.Nom, nom)) continue;
    bool colonnes = true;
    for (const char* c : index->Colonnes) colonnes = colonnes && ColonneExiste(t.Nom, c);
    if (colonnes) aFaire.push_back(index);
  }
  if (aFaire.empty()) return;
  SQLite::Transaction tr(*Bdd);
  for (const TIndexSchema* index : aFaire) Bdd->exec(SqlCreationIndex(t, *index));
  tr.commit();
}

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
    // Un import interrompu a pu laisser des index des événements ôtés.
    if (TableExiste("Evenements")) RefaitIndexManquants();
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
  // Une base en mémoire n'a pas de fichier à copier.
  if (EnMemoire || EntreeExiste(CheminCopieADB()) || !Bdd || ColonneExiste("Evenements", "DateLastModif")) return;
  const bool lectureSeule = LectureSeuleEffective;
  DestroyDataBaseBDD();
  // Fermée, la base a reversé son journal dans le fichier : la copie est complète.
  // Une copie apparue entre-temps n'est pas écrasée.
  std::error_code ec;
  fs::copy_file(CheminOs(CheminAdb), CheminOs(CheminCopieADB()), fs::copy_options::none, ec);
  if (ec) AddLog("Base " + CheminAdb + " : copie de sécurité impossible (" + ec.message() + ")");
  Protege([&] { Connecte(lectureSeule); });
}

void TModuleBDD::DeleteCopieADB() {
  if (EnMemoire) return;
  std::error_code ec;
  fs::remove(CheminOs(CheminCopieADB()), ec);
}

bool TModuleBDD::RestoreOldADB() {
  if (EnMemoire || !FichierExiste(CheminOldADB())) return false;
  DestroyDataBaseBDD();
  std::error_code ec;
  fs::remove(CheminOs(CheminAdb), ec);
  // Le journal et l'index de la base remplacée partent avec elle : laissés, ils
  // s'appliqueraient à la base remise en place.
  for (const char* compagnon : Compagnons) fs::remove(CheminOs(CheminAdb + compagnon), ec);
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
    // Le journal est reversé dans la base par pas de 64 Mo au lieu de 4 : un import de
    // centaines de milliers de lignes fait ainsi seize fois moins de reversements.
    Bdd->exec("PRAGMA wal_autocheckpoint=16384");
    Transaction = std::make_unique<SQLite::Transaction>(*Bdd);
    // Les index des événements que l'import ne lit pas sont ôtés le temps de l'import et
    // refaits d'un coup à la fin : chaque ligne en coûte deux fois moins. Une panne au milieu
    // les laisse absents ; l'ouverture suivante les refait (RefaitIndexManquants).
    for (const char* index : kIndexSuspendusEnImport) {
      if (IndexExiste("Evenements", index)) Bdd->exec("DROP INDEX " + std::string("\"") + NomIndexSql("Evenements", index) + "\"");
    }
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
    RefaitIndexManquants();
    Bdd->exec("PRAGMA synchronous=FULL");
    Bdd->exec("PRAGMA wal_autocheckpoint=1000");
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
