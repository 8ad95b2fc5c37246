#include "rqbase/util/fichiers.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace rqbase {
namespace fs = std::filesystem;

bool FichierExiste(const std::string& chemin) {
  std::error_code ec;
  return !chemin.empty() && fs::is_regular_file(chemin, ec);
}

bool DossierExiste(const std::string& chemin) {
  std::error_code ec;
  return !chemin.empty() && fs::is_directory(chemin, ec);
}

std::string AjouteSlashSiNecessaire(const std::string& chemin) {
  if (!chemin.empty() && chemin.back() == '/') return chemin;
  return chemin + '/';
}

std::string SupprimeSlashSiNecessaire(const std::string& chemin) {
  if (chemin.size() > 1 && chemin.back() == '/') return chemin.substr(0, chemin.size() - 1);
  return chemin;
}

bool DeleteDirectoryRecursif(const std::string& dossier) {
  std::error_code ec;
  fs::remove_all(dossier, ec);
  return !ec && !fs::exists(dossier, ec);
}

bool CopyDirectory(const std::string& source, const std::string& cible, const std::function<bool()>& parElement) {
  std::error_code ec;
  if (!fs::is_directory(source, ec)) return false;
  fs::create_directories(cible, ec);
  if (ec) return false;
  for (auto it = fs::recursive_directory_iterator(source, ec); !ec && it != fs::recursive_directory_iterator();
       it.increment(ec)) {
    const fs::path destination = fs::path(cible) / fs::relative(it->path(), source, ec);
    if (it->is_directory(ec))
      fs::create_directories(destination, ec);
    else
      fs::copy_file(it->path(), destination, fs::copy_options::overwrite_existing, ec);
    if (ec) return false;
    if (parElement && !parElement()) return false;
  }
  return !ec;
}

long CountFileAndDirInDirectory(const std::string& dossier) {
  std::error_code ec;
  if (!fs::is_directory(dossier, ec)) return 0;
  long n = 0;
  for (auto it = fs::recursive_directory_iterator(dossier, ec); !ec && it != fs::recursive_directory_iterator();
       it.increment(ec))
    ++n;
  return n;
}

std::string CheminSysteme(const std::string& chemin) {
  std::string r = chemin;
  std::replace(r.begin(), r.end(), '\\', '/');
  return r;
}

}  // namespace rqbase
