// La table par défaut du catalogue : les champs d'un dossier neuf, dans leur ordre,
// chacun en ligne complète (25 colonnes), et ce qui sert à mettre à niveau le
// catalogue d'un dossier existant : les lignes des champs ajoutés par les versions
// successives, les phrases par défaut et les symboles des événements standard.
#pragma once
#include <string>
#include <vector>

namespace rqbase {

// Les lignes par défaut, dans l'ordre du catalogue neuf.
const std::vector<std::string>& LignesDefaut();

// Les champs ajoutés à un dossier existant qui ne les a pas, dans l'ordre d'ajout,
// avec leur ligne (qui diffère parfois de la ligne par défaut).
struct TAjoutMiseANiveau {
  std::string Libelle;
  std::vector<std::string> Lignes;  // FILIATION_PERE amène FILIATION_MERE avec lui
};
const std::vector<TAjoutMiseANiveau>& AjoutsMiseANiveau();

// Les phrases par défaut d'un champ, jointes par '$' ; vide s'il n'en a pas.
struct TPhrasesDefaut {
  const char* Libelle;
  const char* Phrases;
};
const std::vector<TPhrasesDefaut>& PhrasesParDefaut();

// Symbole et participes des événements standard.
struct TAbreviationDefaut {
  const char* Libelle;
  const char* Symbole;
  const char* Masculin;
  const char* Feminin;
};
const std::vector<TAbreviationDefaut>& AbreviationsParDefaut();

}  // namespace rqbase
