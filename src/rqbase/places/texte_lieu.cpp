#include "rqbase/places/texte_lieu.h"

#include "rqbase/util/chaines.h"

namespace rqbase {

std::string ConstuitChnLieuPointVirgule(const std::string& commune, const std::string& code,
                                        const std::string& region, const std::string& pays) {
  const std::string parties[] = {Trim(commune), Trim(code), Trim(region), Trim(pays)};
  size_t derniere = 0;  // la dernière partie non vide
  for (size_t i = 0; i < 4; ++i)
    if (!parties[i].empty()) derniere = i;
  std::string r = parties[0];
  for (size_t i = 1; i <= derniere; ++i) r += " ; " + parties[i];
  return r;
}

}  // namespace rqbase
