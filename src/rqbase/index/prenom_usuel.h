// Le prénom usuel marqué dans le texte des prénoms : l'utilisateur l'écrit entre guillemets
// (Jean "Paul" Marie) ; la fiche garde les prénoms sans guillemets et le rang à côté.
//
// Les éléments sont séparés par des blancs et comptés à partir de 1 ; chaque blanc compte,
// comme dans NombreElts : "Jean  Paul" a trois éléments, dont un vide.
#pragma once
#include <string>

namespace rqbase {

// Les prénoms avec l'élément de rang `no` entre guillemets, blancs des bouts rognés. Un rang 0,
// négatif ou au-delà du nombre d'éléments rend le texte tel quel.
// NoCotePrenomUsuel("Jean Paul Marie", 2) -> "Jean \"Paul\" Marie".
std::string NoCotePrenomUsuel(const std::string& prenoms, short no);

// Le rang du prénom marqué, 0 sans guillemets ; la marque est ôtée sur place. Le premier
// guillemet fixe le rang. Un guillemet au milieu d'un mot (ni en tête du texte, ni derrière un
// blanc) commence un élément ; s'il n'a pas de blanc derrière lui il devient un blanc, tout
// autre guillemet disparaît ; les blancs des bouts sont rognés à la fin. Le texte ne fait que
// raccourcir. CoteNoPrenomUsuel("Jean\"Paul\"Marie") -> 2 et "Jean Paul Marie".
short CoteNoPrenomUsuel(char* prenoms);

}  // namespace rqbase
