// La mise en forme d'un texte affiché : son style (partie tronquée, abrégée, forme d'un
// booléen enregistré en texte) et sa casse.
//
// Styles tenus ici : 60 tel quel ; 61 à 65 les 1 à 5 premiers caractères ; 66 à 71 AbregeChn à
// 3, 6, 10, 15, 20, 30 ; 81 à 86 la forme d'un booléen écrit "Oui", "Non" ou d'une lettre ;
// 183 à 186 une liste de valeurs abrégée élément par élément. Les styles des noms (autour de
// la particule) et des nombres viennent avec le rendu de ces valeurs ; un style que cette
// fonction ne tient pas rend le texte tel quel.
#pragma once
#include <string>

#include "rqbase/fields/champ_base.h"

namespace rqbase {

std::string AjusteStyleTexte(const std::string& s, TChampBase::TStyle style);
std::string AjusteCasseTexte(const std::string& s, TChampBase::TCasse casse);
// Une liste de valeurs séparées par "; " ou ", ", chacune abrégée à 3, 6, 10 ou 15 caractères
// (styles 183 à 186), rejointes par le même séparateur.
std::string AbregeChpsSimple(const std::string& s, TChampBase::TStyle style);

}  // namespace rqbase
