// AddLog : le seul journal, une ligne datée par entrée, "jj/mm/aaaa hh:nn:ss texte",
// ajoutée au fichier rqbase.log du dossier des données de l'utilisateur.
// Ne lève jamais : un journal impossible à écrire est ignoré.
#pragma once
#include <string>

namespace rqbase {

void AddLog(const std::string& texte);
// Le chemin du journal (pour les tests et la ligne de commande).
std::string FichierJournal();

}  // namespace rqbase
