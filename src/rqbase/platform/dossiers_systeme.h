// Les dossiers du système : données partagées de référence et données de
// l'utilisateur. Les chemins rendus finissent par '/' et sont des textes internes
// (Windows-1252), comme tout chemin de la bibliothèque.
#pragma once
#include <string>

namespace rqbase {

// $RQBASE_DATA, sinon le dossier share/rqbase de l'installation.
std::string DossierDonneesPartagees();
// $XDG_DATA_HOME/rqbase/, sinon ~/.local/share/rqbase/ ; créé s'il manque.
std::string DossierDonneesUtilisateur();
// $RQBASE_PREFERENCES, sinon $XDG_CONFIG_HOME/rqbase/preferences.ini (ou ~/.config/...).
std::string FichierPreferences();

}  // namespace rqbase
