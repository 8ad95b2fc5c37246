// Texte Windows-1252 : tables de casse fixes, indépendantes de la locale de la
// machine, et conversion exacte vers et depuis UTF-8 pour les 256 octets.
//
// Les cinq octets que Windows-1252 ne définit pas (0x81, 0x8D, 0x8F, 0x90, 0x9D)
// vont vers les points de code U+0081... de même valeur, comme le fait Windows :
// ainsi tout texte stocké fait l'aller-retour sans perte.
#pragma once
#include <string>
#include <string_view>

namespace rqbase {

// Majuscule et minuscule d'un octet (é -> É, ÿ -> Ÿ, œ -> Œ). Les autres octets restent.
unsigned char MajusculeCp1252(unsigned char c);
unsigned char MinusculeCp1252(unsigned char c);
std::string MajusculesCp1252(std::string_view texte);
std::string MinusculesCp1252(std::string_view texte);

// Lettre sans accent (É -> E, ç -> c, œ reste œ), pour les clés et les comparaisons.
unsigned char SansAccentCp1252(unsigned char c);

// Windows-1252 -> UTF-8 : toujours exact.
std::string VersUtf8(std::string_view cp1252);
// UTF-8 -> Windows-1252 : un caractère sans équivalent devient '?', une suite
// d'octets invalide est lue octet par octet comme du Windows-1252.
std::string DepuisUtf8(std::string_view utf8);
// Le premier caractère d'un texte UTF-8 qui n'a pas d'équivalent en Windows-1252, ou 0 si
// tous en ont un (un octet invalide compte comme du Windows-1252, comme dans DepuisUtf8).
char32_t PremierCaractereSansEquivalent(std::string_view utf8);
// Vrai si le texte est de l'UTF-8 bien formé (utile pour deviner un codage d'entrée).
bool EstUtf8Valide(std::string_view texte);

}  // namespace rqbase
