// Le rapport d'un import GEDCOM : ce qui a été écrit dans le dossier, compté par sorte, et
// chaque ligne du fichier qui n'a pas été importée, ou qui l'a été changée, avec son numéro
// et la raison, en français. Rien n'est laissé de côté sans une ligne ici.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace rqbase {

struct TAvertissement {
  long Ligne = 0;      // numéro de la ligne dans le fichier (à partir de 1), 0 : le fichier entier
  std::string Texte;   // la ligne telle qu'elle a été lue (Windows-1252), coupée à 120 caractères
  std::string Raison;  // pourquoi elle n'a pas été importée, ou ce qui a changé
};

struct TRapportImport {
  long Personnes = 0;
  long Familles = 0;
  long Evenements = 0;  // événements et champs simples écrits
  long Lieux = 0;       // lieux neufs dans le fichier des lieux
  long Sources = 0;
  long Medias = 0;      // illustrations
  long Notes = 0;
  std::string Codage;   // le codage lu ("UTF-8", "ANSEL"...)
  std::string Version;  // la version GEDCOM de l'en-tête, vide si absente
  std::vector<TAvertissement> Avertissements;

  void Avertit(long ligne, std::string_view texte, std::string raison);
};

// Le rapport en lignes de texte français (Windows-1252) : les comptes, puis un avertissement
// par ligne, « ligne N : raison : texte ».
std::vector<std::string> TexteRapport(const TRapportImport& r);

}  // namespace rqbase
