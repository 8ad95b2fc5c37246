#include "rqbase/util/majuscules.h"

#include <array>
#include <cstring>

#include "rqbase/platform/cp1252.h"

namespace rqbase {

namespace {

// Les octets sont écrits en hexadécimal : la table est la même quel que soit le codage des
// littéraux du compilateur. Les minuscules y figurent aussi, même si la mise en capitales qui
// précède ne leur laisse jamais leur tour : la table se lit telle quelle.
constexpr TPaireMajuscule kCapitalesNues[] = {
    // à á â ã ä å À Á Â Ã Ä Å -> A
    {0xE0, 'A'}, {0xE1, 'A'}, {0xE2, 'A'}, {0xE3, 'A'}, {0xE4, 'A'}, {0xE5, 'A'},
    {0xC0, 'A'}, {0xC1, 'A'}, {0xC2, 'A'}, {0xC3, 'A'}, {0xC4, 'A'}, {0xC5, 'A'},
    // ç Ç -> C
    {0xE7, 'C'}, {0xC7, 'C'},
    // è é ê ë È É Ê Ë -> E
    {0xE8, 'E'}, {0xE9, 'E'}, {0xEA, 'E'}, {0xEB, 'E'}, {0xC8, 'E'}, {0xC9, 'E'}, {0xCA, 'E'}, {0xCB, 'E'},
    // ì í î ï Ì Í Î Ï -> I
    {0xEC, 'I'}, {0xED, 'I'}, {0xEE, 'I'}, {0xEF, 'I'}, {0xCC, 'I'}, {0xCD, 'I'}, {0xCE, 'I'}, {0xCF, 'I'},
    // ñ Ñ -> N
    {0xF1, 'N'}, {0xD1, 'N'},
    // ò ó ô õ ö Ò Ó Ô Õ Ö -> O
    {0xF2, 'O'}, {0xF3, 'O'}, {0xF4, 'O'}, {0xF5, 'O'}, {0xF6, 'O'},
    {0xD2, 'O'}, {0xD3, 'O'}, {0xD4, 'O'}, {0xD5, 'O'}, {0xD6, 'O'},
    // ù ú û ü Ù Ú Û Ü -> U
    {0xF9, 'U'}, {0xFA, 'U'}, {0xFB, 'U'}, {0xFC, 'U'}, {0xD9, 'U'}, {0xDA, 'U'}, {0xDB, 'U'}, {0xDC, 'U'},
    // ý ÿ Ý Ÿ -> Y
    {0xFD, 'Y'}, {0xFF, 'Y'}, {0xDD, 'Y'}, {0x9F, 'Y'},
    // Les ligatures restent des ligatures, en capitales : æ -> Æ, œ -> Œ ; ø -> Ø.
    {0xE6, 0xC6}, {0x9C, 0x8C}, {0xF8, 0xD8},
    // ß, ¹, ³, ¿, µ restent eux-mêmes.
    {0xDF, 0xDF}, {0xB9, 0xB9}, {0xB3, 0xB3}, {0xBF, 0xBF}, {0xB5, 0xB5},
};

// Mode 1 : chaque minuscule accentuée face à sa capitale, rien de plus.
constexpr TPaireMajuscule kCapitalesAccentuees[] = {
    {0xE0, 0xC0}, {0xE1, 0xC1}, {0xE2, 0xC2}, {0xE3, 0xC3}, {0xE4, 0xC4}, {0xE5, 0xC5}, {0xE6, 0xC6},
    {0xE7, 0xC7}, {0xE8, 0xC8}, {0xE9, 0xC9}, {0xEA, 0xCA}, {0xEB, 0xCB}, {0xEC, 0xCC}, {0xED, 0xCD},
    {0xEE, 0xCE}, {0xEF, 0xCF}, {0xF1, 0xD1}, {0xF2, 0xD2}, {0xF3, 0xD3}, {0xF4, 0xD4}, {0xF5, 0xD5},
    {0xF6, 0xD6}, {0xF8, 0xD8}, {0xF9, 0xD9}, {0xFA, 0xDA}, {0xFB, 0xDB}, {0xFC, 0xDC}, {0xFD, 0xDD},
    {0xFF, 0x9F}, {0x9C, 0x8C},
};

// La mise en capitales suivie d'une table, pour les 256 octets : calculée une fois.
using TCorrespondance = std::array<unsigned char, 256>;

TCorrespondance Correspondance(std::span<const TPaireMajuscule> table) {
  TCorrespondance r{};
  for (int i = 0; i < 256; ++i) {
    unsigned char c = MajusculeCp1252(static_cast<unsigned char>(i));
    for (const auto& paire : table) {
      if (paire.De == c) {
        c = paire.Vers;
        break;
      }
    }
    r[i] = c;
  }
  return r;
}

void Applique(char* dest, const char* src, const TCorrespondance& correspondance) {
  const size_t n = std::strlen(src);
  if (dest != src) std::memmove(dest, src, n + 1);
  for (size_t i = 0; i < n; ++i) dest[i] = static_cast<char>(correspondance[static_cast<unsigned char>(dest[i])]);
}

}  // namespace

std::span<const TPaireMajuscule> TableCapitalesNues() { return kCapitalesNues; }
std::span<const TPaireMajuscule> TableCapitalesAccentuees() { return kCapitalesAccentuees; }

void UpperChaine0(char* dest, const char* src, std::span<const TPaireMajuscule> table) {
  Applique(dest, src, Correspondance(table));
}

void UpperANSIChaine0(char* dest, const char* src, int mode) {
  static const TCorrespondance nues = Correspondance(kCapitalesNues);
  static const TCorrespondance accentuees = Correspondance(kCapitalesAccentuees);
  Applique(dest, src, mode == 1 ? accentuees : nues);
}

std::string UpperANSIChaineAS(const std::string& texte, int mode) {
  std::string r = texte;
  UpperANSIChaine0(r.data(), r.c_str(), mode);
  return r;
}

std::string LowerChaineAS(const std::string& texte, int mode) {
  std::string r = texte;
  for (char& c : r) {
    const auto u = static_cast<unsigned char>(c);
    if ((u >= 'A' && u <= 'Z') || (u >= 0xC0 && u <= 0xDE && u != 0xD7))
      c = static_cast<char>(u + 0x20);
    else if (u == 0x8A || u == 0x8C || u == 0x8E)  // Š Œ Ž
      c = static_cast<char>(u + 0x10);
    else if (u == 0x9F)  // Ÿ
      c = static_cast<char>(0xFF);
  }
  if (mode == 1 && !r.empty()) r = UpperANSIChaineAS(r.substr(0, 1), 1) + r.substr(1);
  return r;
}

}  // namespace rqbase
