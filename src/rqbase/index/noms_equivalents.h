// TTabNomEquiv : les équivalences de noms et de prénoms d'un dossier (".neq", ".preq").
//
// Une équivalence réunit des graphies d'un même nom (DUPONT, DUPOND, DUPONS) : une recherche
// qui les demande cherche chaque graphie du groupe. Chaque fichier est un texte Windows-1252,
// un groupe par ligne, les graphies séparées par ';' ; une ligne vide ou qui commence par '#'
// ne compte pas. Les graphies sont gardées telles que tapées (blancs autour ôtés) et comparées
// sous leur forme d'index (CleNomIndex, ClePrenomIndex : 20 caractères au plus) : ni casse,
// ni accent, ni particule n'y comptent ; deux graphies de même forme n'en font qu'une. Une graphie peut tenir dans plusieurs groupes : ses
// équivalents sont alors ceux de tous ses groupes.
//
// Un fichier absent ne donne aucune équivalence. Un fichier abîmé se lit aussi loin qu'il se
// peut : une ligne sans deux graphies, ou démesurée, est passée et notée dans Avertissements.
// Un lien symbolique ou ce qui n'est pas un fichier ordinaire n'est pas lu. Le fichier n'est
// écrit que par Sauvegarde, qui garde le texte lu tel quel, y ajoute les groupes nouveaux et le
// remplace d'un coup (jamais à moitié écrit).
#pragma once
#include <string>
#include <unordered_map>
#include <vector>

namespace rqbase {

class TTabNomEquiv {
 public:
  enum class TGenre { Noms = 0, Prenoms = 1 };

  TTabNomEquiv() = default;
  // Lit les deux fichiers ; un chemin vide n'est pas lu.
  TTabNomEquiv(const std::string& fichierNoms, const std::string& fichierPrenoms);

  // Les graphies équivalentes à `nom` sous leur forme d'index, la sienne d'abord puis celles
  // de ses groupes dans l'ordre des fichiers, chacune une fois ; sans équivalence : la seule
  // forme d'index de `nom`.
  std::vector<std::string> GetNomEquiv(const std::string& nom, TGenre genre = TGenre::Noms) const;

  // Ajoute un groupe (au moins deux graphies distinctes une fois mises en forme d'index, sans
  // ';' ni fin de ligne, la première sans '#' en tête, une ligne d'au plus kLigneMax octets) ;
  // false sinon, et rien ne change.
  bool AjouteGroupe(const std::vector<std::string>& noms, TGenre genre);
  // Les groupes, graphies telles que tapées.
  const std::vector<std::vector<std::string>>& Groupes(TGenre genre) const { return Table(genre).Groupes; }

  // Écrit les groupes ajoutés à la suite du texte lu, gardé tel quel (commentaires, lignes
  // passées) ; false si l'écriture a échoué (l'ancien fichier reste), ou si le fichier est là
  // mais n'a été lu qu'en partie ou pas du tout.
  bool Sauvegarde(TGenre genre);

  // Les lignes passées à la lecture : "<fichier>, ligne <n> : <raison>".
  std::vector<std::string> Avertissements;

  // Au-delà, un fichier n'est lu que jusque-là (un texte d'équivalences tient en bien moins).
  static constexpr size_t kTailleMax = 16u << 20;
  // Une ligne plus longue est passée.
  static constexpr size_t kLigneMax = 4096;

 private:
  struct TTable {
    std::string Fichier;
    std::vector<std::vector<std::string>> Groupes;  // telles que tapées
    std::vector<std::vector<std::string>> Cles;     // leurs formes d'index, dans le même ordre
    std::unordered_map<std::string, std::vector<size_t>> ParCle;  // forme d'index -> groupes
    std::string Texte;     // le fichier tel que lu
    bool Tronque = false;  // là, mais lu en partie seulement (ou pas du tout)
    size_t Ajoutes = 0;    // les derniers groupes, ajoutés depuis la lecture
  };
  struct TGroupe {
    std::vector<std::string> Graphies, Cles;
  };
  TTable& Table(TGenre genre) { return Tables[static_cast<int>(genre)]; }
  const TTable& Table(TGenre genre) const { return Tables[static_cast<int>(genre)]; }
  void Lit(TGenre genre);
  // La forme d'une graphie : celle des lignes de l'index pour un nom (CleNomIndex), celle d'un
  // critère pour un prénom (ClePrenomIndex).
  static std::string Cle(const std::string& nom, TGenre genre);
  // Le groupe, sans deux graphies de même forme ; moins de deux formes : vide.
  static TGroupe Normalise(const std::vector<std::string>& noms, TGenre genre);
  void Range(TGenre genre, TGroupe groupe);
  TTable Tables[2];
};

}  // namespace rqbase
