// TEquivChpCs : le rôle d'un événement standard (naissance, décès, union, profession,
// résidence), nommé par trois textes : un libellé choisi par l'utilisateur et les
// libellés internes de deux champs du catalogue. Dans le fichier catalogue il tient
// trois lignes, dans cet ordre.
#pragma once
#include <string>
#include <vector>

namespace rqbase {

class TDefChpsCs;

class TEquivChpCs {
 public:
  TEquivChpCs() = default;
  TEquivChpCs(std::string libelleChamp1, std::string libelleChamp2 = "")
      : LibelleChamp1(std::move(libelleChamp1)), LibelleChamp2(std::move(libelleChamp2)) {}

  std::string LibelleUtilisateur;  // vide : le libellé d'écran du premier champ
  std::string LibelleChamp1;       // libellé interne du champ principal
  std::string LibelleChamp2;       // libellé interne du champ de remplacement

  // Lit trois lignes à partir de `position` et avance ; s'il en reste moins de trois,
  // rien n'est lu, la valeur reste et `position` aussi. Rend vrai si elle a lu.
  bool Rest(const std::vector<std::string>& lignes, size_t& position);
  void Sauv(std::vector<std::string>& lignes) const;

  // Le libellé de l'utilisateur s'il existe ; sinon le libellé d'écran du premier champ
  // suivi du texte 7250 (" ou Donnée équivalente").
  std::string RetourneLibelleEcran(const TDefChpsCs& catalogue) const;

  bool operator==(const TEquivChpCs&) const = default;
};

}  // namespace rqbase
