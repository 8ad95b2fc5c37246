// La description des événements et des champs simples d'une personne, commune aux commandes
// qui les montrent (personne, evenements, evenement) : le JSON de leurs listes et son texte.
//
// Les numéros de lieu, de qualité et de parenté sont traduits par les fichiers partagés du
// dossier ; un numéro qui n'y est pas donne un texte vide.
#pragma once
#include "contexte.h"

namespace rqbase {
class TGestFichier;
class TPerson;
}  // namespace rqbase

namespace rqcli {

// {"evenements": [...], "champs": [...]}, dans l'ordre des listes de la personne (chargées
// au besoin), chaque élément avec son rang à partir de 1.
json DecritListes(rqbase::TGestFichier& gest, rqbase::TPerson& personne);
// Les mêmes listes en lignes de texte.
void EcritListes(const json& listes);
// La valeur d'un membre d'un objet JSON, en texte interne.
std::string Valeur(const json& j, const char* cle);

}  // namespace rqcli
