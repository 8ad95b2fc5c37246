#include "rqbase/fields/rendu_texte.h"

#include <array>

#include "rqbase/util/chaines.h"
#include "rqbase/util/majuscules.h"

namespace rqbase {

namespace {

// Vrai, faux, ou inconnu pour la forme texte d'un booléen enregistré.
int ValeurBooleen(const std::string& s) {
  if (s == "Oui" || s == "O" || s == "o") return 1;
  if (s == "Non" || s == "N" || s == "n") return 0;
  return -1;
}

}  // namespace

std::string AbregeChpsSimple(const std::string& s, TChampBase::TStyle style) {
  static constexpr std::array<int, 4> kLargeurs = {3, 6, 10, 15};
  const int n = static_cast<int>(style) - 183;
  if (n < 0 || n > 3) return s;
  const std::string separateur = s.find("; ") != std::string::npos ? "; " : ", ";
  std::string r;
  size_t debut = 0;
  while (true) {
    const size_t fin = s.find(separateur, debut);
    const std::string element = s.substr(debut, fin == std::string::npos ? std::string::npos : fin - debut);
    r += AbregeChn(element, kLargeurs[static_cast<size_t>(n)]);
    if (fin == std::string::npos) break;
    r += separateur;
    debut = fin + separateur.size();
  }
  return r;
}

std::string AjusteStyleTexte(const std::string& s, TChampBase::TStyle style) {
  static constexpr std::array<int, 6> kAbreges = {3, 6, 10, 15, 20, 30};
  const int st = static_cast<int>(style);
  if (st >= 61 && st <= 65) return s.substr(0, static_cast<size_t>(st - 60));
  if (st >= 66 && st <= 71) return AbregeChn(s, kAbreges[static_cast<size_t>(st - 66)]);
  if (st >= 81 && st <= 86) {
    // Vrai, faux, inconnu pour chaque style.
    static const char* const kFormes[6][3] = {
        {"O", "N", "?"},          {"o", "n", "?"},       {"Vrai", "Faux", "Indeterminer"},
        {"O", "?", "-"},          {"Certaine", "Incertaine", "Indeterminer"}, {"Oui", "Non", "?"},
    };
    const int v = ValeurBooleen(s);
    return kFormes[st - 81][v == 1 ? 0 : v == 0 ? 1 : 2];
  }
  if (st >= 183 && st <= 186) return AbregeChpsSimple(s, style);
  return s;
}

std::string AjusteCasseTexte(const std::string& s, TChampBase::TCasse casse) {
  switch (casse) {
    case 0:
      return UpperANSIChaineAS(s, 1);
    case 1:
      return LowerChaineAS(s, 1);
    case 3:
      return UpperANSIChaineAS(s, 2);
    default:
      return s;
  }
}

}  // namespace rqbase
