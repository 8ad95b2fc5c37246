// La commande date (calendriers et dates généalogiques).
#include "commandes.h"

namespace rqcli {

void AjouteCommandesDate(CLI::App& app, TContexteCli& ctx) {
  (void)ctx;
  app.add_subcommand("date", U("Dates et calendriers"))->require_subcommand(1);
}

}  // namespace rqcli
