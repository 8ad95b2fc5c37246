#include "rqbase/platform/fichier.h"
#include "rqbase/platform/chemins.h"
#include "rqbase/platform/fichier_memoire.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <mutex>

namespace rqbase {
namespace {

thread_local int gDerniereErreur = 0;
std::mutex gVerrouPannes;

int Drapeaux(TFichierBrut::TAcces acces, TFichierBrut::TDisposition disposition, bool immediate) {
  int f = O_CLOEXEC | O_NOFOLLOW | (acces == TFichierBrut::TAcces::Lecture ? O_RDONLY : O_RDWR);
  if (acces == TFichierBrut::TAcces::LectureEcriture) {
    if (disposition == TFichierBrut::TDisposition::OuvreOuCree) f |= O_CREAT;
    if (disposition == TFichierBrut::TDisposition::CreeOuRemplace) f |= O_CREAT | O_TRUNC;
    if (immediate) f |= O_DSYNC;
  }
  return f;
}

}  // namespace

// ---- TPannes -------------------------------------------------------------

void TPannes::EchoueLectureApres(int n, const std::string& fragment) {
  std::lock_guard<std::mutex> g(gVerrouPannes);
  Lecture = {true, TEffet::Echec, n, fragment};
  Armee = true;
}
void TPannes::EchoueEcritureApres(int n, const std::string& fragment) {
  std::lock_guard<std::mutex> g(gVerrouPannes);
  Ecriture = {true, TEffet::Echec, n, fragment};
  Armee = true;
}
void TPannes::LectureCourteApres(int n, const std::string& fragment) {
  std::lock_guard<std::mutex> g(gVerrouPannes);
  Lecture = {true, TEffet::Courte, n, fragment};
  Armee = true;
}
void TPannes::EcritureCourteApres(int n, const std::string& fragment) {
  std::lock_guard<std::mutex> g(gVerrouPannes);
  Ecriture = {true, TEffet::Courte, n, fragment};
  Armee = true;
}
void TPannes::RefuseEcriture(const std::string& fragment) {
  std::lock_guard<std::mutex> g(gVerrouPannes);
  FragmentLectureSeule = fragment;
  Armee = true;
}
void TPannes::Raz() {
  std::lock_guard<std::mutex> g(gVerrouPannes);
  Lecture = {};
  Ecriture = {};
  FragmentLectureSeule.clear();
  Armee = false;
}

TPannes::TEffet TPannes::Applique(TRegle& regle, const std::string& chemin) {
  if (!regle.Active) return TEffet::Aucun;
  if (!regle.Fragment.empty() && chemin.find(regle.Fragment) == std::string::npos) return TEffet::Aucun;
  if (regle.Restant > 0) {
    --regle.Restant;
    return TEffet::Aucun;
  }
  return regle.Effet;
}

TPannes::TEffet TPannes::AvantLecture(const std::string& chemin) {
  if (!Armee) return TEffet::Aucun;  // chemin rapide : aucune panne armée
  std::lock_guard<std::mutex> g(gVerrouPannes);
  return Applique(Lecture, chemin);
}

TPannes::TEffet TPannes::AvantEcriture(const std::string& chemin) {
  if (!Armee) return TEffet::Aucun;
  std::lock_guard<std::mutex> g(gVerrouPannes);
  return Applique(Ecriture, chemin);
}

bool TPannes::EcritureRefusee(const std::string& chemin) {
  if (!Armee) return false;
  std::lock_guard<std::mutex> g(gVerrouPannes);
  return !FragmentLectureSeule.empty() && chemin.find(FragmentLectureSeule) != std::string::npos;
}

// ---- TFichierBrut ----------------------------------------------------------

namespace {

// Le fichier du système : lectures et écritures positionnées, sans position partagée.
class TFichierPosix final : public TFichierBrut {
 public:
  TFichierPosix(int fd, std::string chemin, TAcces acces, bool immediate)
      : TFichierBrut(std::move(chemin), acces, immediate), Fd(fd) {}
  ~TFichierPosix() override {
    if (Fd >= 0) ::close(Fd);
  }

  int64_t Taille() const override {
    struct stat st {};
    return ::fstat(Fd, &st) == 0 ? int64_t(st.st_size) : -1;
  }

  bool Tronque(int64_t taille) override {
    if (Acces == TAcces::Lecture || taille < 0) return false;
    int r;
    do {
      r = ::ftruncate(Fd, taille);
    } while (r < 0 && errno == EINTR);
    return r == 0;
  }

  bool Flush() override {
    if (Acces == TAcces::Lecture) return true;
    return ::fdatasync(Fd) == 0;
  }

  bool ChangeEcritureImmediate(bool immediate) override {
    if (immediate == Immediate || Acces == TAcces::Lecture) {
      Immediate = immediate;
      return true;
    }
    // Linux ne change pas O_DSYNC par fcntl : on rouvre le même fichier, sans suivre de lien.
    const int fd = ::open(CheminOs(CheminFichier).c_str(), Drapeaux(Acces, TDisposition::Ouvre, immediate));
    if (fd < 0) return false;
    if (!immediate) ::fdatasync(Fd);
    ::close(Fd);
    Fd = fd;
    Immediate = immediate;
    return true;
  }

 protected:
  int64_t LitBrut(int64_t position, void* tampon, size_t taille) override {
    size_t lu = 0;
    auto* p = static_cast<char*>(tampon);
    while (lu < taille) {
      const ssize_t n = ::pread(Fd, p + lu, taille - lu, position + int64_t(lu));
      if (n < 0 && errno == EINTR) continue;
      if (n < 0) return -1;
      if (n == 0) break;  // fin de fichier
      lu += size_t(n);
    }
    return int64_t(lu);
  }

  int64_t EcritBrut(int64_t position, const void* tampon, size_t taille) override {
    size_t ecrit = 0;
    const auto* p = static_cast<const char*>(tampon);
    while (ecrit < taille) {
      const ssize_t n = ::pwrite(Fd, p + ecrit, taille - ecrit, position + int64_t(ecrit));
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) {
        FixeDerniereErreur(n < 0 ? errno : ENOSPC);
        return ecrit ? int64_t(ecrit) : -1;
      }
      ecrit += size_t(n);
    }
    return int64_t(ecrit);
  }

 private:
  int Fd;
};

}  // namespace

TPannes& TFichierBrut::Pannes() {
  static TPannes pannes;
  return pannes;
}

int TFichierBrut::DerniereErreur() { return gDerniereErreur; }
void TFichierBrut::FixeDerniereErreur(int erreur) { gDerniereErreur = erreur; }

std::unique_ptr<TFichierBrut> TFichierBrut::Ouvre(const std::string& chemin, TAcces acces, TDisposition disposition,
                                                  bool ecritureImmediate) {
  if (acces == TAcces::LectureEcriture && Pannes().EcritureRefusee(chemin)) {
    gDerniereErreur = EACCES;
    return nullptr;
  }
  if (TDisqueMemoire* disque = TDisqueMemoire::Installe()) return disque->Ouvre(chemin, acces, disposition, ecritureImmediate);
  int fd;
  // O_NONBLOCK : un tube mis à la place d'un fichier ne bloque pas l'ouverture ; il est
  // refusé juste après, comme tout ce qui n'est pas un fichier ordinaire.
  do {
    fd = ::open(CheminOs(chemin).c_str(), Drapeaux(acces, disposition, ecritureImmediate) | O_NONBLOCK, 0666);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) {
    gDerniereErreur = errno;
    return nullptr;
  }
  struct stat st {};
  if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    gDerniereErreur = S_ISDIR(st.st_mode) ? EISDIR : EINVAL;
    ::close(fd);
    return nullptr;
  }
  ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
  return std::make_unique<TFichierPosix>(fd, chemin, acces, ecritureImmediate);
}

int64_t TFichierBrut::LitA(int64_t position, void* tampon, size_t taille) {
  if (position < 0) return -1;
  const auto effet = Pannes().AvantLecture(CheminFichier);
  if (effet == TPannes::TEffet::Echec) return -1;
  if (effet == TPannes::TEffet::Courte) taille /= 2;
  return LitBrut(position, tampon, taille);
}

int64_t TFichierBrut::EcritA(int64_t position, const void* tampon, size_t taille) {
  if (position < 0 || Acces == TAcces::Lecture) return -1;
  const auto effet = Pannes().AvantEcriture(CheminFichier);
  if (effet == TPannes::TEffet::Echec) {
    gDerniereErreur = EIO;
    return -1;
  }
  // Une écriture courte injectée écrit vraiment la première moitié, comme un disque plein.
  if (effet == TPannes::TEffet::Courte) {
    const int64_t n = EcritBrut(position, tampon, taille / 2);
    gDerniereErreur = ENOSPC;
    return n;
  }
  return EcritBrut(position, tampon, taille);
}

}  // namespace rqbase
