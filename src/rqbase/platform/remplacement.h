// Remplacer ou déplacer un fichier d'un seul coup, sans jamais écraser ce qu'on ne vise pas.
//
// RemplaceFichier écrit le nouveau contenu à côté, le force sur le disque, puis le met à la
// place de l'ancien par un renommage : une panne laisse l'ancien fichier ou le nouveau,
// jamais un mélange ; ce qui n'est pas un fichier ordinaire (lien symbolique, tube) à la
// place du fichier n'est ni suivi ni remplacé : l'écriture est refusée.
// RenommeSansEcraser refuse quand la cible existe. NomLibre trouve le nom d'une mise de côté.
#pragma once
#include <string>

namespace rqbase {

// Écrit `octets` dans `chemin` (remplacé entier) ; false si quoi que ce soit a échoué, ou
// si `chemin` n'est pas un fichier ordinaire, et l'ancien contenu reste alors en place.
bool RemplaceFichier(const std::string& chemin, const std::string& octets);
// Renomme `ancien` en `nouveau` si `nouveau` n'existe pas ; false sinon (errno du système
// dans `erreur` s'il est donné).
bool RenommeSansEcraser(const std::string& ancien, const std::string& nouveau, int* erreur = nullptr);
// Donne à `existant` le second nom `nouveau` (lien physique) si `nouveau` n'existe pas ;
// false sinon (errno dans `erreur`). Les deux noms désignent alors le même fichier.
bool LieSansEcraser(const std::string& existant, const std::string& nouveau, int* erreur = nullptr);
// Vrai si les deux chemins désignent le même fichier (liens physiques), sans suivre de lien.
bool MemeFichier(const std::string& a, const std::string& b);
// `chemin` s'il est libre, sinon "<base> (2)<ext>", "<base> (3)<ext>"... le premier libre.
std::string NomLibre(const std::string& chemin);
// Force sur le disque l'entrée des fichiers d'un dossier (après création ou renommage).
void SynchroniseDossier(const std::string& dossier);

}  // namespace rqbase

namespace rqbase {

// Copie le contenu d'un fichier ordinaire dans `cible` (créée ou remplacée), forcé sur le
// disque ; ni la source ni la cible ne sont suivies si ce sont des liens. false en échec.
bool CopieFichier(const std::string& source, const std::string& cible);

}  // namespace rqbase
