#include "rqbase/gedcom/codages.h"

#include <cstdint>

#include "rqbase/platform/cp1252.h"

namespace rqbase {

namespace {

// Les octets sont écrits en nombres : la construction de fuzz (clang) garde ses littéraux
// en UTF-8, et ces tables doivent rester des octets Windows-1252 partout.
struct TCompose {
  unsigned char Diacritique;  // l'octet ANSEL, avant la lettre
  char Lettre;
  unsigned char Cp1252;
};

constexpr TCompose kComposes[] = {
    // grave
    {0xE1, 'A', 0xC0}, {0xE1, 'E', 0xC8}, {0xE1, 'I', 0xCC}, {0xE1, 'O', 0xD2}, {0xE1, 'U', 0xD9},
    {0xE1, 'a', 0xE0}, {0xE1, 'e', 0xE8}, {0xE1, 'i', 0xEC}, {0xE1, 'o', 0xF2}, {0xE1, 'u', 0xF9},
    // aigu
    {0xE2, 'A', 0xC1}, {0xE2, 'E', 0xC9}, {0xE2, 'I', 0xCD}, {0xE2, 'O', 0xD3}, {0xE2, 'U', 0xDA},
    {0xE2, 'Y', 0xDD}, {0xE2, 'a', 0xE1}, {0xE2, 'e', 0xE9}, {0xE2, 'i', 0xED}, {0xE2, 'o', 0xF3},
    {0xE2, 'u', 0xFA}, {0xE2, 'y', 0xFD},
    // circonflexe
    {0xE3, 'A', 0xC2}, {0xE3, 'E', 0xCA}, {0xE3, 'I', 0xCE}, {0xE3, 'O', 0xD4}, {0xE3, 'U', 0xDB},
    {0xE3, 'a', 0xE2}, {0xE3, 'e', 0xEA}, {0xE3, 'i', 0xEE}, {0xE3, 'o', 0xF4}, {0xE3, 'u', 0xFB},
    // tilde
    {0xE4, 'A', 0xC3}, {0xE4, 'N', 0xD1}, {0xE4, 'O', 0xD5}, {0xE4, 'a', 0xE3}, {0xE4, 'n', 0xF1},
    {0xE4, 'o', 0xF5},
    // tréma
    {0xE8, 'A', 0xC4}, {0xE8, 'E', 0xCB}, {0xE8, 'I', 0xCF}, {0xE8, 'O', 0xD6}, {0xE8, 'U', 0xDC},
    {0xE8, 'Y', 0x9F}, {0xE8, 'a', 0xE4}, {0xE8, 'e', 0xEB}, {0xE8, 'i', 0xEF}, {0xE8, 'o', 0xF6},
    {0xE8, 'u', 0xFC}, {0xE8, 'y', 0xFF},
    // rond en chef, cédille, caron
    {0xEA, 'A', 0xC5}, {0xEA, 'a', 0xE5}, {0xF0, 'C', 0xC7}, {0xF0, 'c', 0xE7},
    {0xE9, 'S', 0x8A}, {0xE9, 's', 0x9A}, {0xE9, 'Z', 0x8E}, {0xE9, 'z', 0x9E},
};

// Les caractères ANSEL d'un octet (0xA1-0xCF) qui ont leur équivalent ; 0 : aucun.
unsigned char Espacant(unsigned char c) {
  switch (c) {
    case 0xA2: return 0xD8;  // Ø
    case 0xA3: return 0xD0;  // Đ lu Ð
    case 0xA4: return 0xDE;  // Þ
    case 0xA5: return 0xC6;  // Æ
    case 0xA6: return 0x8C;  // Œ
    case 0xA7: return '\'';  // signe doux
    case 0xA8: return 0xB7;  // point médian
    case 0xA9: return 0x99;  // bémol lu comme marque : voulu, rien de mieux
    case 0xAA: return 0xAE;  // ®
    case 0xAB: return 0xB1;  // ±
    case 0xAE: return '\'';  // alif
    case 0xB0: return '\'';  // ayn
    case 0xB2: return 0xF8;  // ø
    case 0xB4: return 0xFE;  // þ
    case 0xB5: return 0xE6;  // æ
    case 0xB6: return 0x9C;  // œ
    case 0xB7: return '"';   // signe dur
    case 0xB8: return 'i';   // i sans point
    case 0xB9: return 0xA3;  // £
    case 0xBA: return 0xF0;  // ð
    case 0xC0: return 0xB0;  // °
    case 0xC3: return 0xA9;  // ©
    case 0xC5: return 0xBF;  // ¿
    case 0xC6: return 0xA1;  // ¡
    case 0xC8: return 0x80;  // €
    case 0xCF: return 0xDF;  // ß
    default: return 0;
  }
}

bool EstDiacritique(unsigned char c) { return c >= 0xE0 && c <= 0xFE; }

void AjouteUtf8(std::string& s, char32_t c) {
  if (c < 0x80) {
    s += static_cast<char>(c);
  } else if (c < 0x800) {
    s += static_cast<char>(0xC0 | (c >> 6));
    s += static_cast<char>(0x80 | (c & 0x3F));
  } else if (c < 0x10000) {
    s += static_cast<char>(0xE0 | (c >> 12));
    s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    s += static_cast<char>(0x80 | (c & 0x3F));
  } else {
    s += static_cast<char>(0xF0 | (c >> 18));
    s += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    s += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    s += static_cast<char>(0x80 | (c & 0x3F));
  }
}

// Compare sans casse un nom de codage à un modèle en capitales, tirets et blancs ignorés.
bool MemeNom(std::string_view nom, std::string_view modele) {
  size_t j = 0;
  for (char c : nom) {
    if (c == '-' || c == ' ' || c == '_') continue;
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    if (j >= modele.size() || modele[j] != c) return false;
    ++j;
  }
  return j == modele.size();
}

}  // namespace

const char* NomCodage(TCodageGedcom c) {
  switch (c) {
    case TCodageGedcom::Utf8: return "UTF-8";
    case TCodageGedcom::Utf16Le: return "UTF-16LE";
    case TCodageGedcom::Utf16Be: return "UTF-16BE";
    case TCodageGedcom::Ansel: return "ANSEL";
    case TCodageGedcom::Ascii: return "ASCII";
    case TCodageGedcom::Ansi: return "ANSI";
    case TCodageGedcom::Inconnu: break;
  }
  return "inconnu";
}

TCodageGedcom CodageParMarque(std::string_view o, size_t& lgMarque) {
  lgMarque = 0;
  auto octet = [&](size_t i) { return i < o.size() ? static_cast<unsigned char>(o[i]) : 0x100u; };
  if (octet(0) == 0xEF && octet(1) == 0xBB && octet(2) == 0xBF) {
    lgMarque = 3;
    return TCodageGedcom::Utf8;
  }
  if (octet(0) == 0xFF && octet(1) == 0xFE) {
    lgMarque = 2;
    return TCodageGedcom::Utf16Le;
  }
  if (octet(0) == 0xFE && octet(1) == 0xFF) {
    lgMarque = 2;
    return TCodageGedcom::Utf16Be;
  }
  // Sans marque : un fichier GEDCOM commence par « 0 », ce qui trahit l'UTF-16.
  if (octet(0) == '0' && octet(1) == 0) return TCodageGedcom::Utf16Le;
  if (octet(0) == 0 && octet(1) == '0') return TCodageGedcom::Utf16Be;
  return TCodageGedcom::Inconnu;
}

TCodageGedcom CodageParNom(std::string_view nom) {
  if (MemeNom(nom, "UTF8") || MemeNom(nom, "UNICODE")) return TCodageGedcom::Utf8;
  if (MemeNom(nom, "ANSEL")) return TCodageGedcom::Ansel;
  if (MemeNom(nom, "ASCII") || MemeNom(nom, "USASCII")) return TCodageGedcom::Ascii;
  if (MemeNom(nom, "ANSI") || MemeNom(nom, "WINDOWS1252") || MemeNom(nom, "CP1252") || MemeNom(nom, "WINDOWS") ||
      MemeNom(nom, "ISO88591") || MemeNom(nom, "LATIN1") || MemeNom(nom, "IBMPC") || MemeNom(nom, "IBMWINDOWS") ||
      MemeNom(nom, "MACINTOSH"))
    return TCodageGedcom::Ansi;
  return TCodageGedcom::Inconnu;
}

std::string Utf16VersUtf8(std::string_view o, bool grosBoutien) {
  std::string s;
  s.reserve(o.size() / 2 + 16);
  auto unite = [&](size_t i) -> uint32_t {
    const auto a = static_cast<unsigned char>(o[i]), b = static_cast<unsigned char>(o[i + 1]);
    return grosBoutien ? (a << 8 | b) : (b << 8 | a);
  };
  for (size_t i = 0; i + 1 < o.size(); i += 2) {
    uint32_t c = unite(i);
    if (c >= 0xD800 && c <= 0xDBFF) {
      if (i + 3 < o.size()) {
        const uint32_t d = unite(i + 2);
        if (d >= 0xDC00 && d <= 0xDFFF) {
          AjouteUtf8(s, 0x10000 + ((c - 0xD800) << 10) + (d - 0xDC00));
          i += 2;
          continue;
        }
      }
      c = 0xFFFD;
    } else if (c >= 0xDC00 && c <= 0xDFFF) {
      c = 0xFFFD;
    }
    AjouteUtf8(s, c);
  }
  return s;
}

bool AnselVersCp1252(std::string_view a, std::string& sortie) {
  sortie.clear();
  sortie.reserve(a.size());
  bool entier = true;
  for (size_t i = 0; i < a.size(); ++i) {
    const auto c = static_cast<unsigned char>(a[i]);
    if (c < 0x80) {
      sortie += static_cast<char>(c);
      continue;
    }
    if (EstDiacritique(c)) {
      // Plusieurs diacritiques peuvent s'empiler : seul le premier est composé.
      size_t j = i + 1;
      while (j < a.size() && EstDiacritique(static_cast<unsigned char>(a[j]))) ++j;
      if (j >= a.size()) {
        entier = false;
        i = j;
        break;
      }
      const char lettre = a[j];
      unsigned char compose = 0;
      for (const TCompose& t : kComposes)
        if (t.Diacritique == c && t.Lettre == lettre) compose = t.Cp1252;
      if (compose == 0 || j != i + 1) entier = false;
      if (compose != 0) {
        sortie += static_cast<char>(compose);
      } else {
        const auto l = static_cast<unsigned char>(lettre);
        const unsigned char e = l < 0x80 ? l : Espacant(l);
        sortie += e ? static_cast<char>(e) : '?';
      }
      i = j;
      continue;
    }
    const unsigned char e = Espacant(c);
    if (e == 0) entier = false;
    sortie += e ? static_cast<char>(e) : '?';
  }
  return entier;
}

bool Utf8VersCp1252(std::string_view utf8, std::string& sortie) {
  bool ascii = true;
  for (char c : utf8)
    if (static_cast<unsigned char>(c) >= 0x80) {
      ascii = false;
      break;
    }
  if (ascii) {
    sortie.assign(utf8);
    return true;
  }
  sortie = DepuisUtf8(utf8);
  return PremierCaractereSansEquivalent(utf8) == 0;
}

}  // namespace rqbase
