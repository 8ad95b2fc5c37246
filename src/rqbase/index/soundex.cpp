#include "rqbase/index/soundex.h"

#include <cstring>
#include <string>

namespace rqbase {

namespace {

// Le chiffre de la classe d'une lettre, '*' pour le joker, 0 pour ce qui n'en a pas.
char Classe(char c) {
  switch (c) {
    case 'B': case 'F': case 'P': case 'V': return '1';
    case 'C': case 'G': case 'J': case 'K': case 'Q': case 'S': case 'X': case 'Z': return '2';
    case 'D': case 'T': return '3';
    case 'L': return '4';
    case 'M': case 'N': return '5';
    case 'R': return '6';
    case '*': return '*';
    default: return 0;
  }
}

// strcmp sur des codes, ramené à -1, 0, 1.
int Compare(const char* a, const char* b) {
  const int r = std::strcmp(a, b);
  return (r > 0) - (r < 0);
}

}  // namespace

char* strSoundex(const char* src, char* dest) {
  dest[0] = '\0';
  if (src == nullptr || src[0] == '\0') return nullptr;
  const char* p = src;
  if (*p == 'H') ++p;
  if (*p == '\0') return nullptr;
  std::size_t n = 0;
  dest[n++] = *p;
  for (const char* q = p + 1; *q != '\0' && n < kTailleSoundex - 1; ++q) {
    if (*q == q[-1]) continue;
    if (const char chiffre = Classe(*q)) dest[n++] = chiffre;
  }
  dest[n] = '\0';
  return dest;
}

int strcmpSoundexPartiel(const char* a, const char* b) {
  char codeA[kTailleSoundex];
  char codeB[kTailleSoundex];
  strSoundex(a, codeA);
  strSoundex(b, codeB);
  const std::size_t la = std::strlen(codeA);
  const std::size_t lb = std::strlen(codeB);
  if (a != nullptr && std::strchr(a, '*') != nullptr && la < lb) {
    codeB[la] = '\0';
  } else if (b != nullptr && std::strchr(b, '*') != nullptr && lb < la) {
    codeA[lb] = '\0';
  }
  return Compare(codeA, codeB);
}

bool strEgaleSoundexPartielChqElt(const char* cherche, const char* texte) {
  if (texte == nullptr) return false;
  bool trouve = false;
  std::string element;
  for (const char* p = texte;; ++p) {
    if (*p == ' ' || *p == '\0') {
      if (!element.empty() && strcmpSoundexPartiel(cherche, element.c_str()) == 0) trouve = true;
      element.clear();
      if (*p == '\0') break;
    } else {
      element += *p;
    }
  }
  return trouve;
}

}  // namespace rqbase
