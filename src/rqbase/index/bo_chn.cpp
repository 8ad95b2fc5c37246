#include "rqbase/index/bo_chn.h"

#include <cstring>

#include "rqbase/index/particules.h"
#include "rqbase/util/chaines.h"
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
  // Les trois passes (ôter, replier les ';', replier les blancs) en une seule : chaque passe
  // juge sur ce que la précédente a gardé, d'où le dernier caractère gardé après les ';'.
  // Ainsi "A; ;B" garde ses deux ';', et "A;(;B" n'en garde qu'un.
  std::string sortie;
  sortie.reserve(texte.size());
  char dernierApresPointsVirgules = '\0';
  for (const char c : texte) {
    if (c != '\0' && std::strchr(kOtes, c) != nullptr) continue;
    if (c == ';' && dernierApresPointsVirgules == ';') continue;
    dernierApresPointsVirgules = c;
    if (c == ' ' && !sortie.empty() && sortie.back() == ' ') continue;
    sortie += c;
  }
  return sortie;
}

std::string FormatIndex(const std::string& nom) {
  return TransformeEnCaractereIndex(UpperANSIChaineAS(PasseParticule(nom), 2));
}

std::string CleNomIndex(std::string_view nom) {
  std::string n = UpperANSIChaineAS(PasseParticule(Trim(nom)), 2);
  if (n.size() > kLongueurCleIndex) n.resize(kLongueurCleIndex);
  return Trim(TransformeEnCaractereIndex(n));
}

std::string ClePrenomIndex(std::string_view prenom) {
  std::string n = FormatIndex(std::string(prenom));
  if (n.size() > kLongueurCleIndex) n.resize(kLongueurCleIndex);
  return Trim(n);
}

}  // namespace rqbase
