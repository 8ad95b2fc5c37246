#include "rqbase/platform/remplacement.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/fichier.h"
#include "rqbase/platform/fichier_memoire.h"

namespace rqbase {

namespace {

bool Existe(const std::string& chemin) {
  if (TDisqueMemoire* disque = TDisqueMemoire::Installe()) return disque->Existe(chemin);
  struct stat st {};
  return ::lstat(CheminOs(chemin).c_str(), &st) == 0;
}

std::string DossierDe(const std::string& chemin) {
  const auto p = std::filesystem::path(chemin).parent_path().string();
  return p.empty() ? "." : p;
}

}  // namespace

bool RemplaceFichier(const std::string& chemin, const std::string& octets) {
  if (TDisqueMemoire::Installe()) {
    auto f = TFichierBrut::Ouvre(chemin, TFichierBrut::TAcces::LectureEcriture, TFichierBrut::TDisposition::CreeOuRemplace);
    return f && f->EcritTout(0, octets.data(), octets.size());
  }
  // Ce qui est à la place du fichier et n'est pas un fichier ordinaire (un lien, un tube)
  // n'est pas à nous : on ne le remplace pas.
  struct stat st {};
  if (::lstat(CheminOs(chemin).c_str(), &st) == 0 && !S_ISREG(st.st_mode)) return false;
  const std::string temporaire = chemin + ".tmp" + std::to_string(::getpid());
  {
    auto f = TFichierBrut::Ouvre(temporaire, TFichierBrut::TAcces::LectureEcriture,
                                 TFichierBrut::TDisposition::CreeOuRemplace, false);
    if (!f) return false;
    if (!f->EcritTout(0, octets.data(), octets.size()) || !f->Flush()) {
      f.reset();
      ::unlink(CheminOs(temporaire).c_str());
      return false;
    }
  }
  if (::rename(CheminOs(temporaire).c_str(), CheminOs(chemin).c_str()) != 0) {
    ::unlink(CheminOs(temporaire).c_str());
    return false;
  }
  SynchroniseDossier(DossierDe(chemin));
  return true;
}

bool RenommeSansEcraser(const std::string& ancien, const std::string& nouveau, int* erreur) {
  const int r = ::renameat2(AT_FDCWD, CheminOs(ancien).c_str(), AT_FDCWD, CheminOs(nouveau).c_str(), RENAME_NOREPLACE);
  if (r == 0) return true;
  if (erreur) *erreur = errno;
  return false;
}

bool LieSansEcraser(const std::string& existant, const std::string& nouveau, int* erreur) {
  if (::link(CheminOs(existant).c_str(), CheminOs(nouveau).c_str()) == 0) return true;
  if (erreur) *erreur = errno;
  return false;
}

bool MemeFichier(const std::string& a, const std::string& b) {
  struct stat sa {}, sb {};
  return ::lstat(CheminOs(a).c_str(), &sa) == 0 && ::lstat(CheminOs(b).c_str(), &sb) == 0 && sa.st_dev == sb.st_dev &&
         sa.st_ino == sb.st_ino;
}

std::string NomLibre(const std::string& chemin) {
  if (!Existe(chemin)) return chemin;
  const std::filesystem::path p(chemin);
  const std::string ext = p.extension().string();
  const std::string base = chemin.substr(0, chemin.size() - ext.size());
  for (int n = 2;; ++n) {
    const std::string essai = base + " (" + std::to_string(n) + ")" + ext;
    if (!Existe(essai)) return essai;
  }
}

void SynchroniseDossier(const std::string& dossier) {
  if (TDisqueMemoire::Installe()) return;
  const int fd = ::open(CheminOs(dossier).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return;
  ::fsync(fd);
  ::close(fd);
}

}  // namespace rqbase

namespace rqbase {

bool CopieFichier(const std::string& source, const std::string& cible) {
  using A = TFichierBrut::TAcces;
  using D = TFichierBrut::TDisposition;
  auto entree = TFichierBrut::Ouvre(source, A::Lecture, D::Ouvre);
  if (!entree) return false;
  auto sortie = TFichierBrut::Ouvre(cible, A::LectureEcriture, D::CreeOuRemplace, false);
  if (!sortie) return false;
  std::string tampon(1 << 20, '\0');
  for (int64_t position = 0;;) {
    const int64_t lus = entree->LitA(position, tampon.data(), tampon.size());
    if (lus < 0) return false;
    if (lus == 0) break;
    if (!sortie->EcritTout(position, tampon.data(), static_cast<size_t>(lus))) return false;
    position += lus;
  }
  return sortie->Flush();
}

}  // namespace rqbase
