#include "rqbase/util/chaines.h"

namespace rqbase {

std::vector<std::string_view> DecoupeElts(std::string_view texte, char separateur) {
  std::vector<std::string_view> elts;
  if (texte.empty()) return elts;
  size_t debut = 0;
  for (;;) {
    const size_t fin = texte.find(separateur, debut);
    if (fin == std::string_view::npos) {
      elts.push_back(texte.substr(debut));
      return elts;
    }
    elts.push_back(texte.substr(debut, fin - debut));
    debut = fin + 1;
  }
}

int NombreElts(std::string_view texte, char separateur) { return int(DecoupeElts(texte, separateur).size()); }

std::string EltNo(int no, std::string_view texte, char separateur) {
  const auto elts = DecoupeElts(texte, separateur);
  if (no < 1 || no > int(elts.size())) return {};
  return std::string(elts[size_t(no - 1)]);
}

std::string RemplEltNo(int no, std::string_view texte, char separateur, std::string_view valeur) {
  if (no < 1) return std::string(texte);
  std::vector<std::string> elts;
  for (auto e : DecoupeElts(texte, separateur)) elts.emplace_back(e);
  if (int(elts.size()) < no) elts.resize(size_t(no));
  elts[size_t(no - 1)] = valeur;
  std::string r;
  for (size_t i = 0; i < elts.size(); ++i) {
    if (i) r += separateur;
    r += elts[i];
  }
  return r;
}

std::string RemplaceString(std::string_view texte, std::string_view ancien, std::string_view nouveau) {
  if (ancien.empty()) return std::string(texte);
  std::string r;
  r.reserve(texte.size());
  size_t debut = 0;
  for (size_t p; (p = texte.find(ancien, debut)) != std::string_view::npos; debut = p + ancien.size()) {
    r.append(texte.substr(debut, p - debut));
    r.append(nouveau);
  }
  r.append(texte.substr(debut));
  return r;
}

std::string Trim(std::string_view texte) {
  size_t d = 0, f = texte.size();
  while (d < f && static_cast<unsigned char>(texte[d]) <= ' ') ++d;
  while (f > d && static_cast<unsigned char>(texte[f - 1]) <= ' ') --f;
  return std::string(texte.substr(d, f - d));
}

std::string Virgule(std::string_view a, std::string_view b, bool blanc) {
  if (a.empty() || b.empty()) return {};
  return blanc ? ", " : ",";
}

std::string PointVirgule(std::string_view a, const char* b, bool blanc) {
  const bool bNonVide = b == nullptr || *b != '\0';
  if (a.empty() || !bNonVide) return {};
  return blanc ? " ; " : " ;";
}

std::string EntreParenthese(std::string_view s, bool blanc) {
  if (s.empty()) return {};
  std::string r = blanc ? " (" : "(";
  r.append(s);
  r += ')';
  return r;
}

std::string Espace(std::string_view s) { return s.empty() ? std::string() : std::string(" "); }

namespace {
bool EstSeparateurAbrege(char c) { return c == ' ' || c == ':' || c == '-'; }
bool EstConsonne(char c) {
  const char m = static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c);
  return m >= 'B' && m <= 'Z' && m != 'E' && m != 'I' && m != 'O' && m != 'U' && m != 'Y';
}
}  // namespace

std::string AbregeChn(std::string_view s, int largeur) {
  if (largeur < 0) largeur = 0;
  const size_t l = static_cast<size_t>(largeur);
  if (l >= s.size()) return std::string(s);
  if (EstSeparateurAbrege(s[l])) return std::string(s.substr(0, l));
  // De la coupe vers le début : la consonne ou le séparateur le plus proche.
  for (size_t k = l + 1; k-- > 0;) {
    if (!EstConsonne(s[k]) && !EstSeparateurAbrege(s[k])) continue;
    std::string r(s.substr(0, k));
    if (s.size() > 3 && !EstSeparateurAbrege(s[k]) && (k + 1 >= s.size() || !EstSeparateurAbrege(s[k + 1]))) r += '.';
    return Trim(r);
  }
  return s.empty() ? std::string() : std::string(1, s[0]) + ".";
}

}  // namespace rqbase
