// Préférences de l'utilisateur dans un fichier INI (remplace la base de registre).
//
// Une section porte le texte de la clé, par exemple "Software\ZOLT\Préférence Filiora" ;
// ses entrées portent les noms des valeurs ("Pays de reference"...). Les textes sont
// Windows-1252 pour l'appelant et UTF-8 dans le fichier. Un fichier absent ou illisible
// donne les valeurs par défaut ; une écriture réécrit tout le fichier.
#pragma once
#include <string>

namespace rqbase {

// Le nom de la clé des préférences, sous "Software\ZOLT\".
std::string CleRegistrePreference();
// "Software\ZOLT\" suivi de CleRegistrePreference().
std::string SectionPreferences();

std::string LitPreference(const std::string& section, const std::string& nom, const std::string& defaut = "");
int LitPreferenceEntier(const std::string& section, const std::string& nom, int defaut);
// Rend false si le fichier ne peut pas être écrit.
bool EcritPreference(const std::string& section, const std::string& nom, const std::string& valeur);
bool EcritPreferenceEntier(const std::string& section, const std::string& nom, int valeur);

// Une valeur d'un autre fichier INI (réglages d'un écran...), lue de même ; `fichier` est un
// chemin interne (Windows-1252). Absent, illisible ou mal formé : `defaut`.
std::string LitIni(const std::string& fichier, const std::string& section, const std::string& nom,
                   const std::string& defaut = "");
int LitIniEntier(const std::string& fichier, const std::string& section, const std::string& nom, int defaut);

}  // namespace rqbase
