// L'ordre des dates généalogiques : CompareDate (membre de TDateRQ, déclaré dans
// daterq.h) et les clés de texte "aaaammjj" des dates numériques.
//
// CompareDate(d1, d2, defaut) est l'ordre de travail de toutes les listes : deux
// dates passées en grégorien, une date "<", ">", "~" ou "ca" lue comme la fourchette
// de son année, les bornes ouvertes estimées à cent ans. Deux dates ordinaires se
// comparent par leur clé "aaaammjj" (une date sans année passe avant toutes),
// deux fourchettes par leurs bornes, une fourchette et une date par l'année ;
// `defaut` tient lieu de résultat quand ces dernières ne se départagent pas. Les
// dates avant Jésus-Christ passent avant toutes les autres, dans l'ordre inverse
// de leurs années. Ce n'est pas un ordre strict faible (des fourchettes qui se
// chevauchent sont égales sans l'être à leurs voisines) : trier de façon stable.
// Les deux dates ne changent pas.
#pragma once
#include <string>
#include <string_view>

#include "rqbase/dates/daterq.h"

namespace rqbase {

// "jj/mm/aaaa" -> "aaaammjj" (parties prises de la fin) ; plus de 10 caractères : "".
std::string TransformeDateNormale(std::string_view date);
// "aaaammjj" -> "jj/mm/aaaa" ; une partie absente laisse tomber sa barre.
std::string TransformeDateAMJ(std::string_view date);
// Comparaison des clés de TransformeDateNormale : -1, 0 ou 1 ; un pointeur nul vaut "".
int strcmpDATE(const char* a, const char* b);

}  // namespace rqbase
