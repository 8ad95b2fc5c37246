// Les particules des noms (de, du, la, van...) : ce que l'index et la recherche laissent de côté
// pour qu'un nom se retrouve sous son mot principal.
//
// La liste est le texte numéroté 1800 : une seule chaîne en capitales où chaque particule se
// tient entre deux blancs (" D DE DES DU ... ").
#pragma once
#include <string>

namespace rqbase {

// Numéro du texte de la liste des particules.
inline constexpr int kRessourceParticules = 1800;

// La liste des particules, telle que le texte 1800 la donne.
std::string RetourneToutesParticules();

// Vrai si `mot` est une particule. Vide : faux. Une apostrophe finale est ôtée ("d'" est "D"),
// puis le mot, mis en capitales nues, est cherché entouré de blancs dans la liste.
bool EstCeUneParticule(const std::string& mot);

// Le nom sans ses particules. Les mots sont séparés par l'un des caractères
// "-.'? &()[]/° ;" ; chaque mot qui est une particule part avec le séparateur qui le suit.
// Tout le reste demeure tel quel. "de la Tour" -> "Tour", "d'Artagnan" -> "Artagnan".
std::string PasseParticule(const std::string& nom);

}  // namespace rqbase
