#include "rqbase/index/particules.h"

#include <cstring>

#include "rqbase/platform/ressources.h"
#include "rqbase/util/majuscules.h"

namespace rqbase {

namespace {

const std::string& Particules() {
  static const std::string liste = RetourneToutesParticules();
  return liste;
}

bool EstSeparateur(char c) {
  // Le degré est écrit par son octet : la liste est la même quel que soit le codage des littéraux.
  static constexpr char kSeparateurs[] = "-.'? &()[]/\xB0 ;";
  return c != '\0' && std::strchr(kSeparateurs, c) != nullptr;
}

}  // namespace

std::string RetourneToutesParticules() { return Ressource(kRessourceParticules); }

bool EstCeUneParticule(const std::string& mot) {
  if (mot.empty()) return false;
  std::string cherche = mot;
  if (cherche.back() == '\'') cherche.pop_back();
  if (cherche.empty()) return false;
  return Particules().find(' ' + UpperANSIChaineAS(cherche, 2) + ' ') != std::string::npos;
}

std::string PasseParticule(const std::string& nom) {
  std::string r;
  r.reserve(nom.size());
  std::size_t i = 0;
  while (i < nom.size()) {
    std::size_t fin = i;
    while (fin < nom.size() && !EstSeparateur(nom[fin])) ++fin;
    const bool separateur = fin < nom.size();
    if (fin > i && EstCeUneParticule(nom.substr(i, fin - i))) {
      i = separateur ? fin + 1 : fin;
      continue;
    }
    r.append(nom, i, fin - i);
    if (separateur) r += nom[fin];
    i = separateur ? fin + 1 : fin;
  }
  return r;
}

}  // namespace rqbase
