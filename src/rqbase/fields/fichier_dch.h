// Le fichier catalogue des champs (`<dossier>.dch`) : un fichier texte Windows-1252,
// lignes finies par CR LF, écrit d'un bloc. Disposition complète dans docs/formats.md.
//
//   1 ligne     nombre de champs N ("%i")
//   N lignes    les champs, chacun par TChpCs::Code
//   3+3+3+3     EquivProfession, EquivNaissance, EquivDeces, EquivUnion
//   1+1         TypesSource, TypesNote (CommaText)
//   3           EquivResidence
//   1+1+1       la marque "RQ2020", VersionChaine, TypesIllustration (CommaText)
//
// La lecture prend les lignes tant qu'elles existent : un nombre de champs illisible
// arrête tout à zéro champ ; un nombre qui dépasse la fin s'arrête à la fin ; un rôle
// n'est lu que si ses trois lignes existent ; une liste absente reste absente (le
// catalogue prend alors sa valeur par défaut). Rien n'est levé.
#pragma once
#include <optional>
#include <string>
#include <vector>

#include "rqbase/fields/equiv_chp_cs.h"

namespace rqbase {

inline constexpr const char* kMarqueDch2020 = "RQ2020";

struct TContenuDch {
  std::vector<std::string> Champs;  // les lignes des champs, telles quelles
  TEquivChpCs EquivProfession{"PROFESSION"};
  TEquivChpCs EquivNaissance{"NAISSANCE", "BAPTEME"};
  TEquivChpCs EquivDeces{"DECES", "INHUMATION"};
  TEquivChpCs EquivUnion{"UNION", "CTR-MARIAGE"};
  std::optional<std::string> TypesSource;  // CommaText, absent si la ligne manque
  std::optional<std::string> TypesNote;
  TEquivChpCs EquivResidence{"RESIDENCE"};
  bool Ancien = false;  // le fichier finit juste après EquivResidence (ou sans marque)
  std::optional<std::string> VersionChaine;
  std::optional<std::string> TypesIllustration;
};

// Le texte d'un fichier catalogue -> son contenu, sans jamais échouer.
TContenuDch DecodeDch(const std::string& texte);
// Le contenu -> le texte du fichier (lignes finies par CR LF).
std::string CodeDch(const TContenuDch& contenu);

// false si le fichier ne peut être lu ; `contenu` est alors laissé par défaut.
bool LitFichierDch(const std::string& chemin, TContenuDch& contenu);
// Remplace le fichier en entier (écrit à côté puis renommé) ; false en échec.
bool EcritFichierDch(const std::string& chemin, const TContenuDch& contenu);

// Un petit fichier texte lu ou écrit d'un bloc, par la couche plateforme.
bool LitFichierTexte(const std::string& chemin, std::string& texte);
bool EcritFichierTexte(const std::string& chemin, const std::string& texte);

}  // namespace rqbase
