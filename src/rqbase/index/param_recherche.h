// Les réglages de la recherche d'une personne à modifier, tels que l'écran de l'application les
// garde dans "searchpers.ini" (dossier des données de l'utilisateur), section
// "Personne_Modif" : clés "Activate", "Pers_Add", "Pers_Edit", "Periode", "Last_search".
//
// Leurs valeurs appartiennent à l'écran : la bibliothèque les lit telles quelles. Un
// interrupteur vaut vrai pour "1", "true" ou "oui" (en toute casse), faux sinon ; une période
// illisible vaut 0. Un fichier absent ou mal formé donne les valeurs par défaut.
#pragma once
#include <string>

namespace rqbase {

struct TSearchPersEdit {
  bool Activate = false;  // la recherche s'ouvre d'elle-même
  bool PersAdd = false;   // à l'ajout d'une personne
  bool PersEdit = false;  // à la modification d'une personne
  int Periode = 0;
  std::string LastSearch;  // la dernière recherche tapée
};

// Le chemin du fichier des réglages.
std::string FichierParamRecherche();

}  // namespace rqbase
