#include "rqbase/index/bo_chn.h"

#include <cstring>

#include "rqbase/index/particules.h"
#include "rqbase/util/majuscules.h"

namespace rqbase {

std::string NormaliseCle(std::string& nom) {
  std::string travail = UpperANSIChaineAS(nom.c_str(), 2);
  std::string cle;
  cle.reserve(travail.size());
  bool entreParentheses = false;
  for (const char c : travail) {
    if (c == '(' || c == ')') {
      // Voulu : la fermante bascule comme l'ouvrante, si bien qu'une ')' égarée ouvre un passage.
      entreParentheses = !entreParentheses;
      continue;
    }
    if (entreParentheses) continue;
    if ((c >= 'A' && c <= 'Z') || c == ' ' || c == '-') cle += c;
  }
  nom = cle;
  return cle;
}

int strcmpIgnDiac(const char* a, const char* b) {
  const int r = std::strcmp(UpperANSIChaineAS(a, 2).c_str(), UpperANSIChaineAS(b, 2).c_str());
  return r != 0 ? r : std::strcmp(a, b);
}

std::string TransformeEnCaractereIndex(const std::string& texte) {
  static constexpr char kOtes[] = "*?,(){}[]&\"/=";
  std::string sansOtes;
  sansOtes.reserve(texte.size());
  for (const char c : texte)
    if (c == '\0' || std::strchr(kOtes, c) == nullptr) sansOtes += c;
  // Les ';' d'abord, les blancs ensuite : "A; ;B" garde ses deux ';'.
  std::string r;
  r.reserve(sansOtes.size());
  for (const char c : sansOtes)
    if (c != ';' || r.empty() || r.back() != ';') r += c;
  std::string sortie;
  sortie.reserve(r.size());
  for (const char c : r)
    if (c != ' ' || sortie.empty() || sortie.back() != ' ') sortie += c;
  return sortie;
}

std::string FormatIndex(const std::string& nom) {
  return TransformeEnCaractereIndex(UpperANSIChaineAS(PasseParticule(nom), 2));
}

}  // namespace rqbase
