// rqbase : la ligne de commande de la bibliothèque.
#include <exception>
#include <iostream>

#include "commandes.h"
#include "contexte.h"
#include "dialogue_terminal.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/util/erreur.h"

#ifndef RQ_VERSION
#define RQ_VERSION "0.0.0"
#endif

namespace {

// Les libellés de l'aide générée par CLI11, en français.
void FranciseAide(CLI::App& app) {
  auto f = app.get_formatter();
  f->label("Usage", "Utilisation");
  f->label("OPTIONS", "OPTIONS");
  f->label("SUBCOMMAND", "COMMANDE");
  f->label("SUBCOMMANDS", "COMMANDES");
  f->label("Options", "Options");
  f->label("Subcommands", "Commandes");
  f->label("Positionals", "Arguments");
  f->label("REQUIRED", "OBLIGATOIRE");
  f->label("TEXT", "TEXTE");
  f->label("INT", "ENTIER");
  f->label("FLOAT", "NOMBRE");
  f->label("UINT", "ENTIER");
  f->column_width(36);
}

// Ce qui suit le dernier « : » d'un message de CLI11 (le nom ou la valeur en cause).
std::string Detail(const std::string& message) {
  const size_t p = message.rfind(": ");
  return p == std::string::npos ? message : message.substr(p + 2);
}

// Un message d'erreur de CLI11, en français : seuls les noms et valeurs en cause
// sont repris du message anglais.
std::string MessageAnalyse(const CLI::ParseError& e) {
  const std::string message = e.what();
  if (dynamic_cast<const CLI::RequiredError*>(&e)) {
    const size_t p = message.find(" is required");
    if (message.rfind("A subcommand", 0) == 0) return "il manque la commande (voir --aide)";
    if (p != std::string::npos) return "argument ou option obligatoire manquant : " + message.substr(0, p);
    return "il manque une commande ou un argument obligatoire";
  }
  if (dynamic_cast<const CLI::ExtrasError*>(&e)) return "argument inattendu : " + Detail(message);
  if (dynamic_cast<const CLI::ConversionError*>(&e)) return "valeur invalide : " + Detail(message);
  if (dynamic_cast<const CLI::ValidationError*>(&e)) return "valeur refusée : " + Detail(message);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&e)) {
    // « --champ: 1 required TEXT missing » : l'option est nommée avant les deux-points.
    const size_t deuxPoints = message.find(':');
    if (message.find("missing") != std::string::npos && deuxPoints != std::string::npos)
      return "il manque la valeur de l'option " + message.substr(0, deuxPoints);
    return "nombre d'arguments incorrect : " + Detail(message);
  }
  return "ligne de commande incorrecte (" + message + ")";
}

// Aide française et groupe "Commandes" à tous les niveaux de sous-commandes.
void FranciseSousCommandes(CLI::App& parent) {
  for (auto* sous : parent.get_subcommands({})) {
    sous->set_help_flag("-h,--aide,--help", rqcli::U("Affiche cette aide et quitte"));
    sous->fallthrough();
    sous->group(rqcli::U("Commandes"));
    FranciseSousCommandes(*sous);
  }
}

}  // namespace

int main(int argc, char** argv) {
  using namespace rqcli;
  TContexteCli ctx;
  CLI::App app{U("rqbase : les dossiers généalogiques en ligne de commande.\n"
                 "Chaque commande accepte --json pour une sortie lisible par les scripts.")};
  app.set_help_flag("-h,--aide,--help", U("Affiche cette aide et quitte"));
  app.set_help_all_flag("--aide-complete", U("Affiche l'aide de toutes les commandes"));
  app.set_version_flag("--version", std::string("rqbase ") + RQ_VERSION, U("Affiche la version et quitte"));
  app.add_flag("--json", ctx.Json, U("Sortie JSON (UTF-8)"))->trigger_on_parse();
  app.add_flag("--oui", ctx.Oui, U("Répond Oui à toute question"));
  app.add_flag("--non", ctx.Non, U("Répond Non à toute question"));
  app.require_subcommand(1);
  app.fallthrough();
  FranciseAide(app);

  TDialogueTerminal dialogue(ctx);
  rqbase::InstalleDialogue(&dialogue);

  AjouteCommandesDate(app, ctx);
  AjouteCommandesCatalogue(app, ctx);
  AjouteCommandesDossier(app, ctx);
  AjouteCommandesNotes(app, ctx);
  AjouteCommandesLieux(app, ctx);
  AjouteCommandesEvenements(app, ctx);
  AjouteCommandesNoms(app, ctx);
  AjouteCommandesIndex(app, ctx);
  AjouteCommandesFamille(app, ctx);
  AjouteCommandesFaits(app, ctx);
  AjouteCommandesGedcom(app, ctx);
  AjouteCommandesEstimation(app, ctx);

  FranciseSousCommandes(app);

  int code = 0;
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    code = app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    code = app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    code = app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "rqbase : " << U(MessageAnalyse(e)) << "\n" << U("rqbase --aide pour l'aide.") << "\n";
    code = 2;
  } catch (const rqbase::ERqBase& e) {
    std::cerr << "rqbase : " << rqbase::VersUtf8(e.what()) << "\n";
    code = 1;
  } catch (const std::exception& e) {
    std::cerr << U("rqbase : erreur inattendue : ") << rqbase::VersUtf8(e.what()) << "\n";
    code = 1;
  }
  rqbase::InstalleDialogue(nullptr);
  return code;
}
