// TEvenement, TChpsSimple, TSource, TIllustration, TPersAssociee : les objets d'une ligne
// de la base relationnelle (tables Evenements, Sources, Illustrations, PersAssociees).
//
// Objets courts, faits sur la pile par l'appelant, qui les possède ; ils se lisent et
// s'enregistrent par valeur à travers TModuleBDD (evenements_bdd.cpp, sources_bdd.cpp).
//
// Ce qu'un appelant peut tenir pour sûr :
// - Les textes sont en Windows-1252 et tenus à la taille de leur colonne : libellé 21
//   caractères, donnée 100 (SetDonnee ; la donnée d'un champ simple a la place de 2000
//   mais SetDonnee n'en copie que 100), lieu-dit 51, type de source 30, descriptif 300,
//   chemin d'illustration 260. Une ligne plus longue se lit coupée.
// - Numéros : 0 aucune ligne encore ; -3 au constructeur donne un objet vierge.
// - Un événement porte trois listes de 50 places (sources, illustrations, personnes citées),
//   chacune avec son drapeau « chargée » ; une liste non chargée n'est jamais touchée à
//   l'enregistrement. Les trois règles d'ajout diffèrent, voulu (voir AjoutSource,
//   AjoutIllustration, AjoutPersAssociee).
// - Un numéro de personne négatif dans une ligne veut dire personne supprimée, ligne cachée.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "rqbase/dates/daterq.h"
#include "rqbase/storage/gest_fic_pers.h"

namespace rqbase {

class TModuleBDD;
class TFicEvens;
class TFicChpsSimple;
class TFicSources;
class TFicIllustrations;

// Le débordement d'un événement dans un dossier de 2009 (.evx) ; sa forme sur le disque est
// dans fic_evens.h.
class TExtEvenement {
 public:
  struct TEnreg;
};

inline constexpr int kNbSourcesEven = 50;
inline constexpr int kNbIllustrationsEven = 50;
inline constexpr int kNbPersAssocieesEven = 50;
inline constexpr size_t kLgLibelle = 21;
inline constexpr size_t kLgDonnee = 100;
inline constexpr size_t kLgDonneeSimple = 2000;
inline constexpr size_t kLgLieuDit = 51;
inline constexpr size_t kLgTypeSource = 30;
inline constexpr size_t kLgDescriptifSource = 300;
inline constexpr size_t kLgChemin = 260;

// Une personne citée sur un événement : le lien (numéro, octet du niveau), sa qualité et
// son lien de parenté (numéros dans les fichiers .qua et .par).
struct TPersAssociee {
  TLienPers Lien;
  int32_t LienQualite = 0;
  int32_t LienParente = 0;

  bool Vide() const { return Lien.No == 0; }
  bool operator==(const TPersAssociee& a) const {
    return Lien.No == a.Lien.No && Lien.Octet == a.Lien.Octet && LienQualite == a.LienQualite &&
           LienParente == a.LienParente;
  }
};

class TEvenement {
 public:
  struct TEnreg {
    TPersAssociee PersAssociees[kNbPersAssocieesEven];
    bool PersAssocieesChargees = false;
    int32_t Illustrations[kNbIllustrationsEven];
    bool IllustrationsChargees = false;
    int32_t Sources[kNbSourcesEven];
    bool SourcesChargees = false;

    long No = 0;
    std::string Libelle;  // clé du catalogue, sans blancs autour
    std::string Donnee;
    long NoPersA = 0;  // celui qui porte le fait ; négatif : ligne cachée
    long NoPersB = 0;  // le conjoint d'un événement de couple, 0 sinon
    TDateRQ Date;      // acte, calendrier, texte de la date
    long Lieu = 0;     // numéro dans le fichier des lieux
    std::string LieuDit;
    long Note = 0;
    long NoIllustrationParDefaut = 0;
    long LienExtEven = 0;

    TEnreg() { Raz(); }
    void Raz();
    // Aucun contenu : ni libellé, ni donnée, ni date, ni lieu, ni note, ni liste.
    bool Vide() const;
    void SetLibelle(std::string_view libelle);  // sans blancs autour, 21 caractères au plus
    void SetDonnee(std::string_view donnee);    // 100 caractères au plus
    void SetLieuDit(std::string_view lieuDit);  // 51 caractères au plus

    // Couple : les deux numéros sont a et b dans un ordre ou l'autre.
    bool IsCouple(long a, long b) const;
    // a est l'un des deux, ou NoPersB et a sont tous deux sous 1.
    bool IsPersCouple(long a) const;
    // L'autre des deux ; 0 pour l'événement d'une seule personne.
    long NoConjoint(long a) const;

    // Sources : première place vide, sans chercher de doublon ; -1 quand les 50 sont prises.
    int AjoutSource(long id);
    // Retire la place i en remontant les suivantes.
    void SupprSource(int i);
    // Illustrations : rend la place si l'id y est déjà, sinon la première vide ; -1 plein.
    int AjoutIllustration(long id);
    void SupprIllustration(int i);
    void SetIllustration(int i, long id);
    // Personnes citées : s'arrête sur une personne déjà là (rend sa place), ne fait rien sur
    // une table pleine (-1) ; le parcours va jusqu'à la première place vide.
    int AjoutPersAssociee(const TPersAssociee& p);
    void ModifPersAssociee(int i, const TPersAssociee& p);
    // Retire la place i (remontée des suivantes) ; `supp` reçoit ce qui a été retiré.
    void SupprPersAssociee(int i, TPersAssociee* supp = nullptr);
    void SupprPersAssocieeNo(long no, TPersAssociee* supp = nullptr);
    int ChercheRgNoSource(long id) const;        // -1 si absent
    int ChercheRgNoIllustration(long id) const;  // -1 si absent
    int ChercheRgNoPersAssociee(long no) const;  // -1 si absent
    int CountSource() const;
    int CountIllustration() const;
    int CountPersAssociee() const;
  };

  // -3 (ou 0) : objet vierge ; un numéro > 0 avec une base : lu (LectureEven).
  explicit TEvenement(TModuleBDD* bdd = nullptr, long no = -3);

  // Propriétaire et rang dans sa liste (à partir de 1) ; -1, -1 : non donnés.
  void SetNoPersRang(long no, int rang) {
    NoPers = no;
    Rang = rang;
  }
  bool InfoRangValide() const { return NoPers != -1 && Rang != -1; }
  long No() const { return Enreg.No; }
  // Écrit l'événement (EnregistrementEven) ; false sans rien écrire pour une base absente ou
  // en lecture seule, un dossier en lecture seule ou en erreur.
  bool Enregistrement();

  // La forme d'un événement dans un dossier de 2009 (.evn), dans fic_evens.h.
  struct TEnregPrive;
  // Lit l'événement du numéro de l'objet dans le .evn de la façade (et son débordement
  // .evx) ; numéro nul ou au-delà du compte, dossier en erreur : objet vierge, false.
  bool LectureAncien(TFicEvens* fic);
  // Ce que l'enregistrement ancien donne à l'objet : les quatre premières personnes citées,
  // deux illustrations et quatre sources ; le débordement, la donnée et les suivantes.
  // Les listes ainsi remplies sont marquées chargées.
  void TransfertVersPublic(const TEnregPrive& e);
  void TransfertVersPublic(const TExtEvenement::TEnreg& e);

  // Listes chargées au premier usage depuis la base (sans base : telles quelles).
  int32_t* Illustration();
  int32_t* GetSource();
  TPersAssociee* GetPersAssociee();
  void ChargerTableauxBDD();

  TModuleBDD* Bdd;
  long NoPers = -1;
  int Rang = -1;
  TEnreg Enreg;
};

// Un champ simple : une valeur sans date ni lieu (profession, titre...).
class TChpsSimple {
 public:
  struct TEnreg {
    std::string Libelle;
    std::string Donnee;  // place de 2000 caractères ; SetDonnee en copie 100
    long NoPersA = 0;
    long NoPersB = 0;
    long No = 0;
    int Rang = 0;

    void Raz() { *this = TEnreg(); }
    bool Vide() const;
    void SetLibelle(std::string_view libelle);
    void SetDonnee(std::string_view donnee);
    bool IsCouple(long a, long b) const;
    bool IsPersCouple(long a) const;
    long NoConjoint(long a) const;
  };

  explicit TChpsSimple(TModuleBDD* bdd = nullptr, long no = -3);
  void SetNoPersRang(long no, int rang) {
    NoPers = no;
    Rang = rang;
  }
  bool InfoRangValide() const { return NoPers != -1 && Rang != -1; }
  long No() const { return Enreg.No; }
  bool Enregistrement();  // mêmes refus que TEvenement::Enregistrement
  // Le champ `no` du .chs de la façade : libellé, donnée (plus de 101 caractères : tenue
  // pour abîmée, lue vide), les deux personnes. Hors de 1..compte : vierge, false.
  bool LectureAncien(TFicChpsSimple* fic, long no);

  TModuleBDD* Bdd;
  long NoPers = -1;
  int Rang = -1;
  TEnreg Enreg;
};

// Une source d'événement (table Sources).
class TSource {
 public:
  struct TEnreg {
    std::string Type;        // 30 caractères au plus
    std::string Descriptif;  // 300 caractères au plus
  };
  explicit TSource(TModuleBDD* bdd = nullptr, long no = -3);
  bool Vide() const { return Enreg.Type.empty() && Enreg.Descriptif.empty(); }
  void SetType(std::string_view t);
  void SetDescriptif(std::string_view d);
  bool Enregistrement();  // mêmes refus que TEvenement::Enregistrement
  // La source `no` du .src de la façade ; hors de 1..compte : vierge, false.
  bool LectureAncien(TFicSources* fic, long no);

  TModuleBDD* Bdd;
  long No = 0;
  long NoEven = 0;
  TEnreg Enreg;
};

// Une illustration d'événement (table Illustrations) : un chemin relatif au dossier,
// d'ordinaire sous Images/.
class TIllustration {
 public:
  struct TEnreg {
    std::string Chemin;  // 260 caractères au plus
  };
  explicit TIllustration(TModuleBDD* bdd = nullptr, long no = -3);
  bool Vide() const { return Enreg.Chemin.empty(); }
  void SetChemin(std::string_view c);
  // Le chemin absolu : le dossier de la base suivi du chemin (« \ » lu « / »), que le fichier
  // existe ou non ; un chemin déjà absolu est rendu tel quel. Sans base : le chemin seul.
  // Pour un dossier exporté (TModuleBDD::DossierExport) dont ce fichier manque, le chemin
  // passé par TransformPathToPathExport est pris s'il existe.
  std::string GetExpandFilename() const;
  // L'illustration du numéro de l'objet dans le .ill de la façade ; hors de 1..compte :
  // vierge, false.
  bool LectureAncien(TFicIllustrations* fic);
  // Mêmes refus que TEvenement::Enregistrement ; un chemin absolu pris dans le dossier y est
  // d'abord rendu relatif (« Images/... »).
  bool Enregistrement();

  TModuleBDD* Bdd;
  long No = 0;
  long NoEven = 0;
  TEnreg Enreg;
};

// Le chemin d'une illustration dans un dossier exporté (copié ailleurs avec ses images) :
// ce qui suit le dernier dossier « Images » du chemin (sans égard à la casse, « \ » lu
// « / »), ou à défaut le seul nom du fichier sous Images/, posé dans `dossier`.
std::string TransformPathToPathExport(std::string_view chemin, std::string_view dossier);

}  // namespace rqbase
