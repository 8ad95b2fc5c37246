// Les capitales des clés : une mise en capitales du Windows-1252 suivie d'une table de paires.
//
// Mode 2 (et tout mode autre que 1) : chaque lettre accentuée devient sa capitale nue (é -> E,
// Ç -> C, ÿ -> Y) ; les ligatures restent des ligatures en capitales (œ -> Œ, æ -> Æ, ø -> Ø) ;
// ß, ¹, ³, ¿, µ restent eux-mêmes. Mode 1 : les accents restent (é -> É). C'est la forme sous
// laquelle noms, lieux et valeurs partagées se comparent et se rangent.
#pragma once
#include <span>
#include <string>

namespace rqbase {

// Une paire de la table : l'octet `De` devient `Vers`. La première paire qui convient l'emporte.
struct TPaireMajuscule {
  unsigned char De;
  unsigned char Vers;
};

// Les deux tables, appliquées après la mise en capitales : capitales nues (mode 2) et
// capitales accentuées (mode 1).
std::span<const TPaireMajuscule> TableCapitalesNues();
std::span<const TPaireMajuscule> TableCapitalesAccentuees();

// Copie `src` dans `dest` (sauf si c'est le même tampon), met en capitales puis applique les
// paires de `table`. `dest` doit tenir strlen(src) + 1 octets.
void UpperChaine0(char* dest, const char* src, std::span<const TPaireMajuscule> table);
// Copie `src` dans `dest` (sauf si c'est le même tampon), en capitales selon `mode`.
void UpperANSIChaine0(char* dest, const char* src, int mode);
std::string UpperANSIChaineAS(const std::string& texte, int mode);
// En minuscules Windows-1252 (les capitales accentuées deviennent leurs minuscules : É -> é,
// Œ -> œ, Ÿ -> ÿ) ; mode 1 : le premier caractère ensuite en capitale, accent gardé.
std::string LowerChaineAS(const std::string& texte, int mode);

}  // namespace rqbase
