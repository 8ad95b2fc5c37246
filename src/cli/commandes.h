// Les familles de commandes de rqbase ; chacune s'ajoute à l'application.
#pragma once
#include "contexte.h"
#include "rqbase/dates/daterq.h"

namespace rqcli {

void AjouteCommandesDate(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesDossier(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesCatalogue(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesNotes(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesLieux(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesEvenements(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesNoms(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesIndex(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesFamille(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesFaits(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesGedcom(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesEstimation(CLI::App& app, TContexteCli& ctx);

// Une date tapée par l'utilisateur (UTF-8) : la forme exportée "#<acte><calendrier><date>#",
// ou un texte lu comme par `rqbase date` ; un texte refusé lève ERqBase avec son code.
rqbase::TDateRQ DateDeTexte(const std::string& utf8);

}  // namespace rqcli
