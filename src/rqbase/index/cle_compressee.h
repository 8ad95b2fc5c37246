// La forme serrée d'une clé : 5 bits par caractère au lieu de 8.
//
// Alphabet des codes : A à Z valent 4 à 29, l'octet 255 vaut 1, le blanc 2, le trait d'union 3,
// et 0 termine le texte (c'est l'alphabet de NormaliseCle, plus l'octet 255). Un simple gain de
// place : rien n'y est caché.
//
// Les tampons sont de taille fixe ; leurs tailles maximales sont ci-dessous, et aucune des deux
// fonctions n'écrit ni ne lit au-delà de ce que disent les octets de longueur.
#pragma once
#include <cstddef>

namespace rqbase {

// Compress : au plus 255 caractères -> 1 + (255 * 5 + 7) / 8 octets.
inline constexpr std::size_t kTailleCleCompresseeMax = 1 + (255 * 5 + 7) / 8;
// DeCompress : au plus 255 * 8 / 5 codes, l'octet de longueur et le zéro final.
inline constexpr std::size_t kTailleCleDecompresseeMax = 1 + 255 * 8 / 5 + 1;

// `src` : un octet de longueur n puis n caractères (lus tels quels, zéros compris).
// `dest[0]` reçoit le nombre d'octets écrits, (n * 5 + 7) / 8 + 1, lui compris ; puis les n
// codes de 5 bits, bit de poids fort d'abord, à partir du bit 8. Les bits de bourrage sont nuls.
// Un caractère hors de l'alphabet donne les 5 bits bas de son écart à 61 ; l'octet nul, le code 0.
void Compress(const char* src, char* dest);

// `src` : la forme serrée, dont `src[0]` octets sont lisibles (l'octet de longueur compris).
// Lit src[0] * 8 / 5 codes à partir du bit 8 ; un code 0 est passé sans rien écrire ; 1 donne
// l'octet 255, 2 un blanc, 3 un trait d'union, les autres code + 61. `dest[0]` reçoit le nombre
// de caractères plus un (modulo 256), et le texte est suivi d'un octet nul.
void DeCompress(const char* src, char* dest);

}  // namespace rqbase
