// TGestEltIndex : la table triée en mémoire de l'index des noms, et la recherche par nom.
//
// Une ligne par nom et prénom d'une personne (TEltIndex), rangées dans l'ordre de la table
// (voir ligne_index.h). Toutes les recherches passent par elle : la table IndexNomPrenoms de
// la base n'est jamais lue pour chercher. Les personnes ne sont lues que pour les critères qui
// les demandent (conjoints, parents, exclusions) et pour écarter une ligne qui désigne une
// personne supprimée ou hors du fichier : une ligne fausse ne fait jamais lister une personne.
//
// Critères (TRechSimple). Les textes passent par FormatIndex (capitales nues, sans particule,
// caractères d'index) ; plusieurs noms se séparent par ';', plusieurs prénoms par des blancs,
// et une personne trouvée par plusieurs couples (nom, prénom) ne figure qu'une fois. Un critère
// vide ne filtre pas. Un '*' fait du critère un masque (StrCmpMasque). Le soundex, demandé pour
// le nom ou pour le prénom, rattrape ce que le texte n'a pas trouvé. Valeurs spéciales :
// "ZPASZDEZNOM" (pas de nom), "ZPASZDEZPRENOM" (pas de prénom), et dans le critère des parents
// "ZPASZDEZPERE", "ZPASZDEZMERE" (pas de père, pas de mère).
#pragma once
#include <atomic>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "rqbase/index/ligne_index.h"
#include "rqbase/storage/evenement.h"
#include "rqbase/storage/g_tblvar.h"

namespace rqbase {

class TFicPersons;
class TPerson;
class TTabNomEquiv;
struct TSearchPersEdit;
class TProgression;

// Compare un texte à un masque : 0 s'il y répond, non nul sinon. Sans '*', le texte doit être
// égal au masque (le résultat est alors celui de strcmp). Avec '*', le masque se coupe en
// morceaux sur les '*' : chaque morceau doit se trouver dans le texte, dans l'ordre et sans se
// chevaucher ; le premier morceau doit commencer le texte si le masque ne commence pas par
// '*', le dernier le finir si le masque ne finit pas par '*'. Un masque fait de '*' seuls
// répond à tout texte.
int StrCmpMasque(const char* texte, const char* masque);

class TGestEltIndex : public TTableTV {
 public:
  // Les critères d'une recherche. RazTotal remet tout ; RazExclu les seules exclusions.
  struct TRechSimple {
    TRechSimple() = default;
    void RazTotal();
    void RazExclu();

    // Quatre textes : noms (';'), prénoms (blancs), nom et prénoms d'un conjoint.
    std::string Nom, Prenoms, NomConjoint, PrenomsConjoint;
    long NoPers = -1;  // -1 : toute personne ; sinon seule cette personne répond

    // Dix drapeaux, baissés au départ.
    bool SoundexNom = false;
    bool SoundexPrenom = false;
    bool SoundexConjoint = false;  // soundex pour le nom et les prénoms du conjoint
    bool SansConjoint = false;     // seulement les personnes sans conjoint
    bool SansEnfant = false;       // seulement les personnes sans enfant
    bool AvecParents = false;      // seulement les personnes qui ont père et mère
    bool Hommes = false;           // Hommes et Femmes : raccourcis de Sexe
    bool Femmes = false;
    bool Ajoute = false;        // la liste n'est pas vidée avant la recherche
    bool Equivalences = false;  // chaque nom et prénom cherché sous toutes ses graphies (NomsEquiv)
    // Deux drapeaux levés au départ : les personnes et les témoins répondent.
    bool Personnes = true;
    bool Temoins = true;
    // Une période : la vie connue de la personne (AnneeMin..AnneeMax) doit la toucher.
    bool AvecPeriode = false;
    int AnneeDebut = 0, AnneeFin = 0;
    char Sexe = '?';                           // '?' : tous ; 'M', 'F' ; ' ' les personnes de sexe blanc
    std::string Parents;                       // "ZPASZDEZPERE", "ZPASZDEZMERE", ou les deux séparés par ';'
    int NbConjointsMin = 0, NbEnfantsMin = 0;  // au moins ce nombre de conjoints, d'enfants
    long Pere = 0, Mere = 0;                   // seulement les enfants de ce père, de cette mère (0 : sans)
    long Limite = 0;                           // au plus ce nombre de personnes (0 : sans limite)
    // Un fait de la personne (événement ou champ simple) : libellé du catalogue (masque permis ;
    // vide : pas de critère de fait), donnée (masque sur le texte plié comme un nom ; vide :
    // toute donnée), années de la date d'un événement (0 : borne ouverte).
    std::string Evenement, DonneeEvenement;
    int EvenAnneeDebut = 0, EvenAnneeFin = 0;

    // Exclusions.
    long NoExclu = -1;                  // une personne exclue, avec sa lignée si demandé
    uint8_t CriteresExclu[16] = {};     // réservés
    bool ExcluParPere = false;          // remonter par les pères
    bool ExcluParMere = false;          // remonter par les mères
    long ExcluPere = 0, ExcluMere = 0;  // exclut les enfants de ce père, de cette mère
    int Profondeur = 0;                 // générations remontées (0 : les parents seuls)
    std::set<long> Exclus;              // numéros exclus
  };

  TGestEltIndex(long initial = 2, long croissance = 2000, int tailleMoyenne = 92)
      : TTableTV(initial, croissance, tailleMoyenne) {}

  // Les personnes lues pour les critères et les vérifications ; nul : aucune n'est lue (les
  // critères de conjoint, de parents et les exclusions par lignée ne répondent plus).
  TFicPersons* Personnes = nullptr;
  // Les équivalences de noms du dossier ; nul : TRechSimple::Equivalences est sans effet.
  const TTabNomEquiv* NomsEquiv = nullptr;

  // Une personne trouvée, telle qu'une liste de résultats la montre : nom et prénoms de la
  // fiche, sexe ('M', 'F' ou '?'), années de sa vie connue ou estimée (0 : inconnue).
  struct TLigneResultat {
    long Numero = 0;
    std::string Nom, Prenoms;
    char Sexe = '?';
    int AnneeMin = 0, AnneeMax = 0;
  };

  // --- Recherche ---
  // Les personnes qui répondent, dans l'ordre de la table (celui de leur première ligne
  // trouvée), chacune une fois : `noms` reçoit "NOM Prénoms", `numeros` les numéros.
  // Rend le nombre de personnes trouvées par cet appel.
  long RechercheSimple(const TRechSimple& rs, std::vector<std::string>* noms, std::vector<long>* numeros,
                       TProgression* progression = nullptr);
  // La même recherche pour une liste : une ligne par personne, dans le même ordre.
  long RechercheSimpleLV(const TRechSimple& rs, std::vector<TLigneResultat>& lignes,
                         TProgression* progression = nullptr);
  // La même, limitée aux personnes d'un arbre affiché (`affichees`) ; la limite de `rs` ne
  // compte que celles-là.
  long RechercheSimpleLVArbAff(const TRechSimple& rs, const std::set<long>& affichees,
                               std::vector<TLigneResultat>& lignes, TProgression* progression = nullptr);
  // Les personnes trouvées par une recherche, chacune une fois, avec le rang de sa première
  // ligne trouvée (le plus petit gardé). Chaque numéro de personne a sa place dans un tableau
  // tenu d'une recherche à l'autre et daté par la recherche : ni arbre ni hachage à chaque ligne
  // lue, ce qui compte quand un masque court trouve des dizaines de milliers de personnes.
  class TTrouvees {
   public:
    // Oublie tout ce qui précède (une nouvelle date, pas d'effacement du tableau).
    void Commence();
    // Ce que l'on sait de `no` dans cette recherche.
    enum class TEtat { Inconnue, Ecartee, Trouvee };
    TEtat Etat(long no);
    void Ecarte(long no);
    // `no` trouvée par la ligne `rang` (ou retrouvée : le plus petit rang reste).
    void Trouve(long no, long rang);
    size_t Nombre() const { return Liste.size(); }
    // (rang, personne), dans l'ordre des rangs.
    std::vector<std::pair<long, long>>& Classees();

   private:
    static constexpr uint32_t kEcartee = UINT32_MAX;
    // Place de `no` : (date, position dans Liste ou kEcartee) ; nul au-delà du tableau direct.
    std::pair<uint32_t, uint32_t>* Place(long no, bool creer);
    std::vector<std::pair<uint32_t, uint32_t>> Places;
    std::unordered_map<long, std::pair<uint32_t, uint32_t>> Lointaines;  // numéros démesurés
    std::vector<std::pair<long, long>> Liste;
    uint32_t Date = 0;
  };
  // Un couple (nom, prénom) déjà mis en forme d'index ; les personnes trouvées vont dans
  // `trouves`.
  void RechercheSimpleNomEtConj(const TRechSimple& rs, TTrouvees& trouves, const std::string& nom,
                                const std::string& prenom);
  // Arrête une recherche en cours (appelable d'un autre fil) ; elle rend ce qu'elle a trouvé.
  void SetAbandon(bool abandon) { Abandon.store(abandon, std::memory_order_relaxed); }
  bool GetAbandon() const { return Abandon.load(std::memory_order_relaxed); }

  // Tests sur une personne : nom et prénoms tels que la fiche les porte, comparés à des
  // critères mis en forme d'index (chaque élément : particules ôtées, capitales nues).
  static bool CompareNom(const std::string& noms, const std::string& critere, bool soundex);
  static bool ComparePrenoms(const std::string& prenoms, const std::string& critere, bool soundex);
  static bool CompareNomPrenoms(const TPerson& p, const std::string& nom, const std::string& prenom, bool soundexNom,
                                bool soundexPrenom);
  // Un événement, un champ simple comparés au critère de fait (voir TRechSimple::Evenement) :
  // libellé et donnée tels que tapés ; une période demandée écarte un événement sans année.
  static bool CompareEvent(const TEvenement::TEnreg& ev, const std::string& libelle, const std::string& donnee,
                           int anneeDebut, int anneeFin);
  static bool CompareChps(const TChpsSimple::TEnreg& chp, const std::string& libelle, const std::string& donnee);
  // Vrai si un des prénoms (tels que tapés) répond au critère (tel que tapé).
  static bool IsPrenomsCorrespond(const std::string& prenoms, const std::string& critere);

  bool IsExclu(long no, const TRechSimple* rs);
  // Remonte les parents que `rs` désigne jusqu'à sa profondeur : vrai si l'un est exclu.
  bool IsExcluParentsRecursif(int profondeur, long no, const TRechSimple* rs);

  static std::string FormatIndex(const std::string& nom);
  // Les réglages de l'écran de recherche d'une personne à modifier (param_recherche.h).
  static void GetParamSearchPersEdit(TSearchPersEdit* param);

  // --- Listes de valeurs (tirées de la table, triées, sans doublon) ---
  // Les noms qui commencent par `debut` (mis en forme d'index ; vide : tous).
  void RetournePatronyme(std::vector<std::string>& liste, const std::string& debut = "") const;
  // Les prénoms portés avec ce nom (mis en forme d'index).
  void RetournePrenoms(const std::string& nom, std::vector<std::string>& liste) const;
  // Tous les prénoms de l'index.
  void RetourneToutPrenom(std::vector<std::string>& liste) const;
  // Les noms (mis en forme d'index) des personnes vivantes qui ont un fait au lieu `lieu`
  // (numéro du fichier des lieux).
  void RetournePatronymeLieu(long lieu, std::vector<std::string>& liste) const;
  // Les communes du fichier des lieux qu'au moins un fait désigne, triées, chacune une fois.
  void RetourneLieux(std::vector<std::string>& liste) const;
  // Les professions écrites (événements et champs simples PROFESSION des personnes non
  // supprimées), triées, chacune une fois.
  void RetourneProfession(std::vector<std::string>& liste) const;
  // Nom -> nombre de personnes qui le portent ; prénom -> nombre de personnes.
  void RetourneListPatronyme(std::map<std::string, long>& compte) const;
  void RetourneListPrenom(std::map<std::string, long>& compte) const;

  // --- Lignes d'une personne ---
  // Les rangs des lignes de la personne (parcours de toute la table).
  void ChercheClefPersNo(long no, std::vector<long>& rangs) const;
  // Les mêmes rangs, croissants, par le classement des lignes par personne
  // (InitClefIndexOfNoPers) : sans parcourir la table.
  void ChercheClefPersNo2(long no, std::vector<long>& rangs);
  // Ôte de la table toutes les lignes de la personne ; rend leur nombre.
  long SupprimeClefPersNo(long no);
  // Prépare FindClefIndexOfNoPers : les lignes classées par personne, faites une fois pour
  // bien des questions (ChercheClefPersNo parcourt toute la table à chaque fois).
  void InitClefIndexOfNoPers();
  // Le rang de la première ligne de la personne, ou -1. Le classement par personne est refait
  // de lui-même quand la table a changé depuis InitClefIndexOfNoPers.
  long FindClefIndexOfNoPers(long no);

  // Premier rang dont le nom est >= `nom` (bissection sur le seul nom).
  long PremierRangNom(const std::string& nom) const;

  // La recherche au son d'un nom sans masque passe par une liste des rangs classés par soundex
  // du nom, faite à la première recherche de ce genre. Toute modification de la table la rend
  // caduque : celles de TFicIndexPerson et de cette classe l'oublient d'elles-mêmes ; qui change
  // la table par les fonctions de TTableTV appelle InvalideSoundex (un changement du nombre
  // d'éléments ou des octets utilisés est vu de toute façon). Une liste en retard ne peut que
  // manquer des lignes : chaque ligne qu'elle donne est relue et jugée.
  // Le classement des lignes par personne (FindClefIndexOfNoPers) suit la même règle.
  void InvalideSoundex() {
    ParSoundex.clear();
    SoundexNb = SoundexUtilise = -1;
    ParPersonne.clear();
    ParPersonneNb = ParPersonneUtilise = -1;
  }

 private:
  struct TCritere;
  // Une des lignes d'index de la personne `no` répond aux deux critères.
  bool LignesRepondent(long no, const TCritere& nom, const TCritere& prenom, bool soundex);
  // Remplit Trouvees ; rend le nombre de personnes gardées (limite comprise). `parmi` : seules
  // ces personnes peuvent répondre.
  size_t Recherche(const TRechSimple& rs, TProgression* progression, const std::set<long>* parmi);
  long RemplitLignes(const TRechSimple& rs, std::vector<TLigneResultat>& lignes, size_t garde);
  bool PersonneValide(long no);
  bool CritereLigne(const TRechSimple& rs, const TEnregIndex& e) const;
  bool CriterePersonne(const TRechSimple& rs, long no);
  void PrepareSoundex();
  std::atomic<bool> Abandon{false};
  // Ce que la fiche de chaque numéro a dit (0 pas encore lue, 1 vivante, 2 supprimée ou
  // illisible) : une personne trouvée par bien des recherches n'est lue qu'une fois, tant
  // qu'aucune fiche n'a été écrite depuis (ValiditeEcritures).
  std::vector<uint8_t> Validite;
  uint64_t ValiditeEcritures = 0;
  TTrouvees Trouvees;
  std::vector<uint64_t> ParSoundex;  // (code du soundex << 32) | rang, trié
  long SoundexNb = -1, SoundexUtilise = -1;
  long ArretA = 0;  // nombre de personnes après lequel le parcours en cours s'arrête
  const std::set<long>* Parmi = nullptr;  // la restriction de la recherche en cours
  std::vector<uint64_t> ParPersonne;      // (personne << 32) | rang, trié
  long ParPersonneNb = -1, ParPersonneUtilise = -1;
};

}  // namespace rqbase
