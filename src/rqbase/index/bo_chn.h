// Les clés des noms : ce qu'un nom ou un prénom devient pour être rangé et comparé.
//
// Fonctions pures sur du texte Windows-1252, sans état. Toutes mettent en capitales par la
// table des capitales nues (mode 2 de util/majuscules.h).
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace rqbase {

// La clé d'un nom : capitales nues, puis seuls restent A à Z, le blanc et le trait d'union
// (l'alphabet de Compress). Ce qui est entre parenthèses tombe, parenthèses comprises ; chaque
// parenthèse, ouvrante ou fermante, fait basculer l'état : une fermante égarée ouvre donc un
// passage sauté jusqu'à la parenthèse suivante. Chiffres, apostrophes, Æ et Œ tombent aussi.
// Le texte s'arrête à son premier octet nul. Rend la clé et la range dans `nom`.
// Exemple : "L'Écuyer (dit Martin)" -> "LECUYER " (le blanc d'avant la parenthèse reste).
std::string NormaliseCle(std::string& nom);

// Comparaison à trois issues sans tenir compte de la casse ni des accents (capitales nues) ;
// à égalité seulement, les deux textes tels qu'ils sont départagent. Octets non signés.
int strcmpIgnDiac(const char* a, const char* b);

// Un texte sûr pour l'index : les caractères * ? , ( ) { } [ ] & " / = sont ôtés, puis chaque
// suite de ';' devient un seul ';', puis chaque suite de blancs un seul blanc. Rien n'est
// rogné aux bouts.
std::string TransformeEnCaractereIndex(const std::string& texte);

// La forme d'index d'un nom tel qu'il est tapé : PasseParticule, capitales nues, puis
// TransformeEnCaractereIndex. "de la Tour" -> "TOUR".
std::string FormatIndex(const std::string& nom);

// Les 20 caractères d'une clé d'index.
constexpr size_t kLongueurCleIndex = 20;

// Un nom de famille (un seul élément) tel qu'une ligne de l'index le garde : blancs ôtés,
// sans particule, capitales nues, coupé à 20 caractères, nettoyé par TransformeEnCaractereIndex,
// blancs ôtés. Un critère de nom passe par la même forme, sans quoi un nom de plus de 20
// caractères qui a un signe ou un blanc avant la coupe ne se retrouverait pas.
std::string CleNomIndex(std::string_view nom);
// Un prénom (un seul élément) tel qu'une ligne de l'index le garde et qu'un critère le
// cherche : FormatIndex (sans particule, capitales nues, nettoyé), coupé à 20 caractères,
// blancs ôtés.
std::string ClePrenomIndex(std::string_view prenom);

}  // namespace rqbase
