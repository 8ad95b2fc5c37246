#include "rqbase/util/majuscules.h"

#include <cstring>

#include "rqbase/platform/cp1252.h"

namespace rqbase {

namespace {

// Capitale nue d'une capitale accentuée (après la mise en capitales), ou l'octet lui-même.
unsigned char CapitaleNue(unsigned char c) {
  if (c >= 0xC0 && c <= 0xC5) return 'A';  // À Á Â Ã Ä Å
  if (c == 0xC7) return 'C';               // Ç
  if (c >= 0xC8 && c <= 0xCB) return 'E';  // È É Ê Ë
  if (c >= 0xCC && c <= 0xCF) return 'I';  // Ì Í Î Ï
  if (c == 0xD1) return 'N';               // Ñ
  if (c >= 0xD2 && c <= 0xD6) return 'O';  // Ò Ó Ô Õ Ö
  if (c >= 0xD9 && c <= 0xDC) return 'U';  // Ù Ú Û Ü
  if (c == 0xDD || c == 0x9F) return 'Y';  // Ý Ÿ
  return c;
}

}  // namespace

void UpperANSIChaine0(char* dest, const char* src, int mode) {
  const size_t n = std::strlen(src);
  if (dest != src) std::memmove(dest, src, n + 1);
  for (size_t i = 0; i < n; ++i) {
    const unsigned char c = MajusculeCp1252(static_cast<unsigned char>(dest[i]));
    dest[i] = static_cast<char>(mode == 1 ? c : CapitaleNue(c));
  }
}

std::string UpperANSIChaineAS(const std::string& texte, int mode) {
  std::string r = texte;
  UpperANSIChaine0(r.data(), r.c_str(), mode);
  return r;
}

}  // namespace rqbase
