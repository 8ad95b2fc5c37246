// TBufferisationArbChrono : le cache des personnes d'un dossier ouvert.
//
// Une table ordonnée numéro -> TPerson possédée, de 10 000 places. Plein, il chasse le
// plus petit numéro avant d'en ajouter un, même si ce numéro vient d'être lu : le
// plus petit, pas le plus ancien. Le cache appartient au TFicPersons du dossier et
// sert le fil de ce dossier, sans verrou. Une personne trouvée ne coûte aucun accès disque.
#pragma once
#include <algorithm>
#include <map>
#include <memory>

#include "rqbase/person/gest_pers.h"

namespace rqbase {

class TBufferisationArbChrono : public TCachePersonnes {
 public:
  // Au moins une place : GetPerson rend la personne qu'il vient d'ajouter.
  explicit TBufferisationArbChrono(TFicPersons* fic, size_t capacite = TFicPersons::CapaciteCache)
      : Fic(fic), Capacite(std::max<size_t>(1, capacite)) {}

  // Le cache du fichier, créé au premier appel ; vu par son interface.
  static TCachePersonnes& De(TFicPersons& fic);

  // La personne en cache, ou lue du disque (sans cache) et ajoutée. Un numéro négatif
  // autre que -2 vaut 0.
  TPerson* GetPerson(long no, bool complement) override;
  // Plein : le plus petit numéro part d'abord. Le cache prend possession de `personne`.
  void AjoutePersonne(TPerson* personne);
  // Recopie `personne` sur son double ; nul si absent ou si le drapeau de la personne
  // l'interdit.
  TPerson* Update(const TPerson& personne, bool forcer = false) override;
  void Delete(long no) override;
  void RazBuffers() override;

  size_t Taille() const { return Personnes.size(); }
  bool Contient(long no) const { return Personnes.count(no) != 0; }

 private:
  TFicPersons* Fic;
  size_t Capacite;
  std::map<long, std::unique_ptr<TPerson>> Personnes;
};

}  // namespace rqbase
