#include "rqbase/util/fichiers.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/remplacement.h"

namespace rqbase {
namespace fs = std::filesystem;

bool FichierExiste(const std::string& chemin) {
  std::error_code ec;
  return !chemin.empty() && fs::is_regular_file(CheminOs(chemin), ec);
}

bool DossierExiste(const std::string& chemin) {
  std::error_code ec;
  return !chemin.empty() && fs::is_directory(CheminOs(chemin), ec);
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
  const fs::path p = CheminOs(dossier);
  fs::remove_all(p, ec);
  return !ec && !fs::exists(p, ec);
}

bool CopyDirectory(const std::string& source, const std::string& cible, const std::function<bool()>& parElement) {
  std::error_code ec;
  const fs::path depart = CheminOs(source), arrivee = CheminOs(cible);
  if (!fs::is_directory(depart, ec)) return false;
  fs::create_directories(arrivee, ec);
  if (ec) return false;
  for (auto it = fs::recursive_directory_iterator(depart, ec); !ec && it != fs::recursive_directory_iterator();
       it.increment(ec)) {
    const fs::path destination = arrivee / fs::relative(it->path(), depart, ec);
    // Un lien symbolique ne se suit pas : il pourrait mener hors du dossier copié.
    if (it->is_symlink(ec)) continue;
    if (it->is_directory(ec))
      fs::create_directories(destination, ec);
    else if (it->is_regular_file(ec) && !CopieFichier(CheminInterne(it->path()), CheminInterne(destination)))
      return false;
    if (ec) return false;
    if (parElement && !parElement()) return false;
  }
  return !ec;
}

long CountFileAndDirInDirectory(const std::string& dossier) {
  std::error_code ec;
  const fs::path p = CheminOs(dossier);
  if (!fs::is_directory(p, ec)) return 0;
  long n = 0;
  for (auto it = fs::recursive_directory_iterator(p, ec); !ec && it != fs::recursive_directory_iterator();
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
