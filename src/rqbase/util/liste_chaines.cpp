#include "rqbase/util/liste_chaines.h"

#include "rqbase/platform/cp1252.h"

namespace rqbase {
namespace {

std::string Guillemets(const std::string& s, char q) {
  std::string r(1, q);
  for (char c : s) {
    if (c == q) r += q;
    r += c;
  }
  r += q;
  return r;
}

bool Blanc(char c) { return c != '\0' && static_cast<unsigned char>(c) <= ' '; }

std::string Ecrit(const std::vector<std::string>& chaines, char delim, char q, bool strict) {
  if (chaines.size() == 1 && chaines[0].empty()) return std::string(2, q);
  std::string r;
  for (size_t i = 0; i < chaines.size(); ++i) {
    const std::string& s = chaines[i];
    bool aProteger = false;
    for (char c : s) {
      if (c == '\0') break;  // le texte s'arrête au premier zéro pour ce test
      if (c == q || c == delim || (!strict && static_cast<unsigned char>(c) <= ' ')) {
        aProteger = true;
        break;
      }
    }
    if (i) r += delim;
    r += aProteger ? Guillemets(s, q) : s;
  }
  return r;
}

std::vector<std::string> Lit(const std::string& texte, char delim, char q, bool strict) {
  std::vector<std::string> r;
  const size_t n = texte.size();
  size_t p = 0;
  const auto sauteBlancs = [&] {
    if (!strict)
      while (p < n && Blanc(texte[p])) ++p;
  };
  sauteBlancs();
  while (p < n && texte[p] != '\0') {
    std::string s;
    if (texte[p] == q) {
      ++p;  // guillemet ouvrant ; deux guillemets de suite en valent un
      while (p < n) {
        if (texte[p] == q) {
          if (p + 1 < n && texte[p + 1] == q) {
            s += q;
            p += 2;
            continue;
          }
          ++p;
          break;
        }
        s += texte[p++];
      }
    } else {
      const size_t debut = p;
      while (p < n && texte[p] != delim && texte[p] != '\0' &&
             (strict || static_cast<unsigned char>(texte[p]) > ' '))
        ++p;
      s.assign(texte, debut, p - debut);
    }
    r.push_back(std::move(s));
    sauteBlancs();
    if (p < n && texte[p] == delim) {
      if (p + 1 >= n || texte[p + 1] == '\0') r.emplace_back();
      ++p;
      sauteBlancs();
    }
  }
  return r;
}

}  // namespace

int TStringList::Add(const std::string& s, intptr_t objet) {
  Chaines.push_back(s);
  Objets.push_back(objet);
  return Count() - 1;
}

void TStringList::Insert(int i, const std::string& s, intptr_t objet) {
  if (i < 0 || i > Count()) return;
  Chaines.insert(Chaines.begin() + i, s);
  Objets.insert(Objets.begin() + i, objet);
}

void TStringList::Delete(int i) {
  if (i < 0 || i >= Count()) return;
  Chaines.erase(Chaines.begin() + i);
  Objets.erase(Objets.begin() + i);
}

void TStringList::Clear() {
  Chaines.clear();
  Objets.clear();
}

bool TStringList::Egaux(const std::string& a, const std::string& b) const {
  return CaseSensitive ? a == b : MajusculesCp1252(a) == MajusculesCp1252(b);
}

int TStringList::IndexOf(const std::string& s) const {
  for (int i = 0; i < Count(); ++i)
    if (Egaux(Chaines[size_t(i)], s)) return i;
  return -1;
}

std::string TStringList::Name(int i) const {
  const std::string& s = Chaines.at(size_t(i));
  const size_t p = s.find('=');
  return p == std::string::npos ? std::string() : s.substr(0, p);
}

std::string TStringList::ValueFromIndex(int i) const {
  const std::string& s = Chaines.at(size_t(i));
  const size_t p = s.find('=');
  return p == std::string::npos ? std::string() : s.substr(p + 1);
}

int TStringList::IndexOfName(const std::string& nom) const {
  for (int i = 0; i < Count(); ++i) {
    const std::string& s = Chaines[size_t(i)];
    const size_t p = s.find('=');
    if (p != std::string::npos && Egaux(s.substr(0, p), nom)) return i;
  }
  return -1;
}

std::string TStringList::Value(const std::string& nom) const {
  const int i = IndexOfName(nom);
  return i < 0 ? std::string() : ValueFromIndex(i);
}

void TStringList::SetValue(const std::string& nom, const std::string& valeur) {
  const int i = IndexOfName(nom);
  if (i < 0)
    Add(nom + "=" + valeur);
  else
    Chaines[size_t(i)] = nom + "=" + valeur;
}

std::string TStringList::DelimitedText() const { return Ecrit(Chaines, Delimiter, QuoteChar, StrictDelimiter); }

void TStringList::SetDelimitedText(const std::string& texte) {
  Clear();
  for (auto& s : Lit(texte, Delimiter, QuoteChar, StrictDelimiter)) Add(s);
}

std::string TStringList::CommaText() const { return Ecrit(Chaines, ',', '"', false); }

void TStringList::SetCommaText(const std::string& texte) {
  Clear();
  for (auto& s : Lit(texte, ',', '"', false)) Add(s);
}

std::string TStringList::Text() const {
  std::string r;
  for (const auto& s : Chaines) {
    r += s;
    r += "\r\n";
  }
  return r;
}

void TStringList::SetText(const std::string& texte) {
  Clear();
  size_t p = 0;
  const size_t n = texte.size();
  while (p < n) {
    const size_t debut = p;
    while (p < n && texte[p] != '\r' && texte[p] != '\n') ++p;
    Add(texte.substr(debut, p - debut));
    if (p < n && texte[p] == '\r') ++p;
    if (p < n && texte[p] == '\n') ++p;
  }
}

}  // namespace rqbase
