// TFicExtPersons, TExtPerson : le fichier de débordement des personnes (.exp).
//
// Une personne qui a plus de 10 conjoints ou plus de 30 enfants garde la suite dans
// un enregistrement de 2904 octets de ce fichier ; son enregistrement principal en
// porte le numéro (0 : aucun). Le premier mot de l'enregistrement 0 est le compte.
// Écrire au-delà du compte lève ERqBase("FicExtPers : Erreur Enreg") sans rien changer.
#pragma once
#include <cstddef>
#include <cstdint>

#include "rqbase/storage/fic_enreg.h"
#include "rqbase/storage/gest_fic_pers.h"

namespace rqbase {

class TFicExtPersons;

class TExtPerson {
 public:
#pragma pack(push, 1)
  struct TEnreg {
    int32_t NoPersonne;              // en-tête : le compte
    TLienConj Conjoints[140];        // conjoints 11 à 150
    TLienPers Enfants[120];          // enfants 31 à 150
    int32_t LiensChpsSimple[85];     // 16 à 100 ; zéro dans un dossier courant
    int32_t LiensEvenement[85];      // 16 à 100 ; zéro dans un dossier courant
    int32_t LiensCitation[90];       // 11 à 100 ; zéro dans un dossier courant

    void Raz();
    // Vrai quand le premier conjoint, le premier enfant et la première entrée de
    // chaque table de liens sont vides : les listes étant tassées, rien d'autre ne compte.
    bool Vide() const;
  };
#pragma pack(pop)

  // Un numéro > 0 ou -2 lit l'enregistrement ; tout autre donne un enregistrement à zéro
  // de numéro 0.
  TExtPerson(TFicExtPersons* fic, long no);

  // -3 garde le numéro ; 0 ou dossier en erreur : enregistrement à zéro, rien lu.
  void Lecture(long no);
  // `fic`, s'il est donné, remplace le fichier le temps de cet appel.
  void Enregistrement(long no, TFicExtPersons* fic = nullptr);

  long No() const { return Numero; }
  TEnreg Enreg{};

 private:
  TFicExtPersons* Fic;
  long Numero = 0;
};

static_assert(sizeof(TExtPerson::TEnreg) == 2904);

class TFicExtPersons : public TFicEnregistrements<tfExp, sizeof(TExtPerson::TEnreg)> {
 public:
  using TFicEnregistrements::TFicEnregistrements;
};

static_assert(offsetof(TExtPerson::TEnreg, Conjoints) == 4);
static_assert(offsetof(TExtPerson::TEnreg, Enfants) == 1264);
static_assert(offsetof(TExtPerson::TEnreg, LiensChpsSimple) == 1864);
static_assert(offsetof(TExtPerson::TEnreg, LiensEvenement) == 2204);
static_assert(offsetof(TExtPerson::TEnreg, LiensCitation) == 2544);

}  // namespace rqbase
