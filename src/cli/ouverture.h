// Ouvrir un dossier pour une commande : le nommer, vérifier avant d'écrire, dire l'échec.
//
// Un DOSSIER se nomme par son dossier système (avec ou sans .rq2) ou par son .prs ; son vrai
// nom (liens résolus) dit s'il est courant ou ancien. Une commande d'écriture vérifie que le
// dossier peut être écrit avant de l'ouvrir : refusée, elle ne change rien. Après avoir écrit,
// elle vérifie que tout est sur le disque avant de l'annoncer.
#pragma once
#include <memory>
#include <string>

#include "rqbase/dossier/gest_fic.h"

namespace rqcli {

// Le .prs d'un dossier nommé sur la ligne de commande (texte interne).
std::string CheminPrs(const std::string& nom);
// Un dossier `<nom>.rq2` qui tient `<nom>.prs`, sinon ERqBase (suppression, renommage).
void VerifieDossierGenealogique(const std::string& nom);
// Vrai quand le dossier ne peut être écrit (droits, ou dossier ancien sans .rq2).
bool DossierEnLectureSeule(const std::string& prs);
// Le dossier ouvert ; `nom` tel que tapé (UTF-8). ERqBase s'il est introuvable, verrouillé par
// un autre programme, ou en lecture seule pour une commande d'écriture.
std::unique_ptr<rqbase::TGestFichier> Ouvre(const std::string& nom, bool lectureSeule);
// Le dossier ouvert pour une commande qui écrit : ERqBase, avant toute écriture, s'il ne
// peut pas l'être (ou, avec `avecBase`, si sa base des événements ne s'ouvre pas).
std::unique_ptr<rqbase::TGestFichier> OuvrePourEcrire(const std::string& nom, bool avecBase = false);
// ERqBase « L'écriture dans le dossier a échoué ... » + `quoi` si une écriture a raté.
void VerifieEcriture(const rqbase::TGestFichier& gest, const std::string& quoi);

}  // namespace rqcli
