// TDisqueMemoire : des fichiers de données tenus en mémoire, pour les tests et le fuzz.
//
// Installé (TDisqueMemoire::TInstallation), il sert toutes les ouvertures de
// TFichierBrut::Ouvre : un dossier entier se crée, s'écrit et se relit sans toucher
// au disque, des milliers de fois par seconde. Les règles d'accès et de disposition
// sont celles du fichier du système (un fichier absent ne s'ouvre qu'avec création,
// une écriture en lecture seule échoue) et les pannes injectées s'y appliquent.
// Un seul disque est installé à la fois, pour tout le processus.
#pragma once
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "rqbase/platform/fichier.h"

namespace rqbase {

class TDisqueMemoire {
 public:
  using TOctets = std::vector<unsigned char>;

  // Le disque installé, ou nul (les fichiers du système servent alors).
  static TDisqueMemoire* Installe();

  // Installe le disque pour la durée de l'objet.
  class TInstallation {
   public:
    explicit TInstallation(TDisqueMemoire& disque);
    ~TInstallation();
    TInstallation(const TInstallation&) = delete;
    TInstallation& operator=(const TInstallation&) = delete;
  };

  // Pose ou lit le contenu d'un fichier ; Contenu d'un fichier absent : vide.
  void Pose(const std::string& chemin, TOctets octets);
  TOctets Contenu(const std::string& chemin) const;
  bool Existe(const std::string& chemin) const;
  void Vide();

  std::unique_ptr<TFichierBrut> Ouvre(const std::string& chemin, TFichierBrut::TAcces acces,
                                      TFichierBrut::TDisposition disposition, bool ecritureImmediate);

  // Au-delà, une écriture est refusée comme sur un disque plein (octets écrits jusqu'à la limite).
  size_t TailleMaxFichier = size_t(1) << 30;

 private:
  mutable std::mutex Verrou;
  std::map<std::string, std::shared_ptr<TOctets>> Fichiers;
};

}  // namespace rqbase
