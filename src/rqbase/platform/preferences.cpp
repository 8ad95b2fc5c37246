#include "rqbase/platform/preferences.h"

#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/cp1252.h"
#include "rqbase/platform/dossiers_systeme.h"

namespace rqbase {
namespace pt = boost::property_tree;
namespace {

// Le séparateur de chemin de ptree est '.' : les noms de clé peuvent en contenir,
// on prend donc un octet qui n'apparaît jamais dans un nom.
pt::ptree::path_type Chemin(const std::string& section, const std::string& nom) {
  return pt::ptree::path_type(VersUtf8(section) + '\x1f' + VersUtf8(nom), '\x1f');
}

pt::ptree Charge(const std::string& fichier = FichierPreferences()) {
  pt::ptree arbre;
  try {
    pt::read_ini(CheminOs(fichier).string(), arbre);
  } catch (const pt::ptree_error&) {
    // Fichier absent ou mal formé : les valeurs par défaut valent.
  }
  return arbre;
}

}  // namespace

std::string CleRegistrePreference() { return "Préférence Filiora"; }

std::string SectionPreferences() { return "Software\\ZOLT\\" + CleRegistrePreference(); }

std::string LitPreference(const std::string& section, const std::string& nom, const std::string& defaut) {
  return LitIni(FichierPreferences(), section, nom, defaut);
}

std::string LitIni(const std::string& fichier, const std::string& section, const std::string& nom,
                   const std::string& defaut) {
  const auto valeur = Charge(fichier).get_optional<std::string>(Chemin(section, nom));
  return valeur ? DepuisUtf8(*valeur) : defaut;
}

int LitPreferenceEntier(const std::string& section, const std::string& nom, int defaut) {
  return LitIniEntier(FichierPreferences(), section, nom, defaut);
}

int LitIniEntier(const std::string& fichier, const std::string& section, const std::string& nom, int defaut) {
  const std::string texte = LitIni(fichier, section, nom, "");
  try {
    size_t lu = 0;
    const int v = std::stoi(texte, &lu);
    return lu == texte.size() ? v : defaut;
  } catch (const std::exception&) {
    return defaut;
  }
}

bool EcritPreference(const std::string& section, const std::string& nom, const std::string& valeur) {
  pt::ptree arbre = Charge();
  arbre.put(Chemin(section, nom), VersUtf8(valeur));
  const std::filesystem::path fichier = CheminOs(FichierPreferences());
  std::error_code ec;
  if (fichier.has_parent_path()) std::filesystem::create_directories(fichier.parent_path(), ec);
  try {
    pt::write_ini(fichier.string(), arbre);
    return true;
  } catch (const pt::ptree_error&) {
    return false;
  }
}

bool EcritPreferenceEntier(const std::string& section, const std::string& nom, int valeur) {
  return EcritPreference(section, nom, std::to_string(valeur));
}

}  // namespace rqbase
