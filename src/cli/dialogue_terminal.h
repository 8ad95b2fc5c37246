// Le dialogue de la ligne de commande : pose la question sur le terminal, ou
// rend la réponse imposée par --oui / --non ; sans terminal et sans réponse
// imposée, une question reçoit Annuler (rien n'est fait à l'insu de l'utilisateur).
#pragma once
#include "contexte.h"
#include "rqbase/platform/dialogue.h"

namespace rqcli {

class TDialogueTerminal : public rqbase::TDialogue {
 public:
  explicit TDialogueTerminal(const TContexteCli& ctx) : Ctx(ctx) {}
  int Question(const std::string& texte, const std::string& titre, rqbase::TBoutons boutons) override;
  void Information(const std::string& texte, const std::string& titre) override;
  void Erreur(const std::string& texte, const std::string& titre) override;

 private:
  const TContexteCli& Ctx;
};

}  // namespace rqcli
