// TFicXml : le petit magasin de clés du fichier XML du dossier (.xin).
//
// Un élément racine XmlForFiliora, dessous un élément par section, dessous un élément
// par clé dont le texte est la valeur. Les valeurs sont du texte interne (Windows-1252),
// le fichier est en UTF-8. Un fichier absent ou illisible se lit comme vide ; chaque
// écriture réécrit le fichier entier, sauf dossier en lecture seule.
#pragma once
#include <memory>
#include <string>

namespace rqbase {

class TContexteDossier;

class TFicXml {
 public:
  TFicXml(TContexteDossier* gest, bool creation);
  ~TFicXml();

  // "" quand la section ou la clé manque.
  std::string LectureValeur(const std::string& section, const std::string& cle) const;
  // Rend false si le fichier n'a pu être écrit (ou si le dossier est en lecture seule).
  bool EcritureValeur(const std::string& section, const std::string& cle, const std::string& valeur);

  const std::string& Chemin() const { return CheminFichier; }

 private:
  struct TDonnees;
  TContexteDossier* Gest;
  std::string CheminFichier;
  std::unique_ptr<TDonnees> Donnees;
};

}  // namespace rqbase
