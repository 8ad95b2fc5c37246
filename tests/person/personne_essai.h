// Les gestes communs des essais et des mesures : une personne neuve enregistrée, un fait ajouté
// à une personne.
#pragma once
#include <string>

#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/evenement.h"

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

// Un fait à ajouter : libellé du catalogue, date grégorienne (vide : sans date) et son acte,
// conjoint pour un fait de couple, donnée, lieu.
struct TFaitEssai {
  const char* Libelle = "";
  std::string Date;
  long Conjoint = 0;
  std::string Donnee;
  long Lieu = 0;
  std::string Acte;
};

// Le fait ajouté à la personne `no` à sa place habituelle et enregistré ; son numéro, 0 si
// l'ajout est refusé.
inline long AjouteFait(TFicPersons* fic, TModuleBDD* bdd, long no, const TFaitEssai& f) {
  TPerson p(fic, no, true);
  TEvenement e(bdd);
  e.Enreg.SetLibelle(f.Libelle);
  if (!f.Date.empty()) e.Enreg.Date = TDateRQ('G', f.Date);
  if (!f.Acte.empty()) e.Enreg.Date.SetActe(f.Acte);
  e.Enreg.SetDonnee(f.Donnee);
  e.Enreg.Lieu = f.Lieu;
  e.Enreg.NoPersA = no;
  e.Enreg.NoPersB = f.Conjoint;
  return p.AjoutEven(&e, true, f.Conjoint != 0, true) ? e.Enreg.No : 0;
}

}  // namespace rqbase::essai
