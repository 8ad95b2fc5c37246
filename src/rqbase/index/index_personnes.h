// L'index des personnes : qui porte un nom donné.
//
// Deux niveaux tenus égaux : la table IndexNomPrenoms de la base, la durable, et la table
// triée en mémoire (TGestEltIndex) sur laquelle toutes les recherches se font, gardée d'une
// ouverture à l'autre dans le fichier <nom>.prx du dossier. TFicIndexPerson possède les deux.
// Une personne a une ligne par nom et prénom (au plus 10) ; une personne supprimée n'en a pas.
//
// Ce qu'un appelant peut tenir pour sûr :
// - Après ModifClef ou SupprimeClef, la table et la mémoire disent la même chose de la
//   personne ; un enregistrement de la personne inchangée ne change aucun identifiant ni
//   aucune ligne, et les identifiants existants sont repris avant d'en créer.
// - Le fichier .prx n'est jamais cru sur parole : version, contrôle des octets, nombre de
//   lignes, plus grand identifiant de la table et identifiant du dossier doivent s'accorder,
//   sinon la mémoire est refaite depuis la table. Le fichier est effacé avant la première
//   modification d'une session d'écriture et réécrit d'un coup à la fermeture : un
//   programme arrêté net ne laisse jamais un fichier en retard sur la table.
// - La mémoire n'est chargée qu'au premier usage (Table(), donc toute recherche) : ouvrir un
//   dossier sans chercher ne lit pas le fichier. Une modification faite avant ce premier
//   usage ne touche que la table (et efface le fichier) : la mémoire se fera depuis la table.
// - Un dossier en lecture seule n'est jamais modifié : ni la table, ni le fichier.
#pragma once
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "rqbase/index/ligne_index.h"
#include "rqbase/index/recherche_index.h"

namespace SQLite {
class Statement;
}

namespace rqbase {

class TContexteDossier;
class TFicIndexPerson;
class TPerson;
class TProgression;

// Une ligne de la table IndexNomPrenoms.
class TIndexPerson {
 public:
  using TEnreg = TEnregIndex;

  // Un identifiant >= 1 ou -2 est lu ; tout autre donne une ligne à zéro.
  explicit TIndexPerson(TFicIndexPerson* fic, long id = 0);

  // -3 garde l'identifiant courant ; -1 lit la ligne courante du parcours de la table (sans
  // recherche) ; sinon la ligne de cet identifiant. false (ligne à zéro) si elle manque.
  bool Lecture(long id);
  // Écrit la ligne sous `id` (nouveau : une ligne neuve, son identifiant rendu). -1 si la
  // ligne manque, si elle appartient à une autre personne (refus noté au journal), ou si le
  // dossier ne peut être écrit.
  long Enregistrement(long id, TFicIndexPerson* fic, bool nouveau);
  // Les colonnes communes à toutes les lignes de la personne : rangs à 0, type, marque de
  // suppression, sexe, numéro, années.
  void Set(TPerson* p);
  // Les bornes de la vie en années entières ; une borne NaN, infinie, hors des années d'un
  // entier 16 bits ou valant la sentinelle 1000000 donne 0 (inconnue).
  static void SetAnneeMinAnneeMax(TPerson* p, float min, float max, short& anneeMin, short& anneeMax);
  // Ligne abîmée : numéro négatif ou au-delà du fichier des personnes, textes trop longs.
  bool EnregFoireux(const TEnreg& e) const;
  // Les identifiants des lignes de la personne, du plus grand au plus petit.
  void GetIDIndexByNoPers(long no, std::vector<int>& ids);

  long ID = 0;
  TEnreg Enreg;
  // Longueurs des textes lus de la table avant leur coupe (EnregFoireux les juge).
  size_t LongueurNomLu = 0, LongueurPrenomLu = 0;

 private:
  TFicIndexPerson* Fic;
};

class TFicIndexPerson {
 public:
  // Version du fichier .prx (voir docs/formats.md).
  static constexpr int32_t kVersionFichier = 2;

  // `nouveau` : l'ancien fichier d'index est effacé. Sinon LectureEntete. La table en mémoire
  // vient du fichier, ou de la table de la base, au premier usage.
  TFicIndexPerson(TContexteDossier* gest, bool nouveau);
  // Écrit le fichier si la mémoire a changé dans un dossier modifiable.
  ~TFicIndexPerson();
  TFicIndexPerson(const TFicIndexPerson&) = delete;
  TFicIndexPerson& operator=(const TFicIndexPerson&) = delete;

  // Le nombre de lignes de IndexNomPrenoms (0 sans base).
  long LectureEntete();
  void EcritureEntete() {}
  long NbLignes() const { return Lignes; }

  // Met l'index d'accord avec la personne (supprimée : SupprimeClef). Le booléen est gardé
  // pour la forme d'appel ; il ne change rien.
  void ModifClef(TPerson* p, bool inutilise = true);
  // Ôte la personne de la mémoire ; avec `table`, ses lignes de la base aussi.
  void SupprimeClef(TPerson* p, bool table);
  static std::string TransformeEnCaractereIndex(const std::string& texte);

  // Les années d'index d'une personne (numéro) quand l'appelant les sait déjà ; false : à
  // demander à Fourchette. Elles doivent être celles que Fourchette donnerait.
  using TAnneesConnues = std::function<bool(long no, short& anneeMin, short& anneeMax)>;

  // Refait la table de la base depuis les personnes, puis la mémoire si elle était chargée
  // ou si `faitMemoire` la demande (elle se fait alors des lignes écrites, comme
  // ReinitTableIndexBis la ferait de la table, sans relire celle-ci). false si abandonné (la
  // table d'avant reste entière : "INDEXNAME" ne doit pas être marqué à jour). `connues`
  // épargne l'estimation des personnes dont un import a déjà les années ; sans Fourchette
  // posée, les années restent inconnues, comme sans `connues`.
  bool ReinitTableIndex(TProgression* progression = nullptr, const TAnneesConnues& connues = nullptr,
                        bool faitMemoire = false);
  // Refait la mémoire depuis la table de la base (et efface le fichier).
  void ReinitTableIndexBis(TProgression* progression = nullptr);
  // Vide la mémoire (elle sera relue au prochain usage).
  void Raz();

  // La table en mémoire, chargée au premier appel.
  TGestEltIndex& Table();
  bool TableChargee() const { return Memoire != nullptr; }
  // D'où vient la mémoire chargée : true du fichier, false de la table de la base.
  bool ChargeeDuFichier() const { return DuFichier; }
  // Écrit le fichier maintenant (s'il y a lieu) ; false si l'écriture a échoué.
  bool SauvegardeFichier();

  // Les lignes que ModifClef écrirait pour la personne (au plus 10), sans les écrire.
  static std::vector<TEnregIndex> LignesDePersonne(TPerson& p, short anneeMin, short anneeMax);

  // La fourchette de vie d'une personne, en années décimales (min, max) ; false si elle ne
  // se calcule pas. Posée par le dossier quand l'estimateur des dates de vie est là ; nulle,
  // les années de l'index restent inconnues (0).
  std::function<bool(TPerson&, float&, float&)> Fourchette;
  // Les équivalences de noms du dossier, données à la table en mémoire (posées par le dossier).
  const TTabNomEquiv* NomsEquiv = nullptr;

  // --- Fichier .prx : forme et relecture (séparées pour le fuzz et les tests) ---
  struct TControle {
    long Lignes = 0;      // lignes de la table quand le fichier a été écrit
    long IdMax = 0;       // plus grand identifiant de la table
    std::string IdGenea;  // identifiant du dossier
  };
  static std::string FormeFichier(const TGestEltIndex& table, const TControle& controle);
  // false si les octets ne sont pas un fichier d'index entier et cohérent ; `table` est alors
  // vide. Le contrôle lu est rendu pour être confronté à la base.
  static bool LitFormeFichier(const std::string& octets, TGestEltIndex& table, TControle& controle);
  // Ajoute aux octets leur contrôle (les 8 derniers octets d'un fichier d'index).
  static void AjouteControle(std::string& octets);

  TContexteDossier* Gest() const { return Contexte; }
  // Le parcours de la table ouvert par ReinitTableIndexBis (Lecture(-1) le lit).
  SQLite::Statement* Parcours = nullptr;

 private:
  friend class TIndexPerson;
  bool PeutEcrire() const;
  void Charge();
  bool ChargeFichier();
  void SuitLeFichier();
  void MarqueModifiee();
  // La mémoire prend `table` (classée ici) et le contrôle de la base.
  void InstalleMemoire(std::unique_ptr<TGestEltIndex> table, TProgression* prog);
  TControle ControleBase();
  void RelieTable();
  void EffaceFichier();
  std::string CheminFichier() const;

  TContexteDossier* Contexte;
  std::unique_ptr<TGestEltIndex> Memoire;
  // Le contrôle que le fichier portera : pris de la base au chargement, tenu à jour par les
  // modifications (la base est déjà fermée quand le fichier s'écrit).
  TControle Session;
  long Lignes = 0;
  bool Modifiee = false;
  bool DuFichier = false;
};

}  // namespace rqbase
