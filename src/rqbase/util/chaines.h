// Aides de texte de la couche utilitaire : éléments d'une liste séparée,
// remplacement, et les jointures des textes composés (virgules, parenthèses).
#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace rqbase {

// Les éléments d'un texte séparé, en vues sur le texte (qui doit survivre aux vues).
// Un texte vide n'a aucun élément.
std::vector<std::string_view> DecoupeElts(std::string_view texte, char separateur);

// Éléments d'un texte séparé par `separateur`, comptés à partir de 1.
// Un texte vide n'a aucun élément ; "a;;b" en a trois.
int NombreElts(std::string_view texte, char separateur);
// L'élément `no`, ou un texte vide hors des bornes.
std::string EltNo(int no, std::string_view texte, char separateur);
// Remplace l'élément `no` ; ajoute les séparateurs manquants quand `no` dépasse le compte.
std::string RemplEltNo(int no, std::string_view texte, char separateur, std::string_view valeur);

// Toutes les occurrences de `ancien` remplacées par `nouveau` (rien si `ancien` est vide).
std::string RemplaceString(std::string_view texte, std::string_view ancien, std::string_view nouveau);

// Sans les blancs (octets <= ' ') de tête et de queue, comme Trim.
std::string Trim(std::string_view texte);

// "," suivi d'un blanc si `blanc`, quand a et b sont tous deux non vides ; sinon "".
std::string Virgule(std::string_view a, std::string_view b, bool blanc);
// " ;" suivi d'un blanc si `blanc`, quand a est non vide ; b nul compte comme non vide.
std::string PointVirgule(std::string_view a, const char* b, bool blanc);
// "" pour un texte vide ; sinon un blanc si `blanc`, puis "(", s, ")".
std::string EntreParenthese(std::string_view s, bool blanc);
// Un blanc quand s est non vide.
std::string Espace(std::string_view s);
// `s` abrégé à `largeur` caractères : coupé net devant un séparateur (blanc, ':' ou '-'),
// sinon après la consonne la plus proche avant la coupe, suivi d'un point (mot de plus de 3
// caractères) ; sans consonne, la première lettre et un point. Ne raccourcit jamais au-delà.
std::string AbregeChn(std::string_view s, int largeur);

}  // namespace rqbase
