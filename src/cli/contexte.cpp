#include "contexte.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <iostream>

#include "rqbase/platform/cp1252.h"
#include "rqbase/util/erreur.h"

namespace rqcli {
namespace {

rqbase::TProgression* gActive = nullptr;

extern "C" void SurInterruption(int) {
  if (gActive) gActive->DemandeAbandon();
}

}  // namespace

std::string U(const std::string& cp1252) { return rqbase::VersUtf8(cp1252); }

std::string Arg(const std::string& utf8) { return rqbase::DepuisUtf8(utf8); }

std::string ArgTexte(const std::string& utf8, const std::string& quoi) {
  char code[16];
  if (const char32_t fautif = rqbase::PremierCaractereSansEquivalent(utf8)) {
    std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(fautif));
    throw rqbase::ERqBase("Le caractère " + std::string(code) + " (dans " + quoi + ")" +
                          " n'existe pas dans le codage des dossiers (Windows-1252) : rien n'a été enregistré.");
  }
  const std::string texte = rqbase::DepuisUtf8(utf8);
  for (unsigned char c : texte) {
    if (c < 0x20 || c == 0x7F) {
      std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(c));
      std::string sujet = quoi;
      if (!sujet.empty()) sujet[0] = static_cast<char>(rqbase::MajusculeCp1252(static_cast<unsigned char>(sujet[0])));
      throw rqbase::ERqBase(sujet + " contient un caractère de contrôle (" + code + ") : rien n'a été enregistré.");
    }
  }
  return texte;
}

json Texte(const std::string& cp1252) { return json(rqbase::VersUtf8(cp1252)); }

void Ecrit(const std::string& cp1252) { std::cout << rqbase::VersUtf8(cp1252) << '\n'; }

void EcritJson(const json& document) { std::cout << document.dump(2) << '\n'; }

TTableauJsonEnFlux::TTableauJsonEnFlux(const json& entete, const std::string& cle) {
  std::cout << "{";
  for (auto it = entete.begin(); it != entete.end(); ++it) std::cout << json(it.key()).dump() << ": " << it->dump() << ", ";
  std::cout << json(cle).dump() << ": [";
}

TTableauJsonEnFlux::~TTableauJsonEnFlux() { std::cout << (Premier ? "]}\n" : "\n]}\n"); }

void TTableauJsonEnFlux::Ajoute(const json& element) {
  std::cout << (Premier ? "\n  " : ",\n  ") << element.dump();
  Premier = false;
}

TProgressionTerminal::TProgressionTerminal() : Terminal(::isatty(STDERR_FILENO) != 0) {
  gActive = this;
  std::signal(SIGINT, SurInterruption);
}

TProgressionTerminal::~TProgressionTerminal() {
  if (Terminal && DernierPourMille >= 0) std::fputs("\n", stderr);
  std::signal(SIGINT, SIG_DFL);
  gActive = nullptr;
}

void TProgressionTerminal::Titre(const std::string& titre) {
  TitreCourant = titre;
  DernierPourMille = -1;
  Dessine();
}

void TProgressionTerminal::Position(long position) {
  TProgression::Position(position);
  Dessine();
}

void TProgressionTerminal::Dessine() {
  if (!Terminal) return;
  const int pourMille = Max > 0 ? int(std::min<long>(1000, 1000 * Pos / Max)) : 0;
  if (pourMille == DernierPourMille) return;
  DernierPourMille = pourMille;
  const int largeur = 30, plein = pourMille * largeur / 1000;
  std::fprintf(stderr, "\r%s [%s%s] %3d %%", rqbase::VersUtf8(TitreCourant).c_str(), std::string(plein, '#').c_str(),
               std::string(largeur - plein, '.').c_str(), pourMille / 10);
  std::fflush(stderr);
}

}  // namespace rqcli
