// Les familles de commandes de rqbase ; chacune s'ajoute à l'application.
#pragma once
#include "contexte.h"

namespace rqcli {

void AjouteCommandesDate(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesDossier(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesCatalogue(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesNotes(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesLieux(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesEvenements(CLI::App& app, TContexteCli& ctx);
void AjouteCommandesNoms(CLI::App& app, TContexteCli& ctx);

}  // namespace rqcli
