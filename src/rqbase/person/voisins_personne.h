// TVoisinsPersonne : ce qu'une personne demande à son dossier au-delà des fichiers
// d'enregistrements : le catalogue des champs (libellés, ordre habituel, équivalences), le
// fichier des lieux, celui des notes, l'identifiant du dossier, et l'index des noms qu'une
// personne enregistrée tient à jour.
//
// Déclarée ici, réalisée par le dossier (l'agrégat au sommet), qui seul connaît tous ces
// voisins. La personne la trouve sur son contexte (VoisinsDe) ; un contexte nu (tests, fichier
// sans dossier) n'en a pas, et la personne travaille alors sans catalogue : les dates égales
// restent égales, les équivalences ne jouent pas, aucun index n'est tenu.
#pragma once
#include <string>

namespace rqbase {

class TContexteDossier;
class TDefChpsCs;
class TFicDupli;
class TFicNotes;
class TPerson;

class TVoisinsPersonne {
 public:
  virtual ~TVoisinsPersonne() = default;
  virtual TDefChpsCs* GetDefChpsCs() const = 0;
  virtual TFicDupli* FicLie() const = 0;
  virtual TFicNotes* FicNotes() const = 0;
  virtual const std::string& GetIdGenea() const = 0;
  // Une autre personne du dossier porte-t-elle déjà cet identifiant (champ "ID_PERS") ?
  virtual bool IsIDPersExists(const std::string& id) = 0;
  // Après l'écriture d'une personne : ses entrées d'index des noms (aucun index : rien).
  virtual void ModifClef(TPerson& personne, bool enregistrer) {
    (void)personne;
    (void)enregistrer;
  }
  // Préférence "où trier les événements" du dossier : true, par type puis par date ; false,
  // par date seule.
  virtual bool ClassementParType() const { return false; }
};

// Les voisins du dossier de ce contexte ; nul pour un contexte nu.
TVoisinsPersonne* VoisinsDe(TContexteDossier* contexte);

}  // namespace rqbase
