#include "rqbase/platform/dialogue.h"

namespace rqbase {
namespace {

TDialogue* gInstalle = nullptr;

TDialogueFixe& ParDefaut() {
  static TDialogueFixe defaut;
  return defaut;
}

}  // namespace

int TDialogueFixe::Question(const std::string& texte, const std::string& titre, TBoutons boutons) {
  Questions.push_back({texte, titre});
  if (boutons == TBoutons::Ok) return ReponseOk;
  if (boutons == TBoutons::OuiNon && Reponse == ReponseAnnuler) return ReponseNon;
  return Reponse;
}

void TDialogueFixe::Information(const std::string& texte, const std::string& titre) {
  Informations.push_back({texte, titre});
}

void TDialogueFixe::Erreur(const std::string& texte, const std::string& titre) { Erreurs.push_back({texte, titre}); }

TDialogue& Dialogue() { return gInstalle ? *gInstalle : ParDefaut(); }

void InstalleDialogue(TDialogue* dialogue) { gInstalle = dialogue; }

}  // namespace rqbase
