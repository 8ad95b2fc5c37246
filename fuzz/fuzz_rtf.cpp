// Harnais libFuzzer : le décapeur RTF et notre lecteur RTF sur des octets quelconques, sans
// plantage ni lenteur. Le décapeur ne laisse ni accolade ni blanc aux bouts ; sur les
// textes courts, il est comparé au décapage direct, fait lettre à lettre sur le texte (le
// témoin du tampon à trou qu'il emploie pour rester linéaire).
#include <cstdint>
#include <cstdlib>
#include <string>

#include "rqbase/notes/conv_rtf_txt.h"
#include "rqbase/notes/lecteur_rtf.h"

namespace {

using rqbase::TConvRtfTxt;

bool Fin(const std::string& s, size_t i) {
  return i < s.size() && (s[i] == '\\' || s[i] == '{' || s[i] == ' ' || s[i] == '}');
}

// Les mêmes règles, sur la chaîne elle-même (positions à partir de 0).
void SupprimeCmde(std::string& s, size_t p) {
  size_t q = p + 1;
  while (q < s.size() && !Fin(s, q)) ++q;
  while (q < s.size() && (s[q] == '.' || s[q] == '(' || s[q] == ')')) ++q;
  s.erase(p, q - p);
}

int Hexa(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string Temoin(std::string s, bool sauts) {
  const auto ote = [&](const std::string& motif, bool unSeul) {
    for (;;) {
      const size_t p = s.find(motif);
      if (p == std::string::npos) return;
      const size_t f = s.find('}', p + motif.size());
      s.erase(p, f == std::string::npos ? std::string::npos : f - p + 1);
      if (unSeul) return;
    }
  };
  ote("{\\*\\generator", true);
  ote("{\\pict", false);
  for (size_t p; (p = s.find("\r\n")) != std::string::npos;) s.erase(p, 2);
  static const char* const mots[] = {"line",   "pard",   "par",    "page",     "fonttbl", "colortbl", "info",
                                     "title",  "header", "footer", "pict",     "author",  "operator", "stylesheet"};
  for (size_t i = s.size() >= 2 ? s.size() - 2 : 0; i >= 1 && s.size() >= 2; --i) {
    if (s[i] != '\\') continue;
    if (i + 1 < s.size() && s[i + 1] == '\'') {
      const int h = i + 2 < s.size() ? Hexa(s[i + 2]) : -1, l = i + 3 < s.size() ? Hexa(s[i + 3]) : -1;
      if (h >= 0 && l >= 0) {
        s.erase(i, 4);
        if (h * 16 + l) s.insert(i, 1, static_cast<char>(h * 16 + l));
      } else {
        SupprimeCmde(s, i);
      }
      continue;
    }
    const std::string suite = s.substr(i + 1, 10);
    int k = -1;
    for (int m = 0; m < 14 && k < 0; ++m)
      if (suite.compare(0, std::char_traits<char>::length(mots[m]), mots[m]) == 0) k = m + 1;
    if (k == 1 || k == 3 || k == 4) {
      SupprimeCmde(s, i);
      s.insert(i, sauts ? " \n" : " ");
    } else if (k == 2) {
      SupprimeCmde(s, i);
      if (!sauts) s.insert(i, " ");
    } else if (k >= 5) {
      int profondeur = 1;
      size_t q = i;
      for (; q < s.size(); ++q) {
        if (s[q] == '}') --profondeur;
        else if (s[q] == '{') ++profondeur;
        if (profondeur == 0) break;
      }
      if (q < s.size()) s.erase(i, q - i);
      else SupprimeCmde(s, i);
    } else {
      SupprimeCmde(s, i);
    }
  }
  for (size_t i = s.size(); i-- > 0;) {
    const char c = s[i], d = i + 1 < s.size() ? s[i + 1] : 0, e = i + 2 < s.size() ? s[i + 2] : 0;
    if (c == '{' && d == ' ') s.erase(i, 2);
    else if ((c == ' ' && d == '\r' && e == '\n') || c == '{' || c == '}' || (!sauts && (c == '\r' || c == '\n')))
      s.erase(i, 1);
  }
  const size_t a = s.find_first_not_of(std::string("\0\x01\x02\x03\x04\x05\x06\x07\x08\t\n\x0b\x0c\r\x0e\x0f"
                                                   "\x10\x11\x12\x13\x14\x15\x16\x17\x18\x19\x1a\x1b\x1c\x1d\x1e\x1f ", 33));
  if (a == std::string::npos) return "";
  size_t b = s.size();
  while (b > a && static_cast<unsigned char>(s[b - 1]) <= ' ') --b;
  return s.substr(a, b - a);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* donnees, size_t taille) {
  const std::string texte(reinterpret_cast<const char*>(donnees), taille);
  for (const bool sauts : {true, false}) {
    const std::string r = TConvRtfTxt(texte).TraitementRtfTxt(sauts);
    if (r.find_first_of("{}") != std::string::npos) std::abort();
    if (!r.empty() && (static_cast<unsigned char>(r.front()) <= ' ' || static_cast<unsigned char>(r.back()) <= ' '))
      std::abort();
    if (taille <= 4096 && r != Temoin(texte, sauts)) std::abort();
    const std::string l = rqbase::ConvertirRtfTxt(texte, sauts);
    if (!l.empty() && (static_cast<unsigned char>(l.front()) <= ' ' || static_cast<unsigned char>(l.back()) <= ' '))
      std::abort();
  }
  return 0;
}
