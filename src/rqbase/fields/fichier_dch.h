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
//
// Un fichier enregistré par un éditeur en UTF-8 commence par la marque d'ordre des octets
// EF BB BF : elle est sautée et le texte ramené en Windows-1252. La lecture dit aussi si
// le fichier a été pris en entier (Dommage vide) : sinon, réécrire le catalogue perdrait
// ce qu'elle n'a pas pu prendre, et le fichier doit d'abord être mis de côté
// (MetDeCoteDch). Ce que le catalogue écrit se relit toujours en entier.
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
  bool Utf8 = false;  // le fichier commençait par la marque d'ordre des octets UTF-8
  // Ce qui empêche de prendre le fichier en entier, en français (la première raison
  // trouvée) ; vide pour un fichier lu en entier.
  std::string Dommage;
  bool Entier() const { return Dommage.empty(); }
};

// Le texte d'un fichier catalogue -> son contenu, sans jamais échouer. Est abîmé (Dommage)
// un fichier vide, un nombre de champs illisible, moins de lignes que de champs annoncés,
// des lignes non blanches que la lecture laisse en fin de fichier, un octet de contrôle
// autre que TAB, CR et LF (ôté du texte lu), et, après la marque UTF-8, un texte mal
// formé ou des caractères sans équivalent en Windows-1252 (lus '?').
TContenuDch DecodeDch(const std::string& texte);
// Le contenu -> le texte du fichier (lignes finies par CR LF).
std::string CodeDch(const TContenuDch& contenu);

// false si le fichier ne peut être lu (erreur d'entrée-sortie, lien symbolique, ce qui
// n'est pas un fichier ordinaire) ; `contenu` est alors laissé par défaut.
bool LitFichierDch(const std::string& chemin, TContenuDch& contenu);
// Remplace le fichier en entier (RemplaceFichier : écrit à côté puis renommé, un lien
// symbolique est remplacé, jamais suivi) ; false en échec, l'ancien fichier restant entier.
bool EcritFichierDch(const std::string& chemin, const TContenuDch& contenu);

// Le nom sous lequel un catalogue abîmé est mis de côté : "<nom> (endommagé).<ext>" dans
// le même dossier, ou "<nom> (endommagé) (2).<ext>"... le premier libre.
std::string NomMiseDeCoteDch(const std::string& chemin);
// Renomme le fichier `chemin` sous NomMiseDeCoteDch, sans jamais écraser un fichier
// existant ; rend le nouveau nom, ou vide si le renommage a échoué (rien n'a changé).
std::string MetDeCoteDch(const std::string& chemin);

// Un petit fichier texte lu ou écrit d'un bloc, par la couche plateforme ; l'écriture
// remplace le fichier en entier, comme EcritFichierDch.
bool LitFichierTexte(const std::string& chemin, std::string& texte);
bool EcritFichierTexte(const std::string& chemin, const std::string& texte);

}  // namespace rqbase
