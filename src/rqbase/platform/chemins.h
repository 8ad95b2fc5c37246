// Les chemins de fichiers au bord du système.
//
// Dans la bibliothèque, un chemin est un texte comme un autre, en Windows-1252 :
// le nom d'un dossier vient de ce que l'utilisateur tape ("Famille Lefèvre") et se
// retrouve dans les noms de tous ses fichiers. Le système de fichiers de Linux, lui,
// nomme en UTF-8 : chaque appel système reçoit CheminOs(chemin), et un nom lu du
// système revient par CheminInterne. Ainsi "Lefèvre.rq2" se lit comme tel dans tout
// autre outil.
#pragma once
#include <filesystem>
#include <string>

namespace rqbase {

std::filesystem::path CheminOs(const std::string& chemin);
std::string CheminInterne(const std::filesystem::path& chemin);

}  // namespace rqbase
