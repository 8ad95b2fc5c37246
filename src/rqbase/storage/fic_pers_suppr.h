// TFicPersSuppr, TPersSuppr : la liste des personnes supprimées (.psu).
//
// Un enregistrement de 4 octets par personne supprimée (son numéro) ; le mot de
// l'enregistrement 0 est le compte. La liste reste dense : retirer un numéro y met
// le dernier à sa place. Écrire au-delà du compte lève
// ERqBase("FicPersSuppr : Erreur Enreg").
#pragma once
#include <cstdint>
#include <set>

#include "rqbase/storage/fic_enreg.h"

namespace rqbase {

class TFicPersSuppr : public TFicEnregistrements<tfPsu, sizeof(int32_t)> {
 public:
  using TFicEnregistrements::TFicEnregistrements;

  // Un nouvel enregistrement (ReturnNewNum) qui reçoit `no`.
  void AjouteNo(long no);
  // Retire `no` s'il y est (le dernier prend sa place, le compte baisse) ; l'en-tête
  // est réécrit dans tous les cas.
  void SuppNo(long no);
  // Les enregistrements non nuls ; peut différer du compte de l'en-tête.
  long GetNbPersSuppr();
  // Retire de la liste chacun des numéros donnés (SuppNo pour chacun).
  void SupprimeList(const std::set<long>& numeros);
};

class TPersSuppr {
 public:
  TPersSuppr(TFicPersSuppr* fic, long no);
  // Échec de lecture : drapeau d'erreur et genre d'erreur 1 pour le dossier.
  void Lecture(long no);
  void Enregistrement(long no, TFicPersSuppr* fic = nullptr);

  long No() const { return Numero; }
  int32_t NoPers = 0;

 private:
  TFicPersSuppr* Fic;
  long Numero = 0;
};

}  // namespace rqbase
