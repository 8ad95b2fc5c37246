#include "rqbase/index/prenom_usuel.h"

#include <cstring>

#include "rqbase/util/chaines.h"

namespace rqbase {

std::string NoCotePrenomUsuel(const std::string& prenoms, short no) {
  const auto elements = DecoupeElts(prenoms, ' ');
  if (no <= 0 || no > static_cast<int>(elements.size())) return prenoms;
  std::string r;
  r.reserve(prenoms.size() + 2);
  for (std::size_t i = 0; i < elements.size(); ++i) {
    if (i > 0) r += ' ';
    const bool usuel = static_cast<int>(i) + 1 == no;
    if (usuel) r += '"';
    r += elements[i];
    if (usuel) r += '"';
  }
  return Trim(r);
}

short CoteNoPrenomUsuel(char* prenoms) {
  // Les guillemets se jugent sur le texte d'origine, pas sur ce qui est déjà réécrit.
  const std::string origine = prenoms;
  const std::size_t n = origine.size();
  short rang = 0;
  int element = 1;
  std::size_t ecrit = 0;
  for (std::size_t i = 0; i < n; ++i) {
    const char c = origine[i];
    if (c == ' ') {
      ++element;
    } else if (c == '"') {
      const bool milieuDeMot = i > 0 && origine[i - 1] != ' ';
      if (milieuDeMot) ++element;
      if (rang == 0) rang = static_cast<short>(element > 32767 ? 32767 : element);
      if (milieuDeMot && (i + 1 == n || origine[i + 1] != ' ')) prenoms[ecrit++] = ' ';
      continue;
    }
    prenoms[ecrit++] = c;
  }
  prenoms[ecrit] = '\0';
  const std::string rogne = Trim(prenoms);
  std::memcpy(prenoms, rogne.c_str(), rogne.size() + 1);
  return rang;
}

}  // namespace rqbase
