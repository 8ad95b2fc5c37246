// Aides de fichiers et de dossiers de la couche utilitaire. Les chemins sont
// ceux du système ('/'), en Windows-1252 comme tout texte interne ; ils passent
// en UTF-8 au seul appel système (platform/chemins.h).
#pragma once
#include <functional>
#include <string>

namespace rqbase {

// Vrai pour un fichier ordinaire qui existe (un dossier n'est pas un fichier).
bool FichierExiste(const std::string& chemin);
bool DossierExiste(const std::string& chemin);
// Ajoute ou retire le '/' final.
std::string AjouteSlashSiNecessaire(const std::string& chemin);
std::string SupprimeSlashSiNecessaire(const std::string& chemin);
// Supprime un dossier et tout son contenu ; false si quelque chose est resté.
bool DeleteDirectoryRecursif(const std::string& dossier);
// Copie un dossier et son contenu dans `cible` (créée), sans suivre les liens symboliques
// (laissés de côté). `parElement`, s'il est
// donné, est appelé après chaque fichier ou dossier copié et peut rendre false
// pour arrêter la copie.
bool CopyDirectory(const std::string& source, const std::string& cible,
                   const std::function<bool()>& parElement = nullptr);
// Nombre de fichiers et de dossiers sous `dossier`, récursivement (0 s'il n'existe pas).
long CountFileAndDirInDirectory(const std::string& dossier);
// Les '\' des chemins venus de données stockées deviennent '/'.
std::string CheminSysteme(const std::string& chemin);

}  // namespace rqbase
