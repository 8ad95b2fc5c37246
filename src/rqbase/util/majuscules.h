// Les capitales des clés : une mise en capitales du Windows-1252 suivie d'une table de paires.
//
// Mode 2 (et tout mode autre que 1) : chaque lettre accentuée devient sa capitale nue (é -> E,
// Ç -> C, ÿ -> Y) ; les ligatures restent des ligatures en capitales (œ -> Œ, æ -> Æ, ø -> Ø) ;
// ß, ¹, ³, ¿, µ restent eux-mêmes. Mode 1 : les accents restent (é -> É). C'est la forme sous
// laquelle noms, lieux et valeurs partagées se comparent et se rangent.
#pragma once
#include <string>

namespace rqbase {

// Copie `src` dans `dest` (sauf si c'est le même tampon), en capitales selon `mode`.
void UpperANSIChaine0(char* dest, const char* src, int mode);
std::string UpperANSIChaineAS(const std::string& texte, int mode);

}  // namespace rqbase
