#include "rqbase/platform/cp1252.h"

#include <array>
#include <cstdint>

namespace rqbase {
namespace {

// Points de code Unicode des octets 0x80 à 0x9F ; le reste vaut l'octet lui-même.
constexpr std::array<char32_t, 32> kPlage80 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

char32_t PointDeCode(unsigned char c) {
  return (c >= 0x80 && c <= 0x9F) ? kPlage80[c - 0x80] : char32_t(c);
}

int OctetDepuisPointDeCode(char32_t u) {
  if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) return int(u);
  for (int i = 0; i < 32; ++i)
    if (kPlage80[i] == u) return 0x80 + i;
  return -1;
}

void AjouteUtf8(std::string& sortie, char32_t u) {
  if (u < 0x80) {
    sortie += char(u);
  } else if (u < 0x800) {
    sortie += char(0xC0 | (u >> 6));
    sortie += char(0x80 | (u & 0x3F));
  } else {
    sortie += char(0xE0 | (u >> 12));
    sortie += char(0x80 | ((u >> 6) & 0x3F));
    sortie += char(0x80 | (u & 0x3F));
  }
}

// Décode un caractère UTF-8 à la position i ; renvoie sa longueur, 0 si la suite est invalide.
int DecodeUtf8(std::string_view t, size_t i, char32_t& u) {
  const auto o = [&](size_t k) { return static_cast<unsigned char>(t[k]); };
  const unsigned char c = o(i);
  int n = 0;
  if (c < 0x80) { u = c; return 1; }
  if ((c & 0xE0) == 0xC0) { u = c & 0x1F; n = 2; }
  else if ((c & 0xF0) == 0xE0) { u = c & 0x0F; n = 3; }
  else if ((c & 0xF8) == 0xF0) { u = c & 0x07; n = 4; }
  else return 0;
  if (i + n > t.size()) return 0;
  for (int k = 1; k < n; ++k) {
    if ((o(i + k) & 0xC0) != 0x80) return 0;
    u = (u << 6) | (o(i + k) & 0x3F);
  }
  // Formes trop longues et substituts refusés.
  if ((n == 2 && u < 0x80) || (n == 3 && u < 0x800) || (n == 4 && (u < 0x10000 || u > 0x10FFFF)) ||
      (u >= 0xD800 && u <= 0xDFFF))
    return 0;
  return n;
}

}  // namespace

unsigned char MajusculeCp1252(unsigned char c) {
  if (c >= 'a' && c <= 'z') return c - 32;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 32;
  switch (c) {
    case 0x9A: return 0x8A;  // š
    case 0x9C: return 0x8C;  // œ
    case 0x9E: return 0x8E;  // ž
    case 0xFF: return 0x9F;  // ÿ
    default: return c;
  }
}

unsigned char MinusculeCp1252(unsigned char c) {
  if (c >= 'A' && c <= 'Z') return c + 32;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 32;
  switch (c) {
    case 0x8A: return 0x9A;
    case 0x8C: return 0x9C;
    case 0x8E: return 0x9E;
    case 0x9F: return 0xFF;
    default: return c;
  }
}

std::string MajusculesCp1252(std::string_view texte) {
  std::string r(texte);
  for (auto& c : r) c = char(MajusculeCp1252(static_cast<unsigned char>(c)));
  return r;
}

std::string MinusculesCp1252(std::string_view texte) {
  std::string r(texte);
  for (auto& c : r) c = char(MinusculeCp1252(static_cast<unsigned char>(c)));
  return r;
}

unsigned char SansAccentCp1252(unsigned char c) {
  static constexpr const char* kMaj = "AAAAAA CEEEEIIIIDNOOOOO OUUUUY  ";  // 0xC0..0xDF
  static constexpr const char* kMin = "aaaaaa ceeeeiiiidnooooo ouuuuy y";  // 0xE0..0xFF
  if (c >= 0xC0) {
    const char r = (c < 0xE0 ? kMaj[c - 0xC0] : kMin[c - 0xE0]);
    return r == ' ' ? c : static_cast<unsigned char>(r);
  }
  switch (c) {
    case 0x8A: return 'S';
    case 0x9A: return 's';
    case 0x8E: return 'Z';
    case 0x9E: return 'z';
    case 0x9F: return 'Y';
    default: return c;
  }
}

std::string VersUtf8(std::string_view cp1252) {
  std::string r;
  r.reserve(cp1252.size() + cp1252.size() / 4);
  for (unsigned char c : cp1252) AjouteUtf8(r, PointDeCode(c));
  return r;
}

std::string DepuisUtf8(std::string_view utf8) {
  std::string r;
  r.reserve(utf8.size());
  for (size_t i = 0; i < utf8.size();) {
    char32_t u = 0;
    const int n = DecodeUtf8(utf8, i, u);
    if (n == 0) {  // octet isolé : déjà du Windows-1252
      r += utf8[i++];
      continue;
    }
    const int octet = OctetDepuisPointDeCode(u);
    r += octet < 0 ? '?' : char(octet);
    i += size_t(n);
  }
  return r;
}

char32_t PremierCaractereSansEquivalent(std::string_view utf8) {
  for (size_t i = 0; i < utf8.size();) {
    char32_t u = 0;
    const int n = DecodeUtf8(utf8, i, u);
    if (n == 0) {
      ++i;
      continue;
    }
    if (OctetDepuisPointDeCode(u) < 0) return u;
    i += size_t(n);
  }
  return 0;
}

bool EstUtf8Valide(std::string_view texte) {
  for (size_t i = 0; i < texte.size();) {
    char32_t u = 0;
    const int n = DecodeUtf8(texte, i, u);
    if (n == 0) return false;
    i += size_t(n);
  }
  return true;
}

}  // namespace rqbase
