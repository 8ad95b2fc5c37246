// TFicPersons : le fichier des personnes (.prs) d'un dossier.
//
// Un enregistrement de 644 octets par personne, numérotées à partir de 1 ; l'enregistrement
// 0 est l'en-tête du dossier (compte, de cujus, signets, titre, dates). Les numéros ne
// sont jamais réutilisés : une personne supprimée garde son enregistrement, marqué 'O'.
// Le compte ne descend jamais.
//
// Ce fichier définit aussi les formes disque partagées par les personnes : TLienPers
// (5 octets), TLienConj (9 octets) et TEnregPersonne, l'enregistrement de 644 octets
// que TPerson appelle TPerson::TEnreg.
//
// Erreurs : un fichier qui ne s'ouvre pas lève le drapeau d'erreur du dossier ; un
// en-tête dont le compte ne se retrouve pas (fichier de 644 octets ou moins) aussi.
// Le cache des personnes (TBufferisationArbChrono) appartient à ce fichier mais vit
// dans la couche personne : TFicPersons n'en connaît que l'interface TCachePersonnes.
#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "rqbase/storage/fic_enreg.h"

namespace rqbase {

#pragma pack(push, 1)

// Lien vers une personne : numéro signé sur 32 bits et un octet transporté sans
// signification. Les comparaisons ne portent que sur le numéro.
struct TLienPers {
  int32_t No = 0;
  uint8_t Octet = 0;

  TLienPers() = default;
  TLienPers(long no, uint8_t octet = 0) : No(static_cast<int32_t>(no)), Octet(octet) {}
  bool operator==(const TLienPers& autre) const { return No == autre.No; }
  bool operator!=(const TLienPers& autre) const { return No != autre.No; }
  bool operator<(const TLienPers& autre) const { return No < autre.No; }
  bool operator>(const TLienPers& autre) const { return No > autre.No; }
  bool operator==(long no) const { return No == no; }
  bool operator!=(long no) const { return No != no; }
  bool operator<(long no) const { return No < no; }
  bool operator>(long no) const { return No > no; }
  bool operator!() const { return No == 0; }
  explicit operator bool() const { return No != 0; }
};

// Lien vers un conjoint : un TLienPers (numéro, octet) et une valeur de 32 bits transportée
// sans lecture. Les champs sont à plat pour garder une disposition standard.
struct TLienConj {
  int32_t No = 0;
  uint8_t Octet = 0;
  int32_t Valeur = 0;

  TLienConj() = default;
  TLienConj(long no, uint8_t octet = 0, int32_t valeur = 0)
      : No(static_cast<int32_t>(no)), Octet(octet), Valeur(valeur) {}
  TLienPers Lien() const { return TLienPers(No, Octet); }
  bool operator==(long no) const { return No == no; }
  bool operator!=(long no) const { return No != no; }
  bool operator!() const { return No == 0; }
  explicit operator bool() const { return No != 0; }
};

// L'enregistrement de 644 octets d'une personne (et de l'en-tête, champs réutilisés).
struct TEnregPersonne {
  char Type;                       // 'P' personne, 'T' témoin, blanc : les deux
  char Supprime;                   // 'O' supprimée, blanc sinon
  char Sexe;                       // 'M', 'F', '?'
  TLienPers Pere;                  // en-tête : compte des numéros (NbPersEffective)
  TLienPers Mere;                  // en-tête : de cujus
  TLienConj Conjoints[10];         // les 10 premiers conjoints
  TLienPers Enfants[30];           // les 30 premiers enfants ; en-tête : [0], [1] les signets
  char Nom[101];                   // en-tête : titre du dossier
  char Prenoms[71];                // en-tête : "creation$modification$troisième$entier$sosa"
  uint8_t PrenomUsuel;             // rang du prénom usuel, 0 aucun
  uint8_t Reserve1[2];
  int32_t LiensChpsSimple[15];     // zéro à chaque écriture depuis la base relationnelle
  int32_t LiensEvenement[15];      // idem
  int32_t LiensCitation[10];       // idem
  int32_t Index[10];               // enregistrements de la personne dans l'index des noms
  int32_t Note;                    // en-tête : l'entier que teste DupliqueGenealogie
  int32_t Extension;               // enregistrement du .exp, 0 aucun
  int32_t Reserve2;                // recopié tel quel
  int32_t Reserve3;                // recopié tel quel ; en-tête : second entier du dossier
};

#pragma pack(pop)

static_assert(sizeof(TLienPers) == 5);
static_assert(sizeof(TLienConj) == 9);
static_assert(sizeof(TEnregPersonne) == 644);
static_assert(offsetof(TEnregPersonne, Pere) == 3);
static_assert(offsetof(TEnregPersonne, Conjoints) == 13);
static_assert(offsetof(TEnregPersonne, Enfants) == 103);
static_assert(offsetof(TEnregPersonne, Nom) == 253);
static_assert(offsetof(TEnregPersonne, Prenoms) == 354);
static_assert(offsetof(TEnregPersonne, PrenomUsuel) == 425);
static_assert(offsetof(TEnregPersonne, LiensChpsSimple) == 428);
static_assert(offsetof(TEnregPersonne, LiensEvenement) == 488);
static_assert(offsetof(TEnregPersonne, LiensCitation) == 548);
static_assert(offsetof(TEnregPersonne, Index) == 588);
static_assert(offsetof(TEnregPersonne, Note) == 628);
static_assert(offsetof(TEnregPersonne, Extension) == 632);
static_assert(offsetof(TEnregPersonne, Reserve3) == 640);

// Efface ce qui suit le premier zéro d'un champ texte et force le zéro final.
void MenageDsChnVide(char* champ, size_t taille);

// Le numéro de Sosa du de cujus : un entier du processus, lu et écrit par l'en-tête.
extern int asNoStradoCujus;

class TPerson;

// L'interface du cache des personnes vue du fichier ; TBufferisationArbChrono (couche
// personne) la réalise, et TPerson s'en sert sans connaître la classe qui la réalise.
class TCachePersonnes {
 public:
  virtual ~TCachePersonnes() = default;
  virtual void RazBuffers() = 0;
  virtual void Delete(long no) = 0;
  // La personne en cache, ou lue et ajoutée (voir TBufferisationArbChrono::GetPerson).
  virtual TPerson* GetPerson(long no, bool complement) = 0;
  // La même personne recopiée dans `cible`, sans objet intermédiaire quand c'est possible.
  virtual void LitPersonne(long no, bool complement, TPerson& cible) = 0;
  // Recopie `personne` sur son double en cache ; nul si absente ou si le drapeau l'interdit.
  virtual TPerson* Update(const TPerson& personne, bool forcer) = 0;
};

class TFicPersons : public TFicEnregBase {
 public:
  static constexpr int CapaciteCache = 10000;

  // Avec `creation` : de cujus et premier signet à -1, dates au présent, en-tête écrit.
  // Fichier introuvable : drapeau d'erreur du dossier levé. Sinon LectureEntete.
  TFicPersons(TContexteDossier* gest, bool creation);
  ~TFicPersons() override;

  // L'en-tête : compte, de cujus, signets, titre et texte des dates du dossier.
  void EcritureEntete() override;
  // Lit l'en-tête et le répare au besoin (sans '$' : dates neuves ; compte < 1 : compte
  // tiré de la taille du fichier, de cujus et signets ramenés dans les bornes). Un compte
  // plus grand que ce que le fichier tient est ramené à ce qu'il tient (au moins 1 : un
  // dossier neuf donne le numéro 1 avant d'écrire aucune personne).
  void LectureEntete() override;

  // Le compte des numéros donnés, personnes supprimées comprises.
  long NbPersEffective() const { return Nombre; }
  // Sans borne basse, voulu : seul le dépassement du compte est refusé.
  bool NoPersValide(long no) const { return no <= Nombre; }

  // Somme (non signée, 32 bits) de chaque unité de code par sa position, de 1 à
  // longueur - 1 : le dernier caractère ne compte pas.
  static uint32_t GetHashCode(const std::u16string& s);

  // Date de modification du fichier (jours depuis 1899) ; ferme et rouvre le fichier.
  bool GetFileDateAndTime(double& dateHeure);

  // Le cache : créé au premier usage par la couche personne (voir TBufferisationArbChrono).
  TCachePersonnes* Cache() const { return CacheP.get(); }
  void InstalleCache(std::unique_ptr<TCachePersonnes> cache) { CacheP = std::move(cache); }
  // Vide le cache (équivaut à le remplacer par un neuf de même capacité).
  void VideBufferPerson();

  // Accès brut à un enregistrement (lecture directe, sans jugement ni cache).
  bool LitEnreg(long no, TEnregPersonne& enreg) { return TFicEnregBase::LitEnreg(no, &enreg); }
  // Écrit l'enregistrement puis, pour un numéro neuf, l'en-tête ; true quand il est sur le
  // disque. Un numéro au-delà du compte est refusé.
  bool EcritEnreg(long no, const TEnregPersonne& enreg) {
    ++Ecritures;
    return TFicEnregBase::EcritEnreg(no, &enreg, nullptr);
  }
  // Le nombre de fiches écrites depuis l'ouverture : ce qu'un lecteur a retenu de fiches lues
  // avant ne vaut plus dès qu'il a changé.
  uint64_t NbEcritures() const { return Ecritures; }

  long NoDeCujus = -1;
  long Signet1 = -1;
  long Signet2 = -1;

 private:
  uint64_t Ecritures = 0;
  std::unique_ptr<TCachePersonnes> CacheP;
};

}  // namespace rqbase
