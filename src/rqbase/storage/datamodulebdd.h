// TModuleBDD : la base relationnelle d'un dossier, le fichier <nom>.adb.
//
// Une base SQLite 3 qui tient les événements, champs simples, sources,
// illustrations, personnes associées, lieux géolocalisés, la table des noms et
// les transcriptions (schéma dans schema_bdd.h). Un objet par dossier ouvert ;
// deux dossiers ouverts ensemble dans un processus ont chacun le leur, avec leur
// propre connexion, leur numéro IdBDD et leur nom de session.
//
// Ce qu'un appelant peut tenir pour sûr :
// - Le texte interne est en Windows-1252 ; la base le garde en UTF-8. Les
//   fonctions de cette classe convertissent à la frontière (LieTexte, TexteColonne
//   pour les requêtes des autres parties).
// - La connexion en écriture est exclusive (aucun autre processus n'ouvre le
//   fichier pendant ce temps), en journal WAL, pages de 4096 octets,
//   synchronous=FULL hors import, comparaisons sensibles à la casse (LIKE compris).
// - Le fichier reste ouvert à tout outil SQLite entre deux ouvertures : des -wal et
//   -shm laissés par un autre programme, ou un -wal garni par un arrêt brutal après
//   un commit, n'empêchent aucune ouverture, et toutes les lignes validées s'y lisent.
// - Une requête qui échoue lève ERqBase avec le message « Une erreur s'est
//   produite sur la base <fichier> » suivi du conseil de restructurer
//   (TexteErreurBase) ; le message du moteur va au journal.
// - Un dossier en lecture seule n'est jamais modifié : base ouverte en lecture
//   seule, jamais créée, jamais mise à niveau ; le code qui a besoin d'une colonne
//   récente la teste (ColonneExiste). Une lecture laisse le dossier comme elle l'a
//   trouvé ; seul un -wal garni par un arrêt brutal, qu'elle lit sans le reverser
//   dans la base, peut lui faire laisser un index -shm à côté de lui.
// - Un fichier .adb qui n'est pas une base SQLite (moteur d'avant) est mis de côté
//   sous <nom>_v4.adb par CreateDataBase, une base neuve le remplace, et
//   l'utilisateur est prévenu que ses événements reviendront par un import GEDCOM.
//   Une mise de côté n'écrase jamais rien : si le nom est pris, elle prend le
//   premier nom libre "<nom>_v4 (2).adb", "<nom>_v4 (3).adb"... (MetDeCote).
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

#include "rqbase/storage/evenement.h"

namespace SQLite {
class Database;
class Statement;
class Transaction;
}  // namespace SQLite

namespace rqbase {

class TProgression;
class TContexteDossier;
struct TLigneEven;

// Un filtre d'événements des écrans de recherche : chaque critère vide ou nul ne filtre pas.
// Les dates sont des entiers aaaammjj comparés à _DATE, bornes comprises.
struct TStructFilterEvent {
  std::string Libelle;
  long Lieu = 0;
  long DateMin = 0;
  long DateMax = 0;
  long NoPers = 0;  // sur NoPersA ou NoPersB
};

// Ce que l'objet sait de son dossier : la mise à niveau n'a lieu que pour un
// dossier modifiable ; sans dossier (outils), la base est prise telle quelle.
enum class TAccesDossier { SansDossier, Modifiable, LectureSeule };

class TModuleBDD {
 public:
  // cheminAdb : "<dossier>/<nom>.adb" ; versionTexte : "5.90" (rendu par GetVersion).
  // Prend le numéro IdBDD suivant du processus. N'ouvre rien.
  TModuleBDD(const std::string& cheminAdb, const std::string& versionTexte,
             TAccesDossier acces = TAccesDossier::Modifiable);
  // Ferme la base (un import resté ouvert est annulé depuis son dernier commit).
  ~TModuleBDD();
  TModuleBDD(const TModuleBDD&) = delete;
  TModuleBDD& operator=(const TModuleBDD&) = delete;

  // --- Cycle de vie ---
  // Crée le dossier, la base et les tables manquantes (ordre du schéma).
  // false sans rien faire pour un dossier en lecture seule, ou si le dossier ne
  // peut être créé ; lève ERqBase sur une erreur du moteur.
  bool CreateDataBase();
  // Se connecte si le fichier existe, lance UpdateOldBase, prépare les tables.
  // false si le fichier manque ou n'est pas une base SQLite (laissé intact).
  // Un fichier qu'on ne peut ouvrir en écriture est ouvert en lecture seule.
  bool OpenDataBase();
  // Se connecte à une copie en mémoire des octets d'un fichier .adb, sans rien lire
  // ni écrire sur le disque (fuzz, outils) ; CreateDataBase, OpenDataBase et tout le
  // reste travaillent ensuite sur elle comme sur le fichier, et elle disparaît à la
  // fermeture. false, sans connexion, si ces octets ne sont pas une base SQLite.
  bool ChargeImage(const void* octets, size_t taille);
  // Ajoute tables, colonnes et index manquants ; seulement pour un dossier
  // modifiable et une base ouverte en écriture. Voir le .cpp pour l'ordre.
  void UpdateOldBase();
  // Ferme la connexion (tout ce qui a été validé est sur le disque, le WAL vidé).
  void DestroyDataBaseBDD();
  // Libère les requêtes préparées (les « objets table »).
  void DeleteLesTables();
  bool EstOuverte() const;
  // Vrai si la base est ouverte sans droit d'écriture (dossier en lecture seule
  // ou fichier non inscriptible).
  bool EstEnLectureSeule() const;

  // --- Table TabInformations ---
  std::string GetVersion() const { return Version; }
  // La ligne "Vers", ou "0" si elle manque.
  std::string GetVersionBDD();
  // Écrit la ligne "Vers" avec GetVersion().
  void MAJTabInformation();
  // La valeur de la clé, ou "0" si la clé manque (jamais un texte vide pour une clé absente).
  std::string GetInfoChps(const std::string& cle);
  // Insère ou modifie la ligne ; clé et valeur coupées à 10 et 20 caractères.
  // Sans effet sur une base en lecture seule.
  void MAJInfoChps(const std::string& cle, const std::string& valeur);

  // --- Copies de sécurité ---
  // <nom>-backup.adb : faite seulement si elle n'existe pas et que la colonne
  // DateLastModif manque (la copie d'avant restructuration). Ferme puis rouvre.
  void CopieADB();
  void DeleteCopieADB();
  // Si <nom>_old.adb existe : ferme, le remet à la place de <nom>.adb, rouvre.
  bool RestoreOldADB();
  std::string CheminCopieADB() const;  // <nom>-backup.adb
  std::string CheminOldADB() const;    // <nom>_old.adb
  std::string CheminV4ADB() const;     // <nom>_v4.adb
  std::string CheminV5ADB() const;     // <nom>_v5.adb
  std::string CheminMisDeCote() const;  // <nom>.~adb
  const std::string& GetCheminAdb() const { return CheminAdb; }
  // Met la base `cheminAdb` de côté sous `cible`, ou, si ce nom est pris, sous le
  // premier nom libre "<base> (2)<ext>", "<base> (3)<ext>"... : rien n'est jamais
  // écrasé. Son journal -wal et son index -shm la suivent (un -wal laissé seul
  // s'appliquerait à la base suivante). Rend le nom pris ; vide en échec, la base
  // n'ayant pas bougé. La base doit être fermée.
  static std::string MetDeCote(const std::string& cheminAdb, const std::string& cible);
  // <nom>.adb laissé par une conversion inachevée, mis de côté sous <nom>.~adb (ou le
  // premier nom libre) ; le journal et l'utilisateur en sont informés. false en échec.
  static bool MetDeCoteConversionInachevee(const std::string& cheminAdb);

  // --- Import ---
  // Ouvre une transaction et met le compteur à 1 ; réserve au premier appel les
  // premiers numéros d'événement, de source et d'illustration (une ligne créée
  // puis effacée : le numéro ne sera plus donné par le moteur).
  void BeginImport();
  // Valide le dernier paquet et remet le compteur à 0.
  void EndImport();
  void DebutImport() { BeginImport(); }
  void FinImport() { EndImport(); }
  bool EnImport() const { return CompteurImport != 0; }
  long GetCompteurImport() const { return CompteurImport; }
  // Premiers numéros réservés par BeginImport, 0 tant qu'ils ne l'ont pas été ;
  // les parties événements, sources et illustrations les font avancer.
  long PremierNumEven = 0;
  long PremierNumSource = 0;
  long PremierNumIllustration = 0;

  // --- Aides de table ---
  // Le drapeau propre à chaque table qui bloque la réentrée : InsertInTable,
  // EditInTable et DeleteInTable le baissent d'abord, Cancel et DeleteInTable le
  // lèvent ensuite. Les opérations de curseur elles-mêmes sont les requêtes
  // préparées des appelants (Requete, PostInTable).
  void InsertInTable(const std::string& table);
  void EditInTable(const std::string& table);
  void Cancel(const std::string& table);
  void DeleteInTable(const std::string& table);
  bool ReentreeBloquee(const std::string& table) const;
  // Exécute la requête (INSERT, UPDATE, DELETE) avec ses paramètres liés, la
  // remet à zéro, puis tient la transaction d'import : tous les 1000 envois le
  // paquet est validé et une nouvelle transaction commence. Rend le nombre de
  // lignes touchées.
  int PostInTable(SQLite::Statement& requete);
  // Idem pour la table IndexNomPrenoms ; rend l'ID donné à la ligne insérée.
  int64_t PostInTableIndex(SQLite::Statement& requete);

  // --- Accès pour les autres parties du stockage ---
  // La connexion ; lève ERqBase si la base n'est pas ouverte.
  SQLite::Database& Base();
  // Requête préparée une fois et gardée (remise à zéro, liaisons effacées).
  SQLite::Statement& Requete(const std::string& sql);
  // Texte Windows-1252 lié en UTF-8 (index à partir de 1), et relu.
  static void LieTexte(SQLite::Statement& requete, int index, const std::string& cp1252);
  static std::string TexteColonne(SQLite::Statement& requete, int colonne);
  // Exécute f et change toute exception du moteur en ERqBase(TexteErreurBase()).
  template <typename F>
  auto Protege(F&& f) -> decltype(f());
  std::string TexteErreurBase() const;

  // --- Structure ---
  bool TableExiste(const std::string& table);
  bool ColonneExiste(const std::string& table, const std::string& colonne);
  bool IndexExiste(const std::string& table, const std::string& index);
  // Code de type du moteur relu du type déclaré ; 0 si la colonne manque.
  int TypeMoteurColonne(const std::string& table, const std::string& colonne);
  // Vrai si le fichier commence par l'en-tête SQLite (ou est vide).
  static bool EstFichierBase(const std::string& chemin);

  // --- Identité ---
  int GetIdBDD() const { return IdBDD; }
  std::string GetNomBase() const;     // "AccuracerBDD_<IdBDD>"
  std::string GetNomSession() const { return NomSession; }  // "ses<n>", n < 100000
  // Nom du fil qui lit (LectureEven le teste).
  std::string NomThread;
  // Le dossier est un export (copié ailleurs avec ses images) : TIllustration::
  // GetExpandFilename y cherche aussi un fichier manquant par TransformPathToPathExport.
  bool DossierExport = false;
  // Barre de progression des restructurations ; nullptr : muette.
  TProgression* Progression = nullptr;

  // ===== Événements et champs simples (evenements_bdd.cpp) =====
  // Le voisinage de la base : le contexte du dossier (cache des personnes, fichier des
  // personnes pour savoir qui est supprimé) et les comptes des fichiers des lieux et des
  // notes, pour annuler à la lecture un renvoi au-delà de leur fin. Posés par le dossier ;
  // nuls ou vides, rien n'est chassé ni annulé.
  TContexteDossier* Contexte = nullptr;
  std::function<long()> NbLieux;
  std::function<long()> NbNotes;
  // Lignes réellement écrites (insérées, modifiées, effacées) par les opérations des
  // événements, sources, illustrations et personnes citées depuis l'ouverture.
  long LignesEcrites = 0;

  // Lit la ligne du numéro de l'objet (index ParID) ; introuvable : objet vierge, false.
  // Les fils "ThreadBirthday" et "ThreadUpdateDistCum" lisent par leur propre curseur.
  bool LectureEven(TEvenement* ev);
  // Le `rang`-ième (à partir de 1) événement de libellé `libelle` de la personne `no`.
  bool LectureEven(const std::string& libelle, TEvenement* ev, long no, int rang = 1);
  bool LectureChpsSimple(TChpsSimple* chp);
  bool LectureChpsSimple(const std::string& libelle, long no, TChpsSimple* chp);
  bool GetEventByID(long id, TEvenement* ev) { ev->Enreg.No = id; return LectureEven(ev); }
  // L'objet de la ligne où se tient `ligne`, une requête dont les colonnes sont celles de
  // ColonnesEvenements() dans leur ordre (ID, Type, LibelleChamps... RANG_B) : ce que la
  // lecture d'une ligne donne, renvois au-delà des fichiers des lieux et des notes annulés.
  void GetEvenement(TEvenement* ev, SQLite::Statement& ligne);
  void GetChpsSimple(TChpsSimple* chp, SQLite::Statement& ligne);
  static std::string ColonnesEvenements();
  // Écrit l'objet : ligne neuve (numéro 0, donné par le moteur) ou ligne existante dont
  // seules les valeurs changées comptent ; rien de changé, rien d'écrit. Rend vrai si
  // une ligne a été écrite. Sauf `sansListes`, les trois listes chargées suivent.
  bool SetEvenement(TEvenement* ev, bool sansListes = false);
  bool SetChpsSimple(TChpsSimple* chp);
  // Cherche la ligne du numéro (sauf numéro réservé d'import) et l'écrit, ou l'insère.
  bool EnregistrementEven(TEvenement* ev);
  bool EnregistrementChpsSimple(TChpsSimple* chp);
  // Hors import : une ligne vide insérée, son numéro rendu (un numéro est toujours une
  // ligne). En import : le compteur tenu par BeginImport, réservé sans ligne.
  long ReturnNewNumEven();
  long ReturnNewNumChpsSimple();
  bool IsReserved(long no) const { return no == 0 || Reserves.count(no) != 0; }
  bool NoEvenExists(long id);
  bool NoChpsSimpleExists(long id);
  bool IsIdEventExists(long id);
  long GetNbEvenements();
  long GetNbChpsSimples();
  long GetNbEvenementPers(long no);
  long GetIDEventMax(bool simple = false);
  bool DataExists(const std::string& libelle, long no, int rang = 0);
  long RecupereNoPersbyIDEven(long id);
  bool IsIDevenAssocieNoPers(long id, long no);
  // Le rang suivant le plus grand de la personne (RANG_A, ou RANG_B si `commeB`).
  int GetNextRangEven(long no, bool commeB = false);

  // Les lignes de la personne `no`, en deux passes : sur NoPersA (rang -1 : ajout au bout),
  // puis sur NoPersB (rang de la ligne, moins 1 : position d'insertion). Les lignes de
  // Type 0 vont à `surEven`, les autres à `surChps`.
  void ParcoursChpsDePersonne(long no, const std::function<void(TEvenement&, int)>& surEven,
                              const std::function<void(TChpsSimple&, int)>& surChps);
  // Enregistre les listes d'une personne dans leur ordre (rang = position + 1) : lignes de
  // la personne mises à jour, lignes qui ne sont plus dans ses listes détachées d'elle,
  // objets neufs insérés (leur numéro est posé). Rend le nombre de lignes écrites.
  long EnregistrerChpsDePersonne(long no, const std::vector<TEvenement*>& evens,
                                 const std::vector<TChpsSimple*>& chps, bool sansEffacement = false,
                                 bool sansListes = false);

  // Parcours sur un second curseur : celui des autres opérations n'est pas déplacé.
  // Filtres facultatifs : libellé (vide : tous), personne (0 : toutes, sur NoPersA ou NoPersB).
  void BeginParcoursEvens(const std::string& libelle = "", long noPers = 0);
  // Vide l'objet, saute `deplacement` lignes, le remplit ; false à la fin.
  bool GetEvenParcours(TEvenement* ev, long deplacement = 0);
  void EndParcoursEvens();
  void BeginParcoursChpsSimple(const std::string& libelle = "", long noPers = 0);
  bool GetChpsSimpleParcours(TChpsSimple* chp, long deplacement = 0);
  void EndParcoursChpsSimple();
  // Parcours des deux sortes de lignes à la fois, dans l'ordre des numéros, mêmes filtres.
  // GetDataParcours remplit `ev` pour un événement, `chp` pour un champ simple (l'autre reste
  // vierge, numéro 0 ; un pointeur nul saute la ligne de sa sorte) ; false à la fin.
  void BeginParcoursDonnees(const std::string& libelle = "", long noPers = 0);
  bool GetDataParcours(TEvenement* ev, TChpsSimple* chp);
  void EndParcoursDonnees();

  // Personne supprimée (`restaure` faux) : ses lignes cachées, numéros de personnes mis en
  // négatif ; restaurée : remis, sauf une ligne dont l'autre personne est encore supprimée.
  void MasquerChpsOfPerson(long no, bool restaure);
  void MasquerPersAssociee(long idEven, bool masquer);
  void MasquerCitationsOfPerson(long no, bool restaure);
  void GetListIdPersNegatif(std::set<long>& numeros);
  // Efface la ligne et ses sources, illustrations, personnes citées.
  void SupprimeEvenDefinitvement(long id);
  void DeleteNoPers(long n);
  void EvenChangeID(long ancien, long nouveau);
  void EvenChangeNoPersA(long id, long no, bool commeB = false);
  void RenameEven(const std::string& ancien, const std::string& nouveau);
  void ChangeTypeEvenement(long id, int type);
  // Toutes les lignes de ce libellé deviennent des événements (Type 0) ; rend leur nombre.
  long ChpsSimpleEven(const std::string& libelle);
  // Le changement d'un champ du catalogue porté sur ses lignes : chaque ligne du libellé
  // `libelle` prend `nouveauLibelle` (vide : gardé) et le Type `type` (0 événement, 1 champ
  // simple ; négatif : gardé). Rend le nombre de lignes changées. Le descripteur (TChpCs),
  // au-dessus de la base, donne son libellé d'avant et d'après.
  long ModifChampsAvecLeLibelle(const std::string& libelle, const std::string& nouveauLibelle, int type);
  // Les lignes RESIDENCE encore en champ simple deviennent des événements (la résidence a
  // une date et un lieu) ; rend leur nombre.
  long UpdateResidence();
  // Le plus grand numéro de source, d'illustration (0 sans ligne) : la borne des façades.
  long GetIDSourceMax();
  long GetIDIllustrationMax();

  // Requêtes des écrans (evenements_requetes.cpp) : numéros d'événements (Type 0) dans l'ordre
  // de _DATE puis du numéro ; personnes (numéros positifs) dans l'ordre des numéros.
  void ApplyFilterEvent(const TStructFilterEvent& filtre, std::vector<long>& evens);
  void GetFilteredEventPerson(const TStructFilterEvent& filtre, std::set<long>& personnes);
  void FiltreEventByLieuDate(long lieu, long dateMin, long dateMax, std::vector<long>& evens);
  // Les événements qui ont au moins une illustration, par numéro.
  void GetAllEventWithImages(std::vector<long>& evens);
  // Les personnes qui ont un fait en ce lieu.
  void ListePersonneLieux(long lieu, std::set<long>& personnes);
  // Les personnes citées avec cette qualité et ce lien de parenté (0 : tous).
  void ListePersonneParenteQualite(long qualite, long parente, std::set<long>& personnes);
  // La personne de la ligne changée le plus récemment (0 sans DateLastModif) ; la date du
  // dernier changement des lignes d'une personne ("" si aucune), "aaaa-mm-jj hh:mm:ss".
  long GetLastPersonEdit();
  std::string GetDateLastModif(long no);
  // Les personnes favorites : celles dont le champ simple FAVORIS (oui ou non) ne tient ni
  // un texte vide ni "0", par numéro.
  void GetPersonFavorite(std::vector<long>& personnes);
  // Chaque personne avec le texte de son champ simple DDMF (date de dernière modification,
  // "jj/mm/aaaa hh:nn:ss"), la plus récemment modifiée d'abord, puis par numéro.
  void ChargerPersDDMF(std::vector<std::pair<long, std::string>>& personnes);
  // Échange les rangs de deux personnes citées (lignes de PersAssociees).
  void SwapPersAssociees(long a, long b);
  // Rangs de citation posés la première fois (conversion) : les citations de la personne,
  // dans l'ordre de leurs lignes, prennent les rangs 1, 2... ; ConversionSetRangCitation pose
  // le rang de la citation de la personne `no` sur l'événement `idEven`.
  void ConversionRangCitation(long no);
  void ConversionSetRangCitation(long no, long idEven, long rang);
  // Chaque ligne passe sous un numéro neuf, donné après avoir avancé le compteur de `delta` :
  // copie de la ligne, listes de l'événement rattachées à la copie, ancienne ligne
  // neutralisée. Rend le plus grand numéro.
  long ShiftIDEvent(long delta);
  // Le nombre de lignes de chaque libellé de champ simple (personnes vivantes).
  void ResumerTabChpsSimple(std::map<std::string, long>& compte);
  // Façade des personnes : existence et premier numéro d'un libellé pour une personne.
  bool EvenExistsForPerson(long no, const std::string& libelle);
  long FindEvenOfPerson(long no, const std::string& libelle);
  bool ChpsSimpleExistsForPerson(long no, const std::string& libelle);
  // Une ligne de ce libellé porte-t-elle exactement cette donnée (quelle que soit la personne) ?
  bool DonneeExiste(const std::string& libelle, const std::string& donnee);
  long FindChpsSimpleOfPerson(long no, const std::string& libelle);

  // Parcours des sources et des illustrations (second curseur, comme les événements) ;
  // `idEven` 0 : toutes, par numéro ; sinon celles de l'événement, par rang.
  void BeginParcoursSources(long idEven = 0);
  bool GetSourceParcours(TSource* s);
  void EndParcoursSources();
  void BeginParcoursIllustrations(long idEven = 0);
  bool GetIllustrationParcours(TIllustration* i);
  void EndParcoursIllustrations();

  // Aides de texte et de dates des requêtes.
  static long ConvDateEnDateIndex(std::string_view date);
  // La date d'un objet : républicaine et hébraïque passent par le grégorien.
  static long ConvDateEnDateIndex(const TDateRQ& date);
  static double StrVersDateTime(std::string_view date);
  static std::string ConvAnneeEntierEnAnsiString(int n);
  static std::string ConvJourOuMoisEntierEnAnsiString(int n);
  static std::string ConvertirChaineFormatSQL(std::string_view s);
  static std::string FormatChaine_Donnee(std::string_view s, bool sql);

  // ===== Sources, illustrations, personnes citées (sources_bdd.cpp) =====
  bool LectureSource(TSource* s);
  bool EnregistrementSource(TSource* s);
  bool NoSourceExists(long id);
  long ReturnNewNumSource();
  void SwapSources(long a, long b);
  // Ajoute la source en ligne neuve, au bout de la liste de son événement (son numéro, sauf
  // numéro réservé de l'import, est remplacé par celui que la ligne reçoit) ; rend le numéro.
  long AjouterEltTableSource(TSource* s);
  // L'objet de la ligne où se tient `ligne` (colonnes : numéro, ID_EVEN, puis TYPE et
  // DESCRIPTIF, ou CHEMIN), comme les parcours les lisent.
  void GetSource(TSource* s, SQLite::Statement& ligne);
  bool LectureIllustration(TIllustration* i);
  bool EnregistrementIllustration(TIllustration* i);
  bool NoIllustrationExists(long id);
  long ReturnNewNumIllustration();
  void SwapIllustrations(long a, long b);
  long AjouterEltTableIllustration(TIllustration* i);
  void GetIllustration(TIllustration* i, SQLite::Statement& ligne);
  long GetNbIllustration(long idEven);
  void SetIllustrationDefault(long noPers, long idEven, long illustration);
  // Les trois listes d'un événement, en ordre de rang, 50 au plus.
  void ChargerSourceOfEven(TEvenement::TEnreg* e);
  void ChargerIllustrationOfEven(TEvenement::TEnreg* e);
  void ChargerPersAssocieeOfEven(TEvenement::TEnreg* e);
  // Met les lignes de l'événement d'accord avec sa liste en mémoire ; rend les lignes écrites.
  long UpdaterSourceOfEven(TEvenement* ev);
  long UpdaterIllustrationOfEven(TEvenement* ev);
  long EnregistrementPersAssociees(TEvenement* ev);
  // Écrit la personne citée de la place i : `insertion`, une ligne neuve (rang suivant parmi
  // les citations de la personne citée) ; sinon la ligne de l'événement qui cite déjà cette
  // personne (son rang gardé). false sans rien écrire pour une place vide, un événement
  // sans numéro, ou une mise à jour sans ligne.
  bool SetPersAssociee(TEvenement* ev, int i, bool insertion);
  // Renumérote de 0 les rangs des lignes de l'événement (table Sources ou Illustrations).
  long UpdateRang(const std::string& table, long idEven);
  // Les événements où la personne est citée, en ordre de rang (100 au plus).
  void ChargerCitationsDePersonne(long no, std::vector<long>& evens);
  // Le même sous le nom du format ; la forme qui prend une TPerson est dans la couche personne.
  void ChargerLienCitationOfPerson(long no, std::vector<long>& evens) { ChargerCitationsDePersonne(no, evens); }
  void EnregistreOrdreCitations(long no, const std::vector<long>& evens);
  bool PersIsCitee(long no);
  void UpdatePersCiteeBuffer(long idEven);
  void RecupeNumPersABEven(long idEven, std::set<long>* numeros);
  // Les fichiers ordinaires sous Images/ que plus aucune illustration d'un événement ne
  // tient (chemins absolus, dans l'ordre du nom) ; la liste passe les fichiers .IEV.
  // CleanIllustrationsNonUtilisees les efface et en rend le compte. Un lien symbolique
  // n'est jamais suivi ni effacé ; l'abandon de la progression arrête entre deux fichiers.
  void ChargeIllustrationsNonUtilisees(TProgression* progression, std::vector<std::string>& liste);
  void CleanIllustrationsNonUtilisees(TProgression* progression, int& nb);
  std::vector<std::string> CheminsIllustrationsUtilisees();

 private:
  void Connecte(bool lectureSeule);
  void ConnecteSelonAcces(bool lectureSeule);
  void ConnecteLectureSeule();
  bool ConnecteSansEcrire();
  bool ChargeImageEnMemoire(const void* octets, size_t taille);
  void AppliqueReglages(bool exclusif);
  void EffaceIndexPartageOrphelin();
  void CreeTable(const std::string& table);
  void Restructure(const std::string& table, const std::string& sql);
  void UpdateTableTranscription();
  void AddColumnGeoAddress();
  void AjouterTypeDateEven();
  // Refait les index des événements qu'un import ôte, s'il en manque.
  void RefaitIndexManquants();
  long ReserveNumero(const char* table, const char* colonneId);
  void MetDeCoteAncienneBase();
  [[noreturn]] void ErreurMoteur(const std::exception& e) const;
  // Événements (evenements_bdd.cpp).
  bool EcritEven(TEvenement* ev, const TLigneEven* connue, bool sansListes);
  bool EcritChps(TChpsSimple* chp, const TLigneEven* connue);
  void ChasseDuCache(long no);
  // Insère une ligne neuve de la table des événements ; rend son numéro.
  long InsereLigne(const TLigneEven& ligne, long no);
  bool PersonneSupprimee(long no);
  long AnnuleSiSupLong(long valeur, const std::function<long()>& compte) const;
  long Ecrit(SQLite::Statement& requete);
  std::set<long> Reserves, ReservesSources, ReservesIllustrations;
  std::unique_ptr<SQLite::Statement> ParcoursEvens, ParcoursChps, ParcoursSources, ParcoursIllustrations;
  std::unique_ptr<SQLite::Statement> ParcoursDonnees;
  // La ligne `idLigne` de PersAssociees (0 : une ligne neuve) d'après la place i.
  long EcritPersAssociee(const TEvenement::TEnreg& e, int i, long idLigne);
  int ColonneDateModif = -1;  // -1 pas encore vu, 0 absente, 1 présente

  std::string CheminAdb;
  std::string Version;
  TAccesDossier Acces;
  int IdBDD;
  std::string NomSession;
  bool LectureSeuleEffective = false;
  bool EnMemoire = false;  // connectée à une image par ChargeImage
  long CompteurImport = 0;
  std::unique_ptr<SQLite::Database> Bdd;
  std::unique_ptr<SQLite::Transaction> Transaction;
  std::unordered_map<std::string, std::unique_ptr<SQLite::Statement>> Requetes;
  std::unordered_map<std::string, bool> Blocages;
};

template <typename F>
auto TModuleBDD::Protege(F&& f) -> decltype(f()) {
  try {
    return f();
  } catch (const std::exception& e) {
    ErreurMoteur(e);
  }
}

}  // namespace rqbase
