#include "rqbase/platform/dossiers_systeme.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#include "rqbase/platform/chemins.h"

#ifndef RQ_PREFIXE_INSTALLATION
#define RQ_PREFIXE_INSTALLATION "/usr/local"
#endif

namespace rqbase {
namespace {

std::string Variable(const char* nom) {
  const char* v = std::getenv(nom);
  return v ? CheminInterne(std::filesystem::path(v)) : std::string();
}

std::string AvecSlash(std::string chemin) {
  if (!chemin.empty() && chemin.back() != '/') chemin += '/';
  return chemin;
}

std::string Maison() {
  std::string h = Variable("HOME");
  return h.empty() ? std::string("/tmp") : h;
}

}  // namespace

std::string DossierDonneesPartagees() {
  std::string d = Variable("RQBASE_DATA");
  if (d.empty()) d = std::string(RQ_PREFIXE_INSTALLATION) + "/share/rqbase";
  return AvecSlash(d);
}

std::string DossierDonneesUtilisateur() {
  std::string base = Variable("XDG_DATA_HOME");
  if (base.empty()) base = Maison() + "/.local/share";
  const std::string d = AvecSlash(base) + "rqbase/";
  std::error_code ec;
  std::filesystem::create_directories(CheminOs(d), ec);
  return d;
}

std::string FichierPreferences() {
  std::string f = Variable("RQBASE_PREFERENCES");
  if (!f.empty()) return f;
  std::string base = Variable("XDG_CONFIG_HOME");
  if (base.empty()) base = Maison() + "/.config";
  return AvecSlash(base) + "rqbase/preferences.ini";
}

}  // namespace rqbase
