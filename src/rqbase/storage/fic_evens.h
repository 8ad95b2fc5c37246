// TFicEvens, TFicChpsSimple, TFicSources, TFicIllustrations, TFicExtEvens : les façades
// des événements, champs simples, sources, illustrations et débordements d'événements.
//
// Tout appelant passe par elles, quel que soit l'âge du dossier :
// - dossier actuel (année de version 2020) : chaque opération va à la base relationnelle
//   (TModuleBDD) ; la façade n'ouvre, ne crée ni ne touche aucun fichier à elle ;
// - dossier de 2009 : elle lit les anciens fichiers d'enregistrements (.evn, .chs, .src,
//   .ill, .evx), qui ne servent plus qu'à la conversion. Ils ne sont jamais écrits ni
//   créés : un fichier absent laisse une façade vide (compte nul). Un numéro neuf vient de
//   la base quand elle est là pour être écrite (la conversion), 0 sinon.
//
// Formes sur le disque des anciens fichiers : docs/formats.md, « Anciens fichiers ».
// Ce qu'un appelant peut tenir pour sûr : un numéro hors de 1..compte, un dossier en
// erreur ou une façade sans base donnent un objet vierge et false, jamais une exception
// ni une lecture hors du fichier ; un texte sans zéro final est coupé à son champ.
#pragma once
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/evenement.h"
#include "rqbase/storage/fic_enreg.h"

namespace rqbase {

class TFicExtEvens;

#pragma pack(push, 1)
// Une personne citée dans les anciens fichiers : 16 octets.
struct TPersCiteeAncienne {
  int32_t No;
  uint8_t Octet;
  char Bourrage[3];
  int32_t LienQualite;
  int32_t LienParente;
};

// .evn, 204 octets ; dans l'enregistrement 0, NoPersA tient le compte.
struct TEvenement::TEnregPrive {
  char Libelle[21];
  char Bourrage[3];
  int32_t NoPersA;
  int32_t NoPersB;
  char Date[16];  // TDateRQ : acte (3), calendrier (1), texte (11), puis un octet perdu
  int32_t Lieu;
  char LieuDit[52];
  int32_t Note;
  int32_t IllustrationParDefaut;
  TPersCiteeAncienne PersCitees[4];
  int32_t Illustrations[2];
  int32_t Sources[4];
  int32_t NoExt;  // enregistrement de débordement dans .evx, 0 sans
};

// .evx, 420 octets ; dans l'enregistrement 0, NoEven tient le compte.
struct TExtEvenement::TEnreg {
  int32_t NoEven;
  char Donnee[101];
  char Bourrage[3];
  TPersCiteeAncienne PersCitees[16];  // personnes citées 5 à 20
  int32_t Illustrations[8];           // 3 à 10
  int32_t Sources[6];                 // 5 à 10
};

// .chs, 132 octets ; dans l'enregistrement 0, NoPersA tient le compte.
struct TEnregRq {
  char Libelle[21];
  char Donnee[103];
  int32_t NoPersA;
  int32_t NoPersB;
};

// .src, 336 octets ; dans l'enregistrement 0, NoEven tient le compte. (TSource::TEnreg est
// la forme en mémoire : la forme du disque porte son propre nom.)
struct TEnregSourceAncien {
  int32_t NoEven;
  char Type[31];
  char Descriptif[301];
};

// .ill, 268 octets ; le compte de l'enregistrement 0 est un texte, la première ligne de
// Chemin. Le premier entier est lu comme l'événement propriétaire, comme pour une source.
struct TEnregIllustrationAncien {
  int32_t NoEven;
  int32_t Entier2;
  char Chemin[260];
};
#pragma pack(pop)

static_assert(sizeof(TPersCiteeAncienne) == 16);
static_assert(sizeof(TEvenement::TEnregPrive) == 204);
static_assert(offsetof(TEvenement::TEnregPrive, NoPersA) == 24);
static_assert(offsetof(TEvenement::TEnregPrive, Date) == 32);
static_assert(offsetof(TEvenement::TEnregPrive, Lieu) == 48);
static_assert(offsetof(TEvenement::TEnregPrive, LieuDit) == 52);
static_assert(offsetof(TEvenement::TEnregPrive, Note) == 104);
static_assert(offsetof(TEvenement::TEnregPrive, PersCitees) == 112);
static_assert(offsetof(TEvenement::TEnregPrive, Illustrations) == 176);
static_assert(offsetof(TEvenement::TEnregPrive, Sources) == 184);
static_assert(offsetof(TEvenement::TEnregPrive, NoExt) == 200);
static_assert(sizeof(TExtEvenement::TEnreg) == 420);
static_assert(offsetof(TExtEvenement::TEnreg, PersCitees) == 108);
static_assert(offsetof(TExtEvenement::TEnreg, Illustrations) == 364);
static_assert(offsetof(TExtEvenement::TEnreg, Sources) == 396);
static_assert(sizeof(TEnregRq) == 132);
static_assert(offsetof(TEnregRq, NoPersA) == 124);
static_assert(sizeof(TEnregSourceAncien) == 336);
static_assert(offsetof(TEnregSourceAncien, Descriptif) == 35);
static_assert(sizeof(TEnregIllustrationAncien) == 268);

// Un ancien fichier d'enregistrements, ouvert en lecture seule s'il existe (jamais créé,
// jamais écrit). Son compte est lu là où le fichier le tient, borné par sa taille.
class TFicAncien : public TFicEnregBase {
 public:
  // Où l'en-tête tient le compte : un entier de 32 bits à `decalage`, ou la première
  // ligne du texte qui commence à `decalage` (`texte`).
  TFicAncien(TContexteDossier* gest, TTypeFichier type, size_t taille, size_t decalage, bool texte = false);
  void EcritureEntete() override {}
  void LectureEntete() override;
  // Lit l'enregistrement `no` s'il est dans 1..compte et que le dossier n'est pas en
  // erreur ; sinon le tampon reste à zéro et rien n'est lu. true si des octets sont venus.
  bool Lit(long no, void* tampon);

 private:
  size_t DecalageCompte;
  bool CompteTexte;
};

// Ce que les façades ont en commun : le dossier, la base, et l'ancien fichier d'un dossier
// de 2009 avec son parcours. Les opérations « ancien fichier ou base » s'y écrivent une fois.
class TFacade {
 public:
  bool EstAncien() const { return Ancien != nullptr; }
  TModuleBDD* Bdd() const { return Base; }
  TContexteDossier* Gest() const { return Gestion; }
  TFicAncien* Fichier() const { return Ancien.get(); }
  // Ce qu'un parcours ou une recherche lit d'un enregistrement ancien : `lit(no, libellé,
  // personne A, personne B)` rend false pour un enregistrement illisible.
  using TLitAncien = std::function<bool(long no, std::string& libelle, long& a, long& b)>;

 protected:
  // `bdd` peut être nul (dossier ouvert sans sa base) : tout rend vide. L'ancien fichier
  // (type, taille, où est son compte) n'est ouvert que dans un dossier de 2009.
  TFacade(TContexteDossier* gest, TModuleBDD* bdd, TTypeFichier type, size_t taille, size_t decalageCompte,
          bool compteTexte = false);

  // Les numéros neufs viennent de la base, même dans un dossier de 2009 : pendant sa
  // conversion, les façades lisent les anciens fichiers et la base reçoit ce qui s'écrit.
  // Sans base ouverte en écriture, aucun numéro (0).
  bool BaseEcrivable() const;
  // La borne des numéros : le compte de l'ancien fichier, ou ce que la base rend.
  template <typename F>
  long Borne(F base) const {
    return Ancien ? Ancien->NbEnreg() : Base ? base() : 0;
  }
  // Un numéro qui désigne un objet : dans 1..compte de l'ancien fichier, ou une ligne.
  template <typename F>
  bool Valide(long no, F base) const {
    return Ancien ? no >= 1 && no <= Ancien->NbEnreg() : Base && no > 0 && base();
  }

  void DebutParcoursAncien(const std::string& libelle, long noPers);
  void FinParcoursAncien() { Curseur = -1; }
  // Le numéro suivant (après `deplacement` autres) qui a un libellé et répond aux filtres,
  // dans l'ordre des numéros ; 0 à la fin ou parcours fermé.
  long SuivantAncien(long deplacement, const TLitAncien& lit);
  // Le premier numéro dont la personne est A ou B et le libellé celui donné ; 0 sans.
  long ChercheAncien(long no, const std::string& libelle, const TLitAncien& lit);

  TContexteDossier* Gestion;
  TModuleBDD* Base;
  std::unique_ptr<TFicAncien> Ancien;

 private:
  long Curseur = -1;  // dernier numéro lu par le parcours ; -1 fermé
  std::string LibelleParcours;
  long PersParcours = 0;
};

// Les événements (.evn en 2009, lignes de Type 0 sinon).
class TFicEvens : public TFacade {
 public:
  TFicEvens(TContexteDossier* gest, TModuleBDD* bdd);

  // Un numéro neuf de la base (une ligne neuve, ou le compteur d'import) ; 0 sans base
  // ouverte en écriture.
  long ReturnNewNum();
  // La borne des numéros : le compte du fichier, ou le plus grand numéro de la table (les
  // événements et les champs simples partagent leurs numéros).
  long GetNbEnreg();
  bool NoEvenValide(long no);
  // `no` s'il désigne un événement, 0 sinon.
  long AnnuleSiInconnu(long no);
  // Parcours sur son propre curseur, filtré comme BeginParcoursEvens : ouvert, lu (ligne
  // après ligne), fermé.
  void PreProcessSearch(const std::string& libelle = "", long noPers = 0);
  bool GetEvenParcours(TEvenement* ev, long deplacement = 0);
  void PostProcessSearch();
  bool EvenExistsForPerson(long no, const std::string& libelle);
  long FindEvenOfPerson(long no, const std::string& libelle);
  // Le premier événement de la personne dont le libellé est l'un de `libelles`, pris dans
  // leur ordre (les équivalences de la naissance sont celles du catalogue, que l'appelant
  // donne) ; 0 sans.
  long FindEvenNaissOfPerson(long no, const std::vector<std::string>& libelles = {"NAISSANCE"});
  // L'événement du numéro de l'objet (LectureEven, ou LectureAncien en 2009).
  bool LectureEven(TEvenement* ev);

  // Le débordement (.evx) que LectureAncien suit ; posé par le dossier, nul sinon.
  TFicExtEvens* Ext = nullptr;
};

// Les champs simples (.chs en 2009, lignes de Type non nul sinon).
class TFicChpsSimple : public TFacade {
 public:
  TFicChpsSimple(TContexteDossier* gest, TModuleBDD* bdd);

  long ReturnNewNum();
  long GetNbEnreg();
  bool NoChpsSimpleValide(long no);
  long AnnuleSiInconnu(long no);
  void PreProcessSearch(const std::string& libelle = "", long noPers = 0);
  bool GetChpsSimpleParcours(TChpsSimple* chp, long deplacement = 0);
  void PostProcessSearch();
  bool ChpsSimpleExistsForPerson(long no, const std::string& libelle);
  long FindChpsSimpleOfPerson(long no, const std::string& libelle);
  bool LectureChpsSimple(TChpsSimple* chp);
};

// Les sources (.src en 2009, table Sources sinon).
class TFicSources : public TFacade {
 public:
  TFicSources(TContexteDossier* gest, TModuleBDD* bdd);
  long ReturnNewNum();
  long GetNbEnreg();
  bool NoSourceValide(long no);
  bool LectureSource(TSource* s);
};

// Les illustrations (.ill en 2009, table Illustrations sinon).
class TFicIllustrations : public TFacade {
 public:
  TFicIllustrations(TContexteDossier* gest, TModuleBDD* bdd);
  long ReturnNewNum();
  long GetNbEnreg();
  bool NoIllustrationValide(long no);
  bool LectureIllustration(TIllustration* i);
};

// Les listes de tous les événements du dossier (sources, illustrations, personnes citées),
// textes compris, lues en une requête par table : pour qui parcourt tous les événements
// (l'export), au lieu de trois requêtes par événement et d'une par source ou illustration.
//
// Ce qu'un appelant peut tenir pour sûr : la liste d'un événement est celle que
// ChargerSourceOfEven, ChargerIllustrationOfEven et ChargerPersAssocieeOfEven donneraient
// (même ordre, 50 au plus), et chaque source ou illustration celle que sa lecture par numéro
// donnerait. Le numéro 0 et un événement sans liste donnent une liste vide. Une base absente
// ou fermée donne des listes vides. Ce qui est lu est une photographie : une écriture faite
// ensuite n'y paraît pas.
class TListesDesEvens {
 public:
  explicit TListesDesEvens(TModuleBDD* bdd);

  // Une liste : des objets contigus (pointeur et nombre).
  template <typename T>
  struct TTranche {
    const T* Debut = nullptr;
    size_t Nombre = 0;
    const T* begin() const { return Debut; }
    const T* end() const { return Debut + Nombre; }
    size_t size() const { return Nombre; }
  };
  TTranche<TSource> Sources(long noEven) const;
  TTranche<TIllustration> Illustrations(long noEven) const;
  TTranche<TPersAssociee> PersAssociees(long noEven) const;

 private:
  // Les objets rangés par événement, les événements en ordre croissant : une recherche
  // dichotomique trouve la tranche.
  template <typename T>
  struct TParEven {
    std::vector<int64_t> Evens;    // un par tranche, croissants
    std::vector<size_t> Debuts;    // début de chaque tranche dans Objets (et la fin au bout)
    std::vector<T> Objets;
    // Ajoute un objet à l'événement `even` (lignes lues dans l'ordre des événements) ; false
    // quand l'événement a déjà sa liste pleine.
    bool Place(int64_t even, size_t plafond);
    void Ferme() { Debuts.push_back(Objets.size()); }
    TTranche<T> De(long noEven) const;
  };
  TParEven<TSource> Sources_;
  TParEven<TIllustration> Illustrations_;
  TParEven<TPersAssociee> Citees_;
};

// Une transaction de lecture autour d'un long parcours de la base (l'export) : chaque
// requête ne reprend ni ne rend le verrou de la base, et tout ce qui est lu vient du même
// état. Sans effet quand une transaction est déjà ouverte ou que la base est absente ou
// fermée. La fin valide sans rien défaire : ce qui aurait été écrit entre-temps reste écrit.
class TLectureSuivie {
 public:
  explicit TLectureSuivie(TModuleBDD* bdd);
  ~TLectureSuivie();
  TLectureSuivie(const TLectureSuivie&) = delete;
  TLectureSuivie& operator=(const TLectureSuivie&) = delete;

 private:
  TModuleBDD* Bdd = nullptr;  // non nul quand la transaction est à nous
};

// Les débordements d'événements (.evx) : un fichier de 2009 seulement ; dans un dossier
// actuel les listes d'un événement sont des lignes et cette façade est vide.
class TFicExtEvens : public TFacade {
 public:
  explicit TFicExtEvens(TContexteDossier* gest);
  long GetNbEnreg() const { return Ancien ? Ancien->NbEnreg() : 0; }
  // L'enregistrement `no` (zéro hors de 1..compte) ; true s'il a été lu.
  bool Lecture(long no, TExtEvenement::TEnreg& enreg);
};

}  // namespace rqbase
