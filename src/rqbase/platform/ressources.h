// Textes numérotés : la table compilée qui remplace les ressources de chaînes.
//
// Ressource(n) rend le texte n (Windows-1252), ou un texte vide quand le numéro
// n'existe pas, comme le chargement d'une ressource absente. Chaque domaine tient
// ses textes dans son propre fichier textes_*.cpp ; la table les réunit au premier appel.
#pragma once
#include <span>
#include <string>

namespace rqbase {

struct TTexteRessource {
  int numero;
  const char* texte;
};

std::string Ressource(int numero);
bool RessourceExiste(int numero);

// Les tables par domaine (une par fichier textes_*.cpp de ce dossier).
std::span<const TTexteRessource> TextesDossier();
std::span<const TTexteRessource> TextesCalendriers();
std::span<const TTexteRessource> TextesCatalogue();

}  // namespace rqbase
