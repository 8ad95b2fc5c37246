#include "rqbase/index/cle_compressee.h"

#include <cstring>

namespace rqbase {

namespace {

unsigned CodeDe(unsigned char c) {
  switch (c) {
    case 0: return 0;
    case 255: return 1;
    case ' ': return 2;
    case '-': return 3;
    default: return (static_cast<unsigned>(c) - 61u) & 0x1Fu;
  }
}

char CaractereDe(unsigned code) {
  switch (code) {
    case 1: return static_cast<char>(255);
    case 2: return ' ';
    case 3: return '-';
    default: return static_cast<char>(code + 61);
  }
}

}  // namespace

void Compress(const char* src, char* dest) {
  const auto n = static_cast<unsigned char>(src[0]);
  const std::size_t octets = (static_cast<std::size_t>(n) * 5 + 7) / 8 + 1;
  std::memset(dest, 0, octets);
  dest[0] = static_cast<char>(octets);
  std::size_t bit = 8;
  for (unsigned i = 1; i <= n; ++i) {
    const unsigned code = CodeDe(static_cast<unsigned char>(src[i]));
    for (int b = 4; b >= 0; --b, ++bit)
      if ((code >> b) & 1u) dest[bit / 8] = static_cast<char>(static_cast<unsigned char>(dest[bit / 8]) | (0x80u >> (bit % 8)));
  }
}

void DeCompress(const char* src, char* dest) {
  const auto octets = static_cast<unsigned char>(src[0]);
  const std::size_t codes = static_cast<std::size_t>(octets) * 8 / 5;
  // La lecture demandée déborde d'un octet la forme serrée (elle compte l'octet de longueur) :
  // au-delà des src[0] octets annoncés, les bits valent 0, soit des codes passés.
  const std::size_t bitsLisibles = static_cast<std::size_t>(octets) * 8;
  const auto litBit = [&](std::size_t bit) {
    return bit < bitsLisibles && ((static_cast<unsigned char>(src[bit / 8]) >> (7 - bit % 8)) & 1u);
  };
  std::size_t ecrits = 0;
  std::size_t bit = 8;
  for (std::size_t k = 0; k < codes; ++k) {
    unsigned code = 0;
    for (int b = 0; b < 5; ++b, ++bit) code = (code << 1) | (litBit(bit) ? 1u : 0u);
    if (code == 0) continue;
    dest[1 + ecrits++] = CaractereDe(code);
  }
  dest[0] = static_cast<char>((ecrits + 1) & 0xFF);
  dest[1 + ecrits] = '\0';
}

}  // namespace rqbase
