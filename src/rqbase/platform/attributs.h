// Les attributs d'un fichier vus du système : droit d'écriture et date de modification.
//
// Un fichier sans aucun droit d'écriture se lit comme l'attribut « lecture seule » de
// l'autre système : le test tient même pour le super-utilisateur, que les droits
// n'arrêtent pas. Aucun de ces appels ne suit un lien symbolique.
#pragma once
#include <string>

namespace rqbase {

// Vrai quand le chemin existe et ne peut être écrit (aucun bit d'écriture, ou refus du système).
bool SansDroitEcriture(const std::string& chemin);
// Donne au propriétaire le droit d'écrire ; false si le système refuse.
bool AjouteDroitEcriture(const std::string& chemin);
// Date de dernière modification en jours depuis le 30/12/1899 (temps universel) ; false si absent.
bool DateModificationFichier(const std::string& chemin, double& jours);

}  // namespace rqbase
