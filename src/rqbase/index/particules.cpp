#include "rqbase/index/particules.h"

#include <cstring>
#include <string_view>

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

// La recherche sans allocation pour un mot court (les particules le sont toutes) : le mot,
// mis en capitales nues et entouré de blancs, est cherché dans la liste.
bool EstParticule(std::string_view mot) {
  if (mot.empty()) return false;
  if (mot.back() == '\'') mot.remove_suffix(1);
  if (mot.empty()) return false;
  const std::string& liste = Particules();
  if (mot.size() + 2 > liste.size()) return false;
  char cherche[64];
  std::string long_;
  char* p = cherche;
  if (mot.size() + 3 > sizeof cherche) {
    long_.resize(mot.size() + 3);
    p = long_.data();
  }
  p[0] = ' ';
  std::memcpy(p + 1, mot.data(), mot.size());
  p[mot.size() + 1] = '\0';
  // Comme la mise en capitales d'un texte zéro-terminé : elle s'arrête au premier octet nul.
  UpperANSIChaine0(p + 1, p + 1, 2);
  p[mot.size() + 1] = ' ';
  return liste.find(std::string_view(p, mot.size() + 2)) != std::string::npos;
}

}  // namespace

std::string RetourneToutesParticules() { return Ressource(kRessourceParticules); }

bool EstCeUneParticule(const std::string& mot) { return EstParticule(mot); }

std::string PasseParticule(const std::string& nom) {
  std::string r;
  r.reserve(nom.size());
  std::size_t i = 0;
  while (i < nom.size()) {
    std::size_t fin = i;
    while (fin < nom.size() && !EstSeparateur(nom[fin])) ++fin;
    const bool separateur = fin < nom.size();
    if (fin > i && EstParticule(std::string_view(nom).substr(i, fin - i))) {
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
