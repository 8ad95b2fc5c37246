// Le soundex de ce système : un code d'au plus 4 caractères pour comparer les noms à l'oreille.
//
// Classes : 1 BFPV, 2 CGJKQSXZ, 3 DT, 4 L, 5 MN, 6 R ; le joker '*' reste lui-même ; tout le
// reste (voyelles, H, W, Y, blanc, trait d'union, chiffres, Æ...) ne donne rien. Le texte est
// attendu en capitales.
//
// Différences voulues avec le soundex usuel : un H de tête est sauté ; seules les répétitions
// d'une même lettre se replient (deux lettres différentes d'une même classe donnent deux
// chiffres, une lettre pareille derrière une voyelle redonne un chiffre) ; le code n'est jamais
// complété par des zéros ("BEAU" -> "B").
#pragma once
#include <cstddef>

namespace rqbase {

// Taille du tampon d'un code : 4 caractères et le zéro final.
inline constexpr std::size_t kTailleSoundex = 5;

// Écrit le code de `src` dans `dest` (kTailleSoundex octets) et rend `dest` ; un texte nul ou
// vide, ou "H" seul, donne un code vide et rend nullptr.
char* strSoundex(const char* src, char* dest);

// Compare les codes de deux textes : 0 s'ils sont égaux, sinon comme strcmp des codes.
// Si `a` contient '*' et que son code est plus court, l'autre code est coupé à sa longueur
// (de même pour `b`, rôles échangés). Voulu : le '*' reste dans le code et se compare comme un
// octet, si bien que "DUP*" (D1*) ne rejoint pas "DUPONT" (D153 coupé en D15).
int strcmpSoundexPartiel(const char* a, const char* b);

// Vrai si l'un des éléments de `texte` séparés par des blancs (les éléments vides ne comptent
// pas) a le même code que `cherche`, au sens de strcmpSoundexPartiel(cherche, élément).
bool strEgaleSoundexPartielChqElt(const char* cherche, const char* texte);

}  // namespace rqbase
