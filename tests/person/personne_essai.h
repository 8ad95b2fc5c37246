// Les gestes communs des essais de personnes : une personne neuve enregistrée.
#pragma once
#include <string>

#include "rqbase/person/gest_pers.h"

namespace rqbase::essai {

// Une personne neuve de ce nom et de ce sexe, enregistrée ; son numéro.
inline long AjoutePersonne(TFicPersons* fic, const std::string& nom, char sexe = 'M') {
  TPerson p(fic);
  p.NouvelleFiche(-3);
  p.SetNom(nom);
  p.SetSexe(sexe);
  p.Enregistrement();
  return p.No();
}

}  // namespace rqbase::essai
