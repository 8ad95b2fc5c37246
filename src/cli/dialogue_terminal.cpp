#include "dialogue_terminal.h"

#include <unistd.h>

#include <iostream>

#include "rqbase/platform/cp1252.h"

namespace rqcli {

int TDialogueTerminal::Question(const std::string& texte, const std::string& titre, rqbase::TBoutons boutons) {
  using namespace rqbase;
  if (boutons == TBoutons::Ok) return ReponseOk;
  if (Ctx.Oui) return ReponseOui;
  if (Ctx.Non) return ReponseNon;
  std::cerr << VersUtf8(titre) << "\n" << VersUtf8(texte) << "\n";
  if (!::isatty(STDIN_FILENO)) {
    std::cerr << U("(pas de terminal : réponse Annuler ; --oui ou --non pour répondre)") << "\n";
    return boutons == TBoutons::OuiNon ? ReponseNon : ReponseAnnuler;
  }
  const bool avecAnnuler = boutons == TBoutons::OuiNonAnnuler;
  for (;;) {
    std::cerr << (avecAnnuler ? "[o]ui / [n]on / [a]nnuler ? " : "[o]ui / [n]on ? ") << std::flush;
    std::string ligne;
    if (!std::getline(std::cin, ligne)) return avecAnnuler ? ReponseAnnuler : ReponseNon;
    if (ligne == "o" || ligne == "O" || ligne == "oui") return ReponseOui;
    if (ligne == "n" || ligne == "N" || ligne == "non") return ReponseNon;
    if (avecAnnuler && (ligne == "a" || ligne == "A" || ligne == "annuler")) return ReponseAnnuler;
  }
}

void TDialogueTerminal::Information(const std::string& texte, const std::string& titre) {
  std::cerr << rqbase::VersUtf8(titre) << " : " << rqbase::VersUtf8(texte) << "\n";
}

void TDialogueTerminal::Erreur(const std::string& texte, const std::string& titre) {
  std::cerr << rqbase::VersUtf8(titre) << " : " << rqbase::VersUtf8(texte) << "\n";
}

}  // namespace rqcli
