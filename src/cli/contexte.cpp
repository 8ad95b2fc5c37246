#include "contexte.h"

#include <unistd.h>

#include <charconv>
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
      // « les prénoms contiennent », « le nom contient ».
      const char* verbe = sujet.rfind("Les ", 0) == 0 ? " contiennent" : " contient";
      throw rqbase::ERqBase(sujet + verbe + " un caractère de contrôle (" + code + ") : rien n'a été enregistré.");
    }
  }
  return texte;
}

json Texte(const std::string& cp1252) { return json(rqbase::VersUtf8(cp1252)); }

void Ecrit(const std::string& cp1252) { std::cout << rqbase::VersUtf8(cp1252) << '\n'; }

void EcritJson(const json& document) { std::cout << document.dump(2) << '\n'; }

namespace {

// Au-delà, le tampon part sur la sortie standard : de gros blocs, peu d'appels.
constexpr size_t kTailleTampon = 1 << 16;

// Ajoute un texte UTF-8 entre guillemets, échappé comme json::dump() : guillemet, barre
// oblique inverse et caractères de contrôle ; le reste tel quel (UTF-8 valide).
void AjouteChaineJson(std::string& dest, const std::string& utf8) {
  static const char kHex[] = "0123456789abcdef";
  dest += '"';
  size_t debut = 0;
  for (size_t i = 0; i < utf8.size(); ++i) {
    const auto c = static_cast<unsigned char>(utf8[i]);
    if (c >= 0x20 && c != '"' && c != '\\') continue;
    dest.append(utf8, debut, i - debut);
    debut = i + 1;
    switch (c) {
      case '"': dest += "\\\""; break;
      case '\\': dest += "\\\\"; break;
      case '\b': dest += "\\b"; break;
      case '\f': dest += "\\f"; break;
      case '\n': dest += "\\n"; break;
      case '\r': dest += "\\r"; break;
      case '\t': dest += "\\t"; break;
      default:
        dest += "\\u00";
        dest += kHex[c >> 4];
        dest += kHex[c & 0xF];
    }
  }
  dest.append(utf8, debut, std::string::npos);
  dest += '"';
}

}  // namespace

TTableauJsonEnFlux::TTableauJsonEnFlux(const json& entete, const std::string& cle) {
  Tampon.reserve(kTailleTampon + 4096);
  Tampon += "{";
  for (auto it = entete.begin(); it != entete.end(); ++it) {
    Tampon += json(it.key()).dump();
    Tampon += ": ";
    Tampon += it->dump();
    Tampon += ", ";
  }
  Tampon += json(cle).dump();
  Tampon += ": [";
}

TTableauJsonEnFlux::~TTableauJsonEnFlux() {
  Tampon += Premier ? "]}\n" : "\n]}\n";
  std::cout.write(Tampon.data(), static_cast<std::streamsize>(Tampon.size()));
}

void TTableauJsonEnFlux::Separe() {
  Tampon += Premier ? "\n  " : ",\n  ";
  Premier = false;
}

void TTableauJsonEnFlux::VideSiPlein() {
  if (Tampon.size() < kTailleTampon) return;
  std::cout.write(Tampon.data(), static_cast<std::streamsize>(Tampon.size()));
  Tampon.clear();
}

void TTableauJsonEnFlux::Ajoute(const json& element) {
  Separe();
  Tampon += element.dump();
  VideSiPlein();
}

TTableauJsonEnFlux::TObjet::TObjet(TTableauJsonEnFlux& tableau) : Tableau(tableau) {
  Tableau.Separe();
  Tableau.Tampon += '{';
}

TTableauJsonEnFlux::TObjet::~TObjet() {
  Tableau.Tampon += '}';
  Tableau.VideSiPlein();
}

void TTableauJsonEnFlux::TObjet::Cle(const char* cle) {
  if (!PremierMembre) Tableau.Tampon += ',';
  PremierMembre = false;
  Tableau.Tampon += '"';
  Tableau.Tampon += cle;  // nos clés : de l'ASCII sans rien à échapper
  Tableau.Tampon += "\":";
}

TTableauJsonEnFlux::TObjet& TTableauJsonEnFlux::TObjet::Texte(const char* cle, std::string_view cp1252) {
  Cle(cle);
  AjouteChaineJson(Tableau.Tampon, rqbase::VersUtf8(cp1252));
  return *this;
}

TTableauJsonEnFlux::TObjet& TTableauJsonEnFlux::TObjet::Entier(const char* cle, long valeur) {
  Cle(cle);
  char chiffres[24];
  const auto fin = std::to_chars(chiffres, chiffres + sizeof chiffres, valeur).ptr;
  Tableau.Tampon.append(chiffres, fin);
  return *this;
}

TTableauJsonEnFlux::TObjet& TTableauJsonEnFlux::TObjet::Booleen(const char* cle, bool valeur) {
  Cle(cle);
  Tableau.Tampon += valeur ? "true" : "false";
  return *this;
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
