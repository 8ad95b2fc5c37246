#include "rqbase/platform/attributs.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/fichier_memoire.h"

namespace rqbase {

bool SansDroitEcriture(const std::string& chemin) {
  // Les fichiers d'un disque en mémoire s'écrivent toujours : pas de question au système.
  if (TDisqueMemoire::Installe()) return false;
  const std::string os = CheminOs(chemin).string();
  struct stat st {};
  if (::lstat(os.c_str(), &st) != 0) return false;
  return (st.st_mode & 0222) == 0 || ::faccessat(AT_FDCWD, os.c_str(), W_OK, AT_SYMLINK_NOFOLLOW) != 0;
}

bool AjouteDroitEcriture(const std::string& chemin) {
  const std::string os = CheminOs(chemin).string();
  struct stat st {};
  if (::lstat(os.c_str(), &st) != 0 || S_ISLNK(st.st_mode)) return false;
  return ::chmod(os.c_str(), (st.st_mode & 07777) | S_IWUSR) == 0;
}

bool DateModificationFichier(const std::string& chemin, double& jours) {
  struct stat st {};
  if (::lstat(CheminOs(chemin).c_str(), &st) != 0) return false;
  jours = 25569.0 + (static_cast<double>(st.st_mtim.tv_sec) + static_cast<double>(st.st_mtim.tv_nsec) / 1e9) / 86400.0;
  return true;
}

}  // namespace rqbase
