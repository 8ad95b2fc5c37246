#include "rqbase/platform/verrou.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "rqbase/platform/chemins.h"
#include "rqbase/platform/fichier_memoire.h"

namespace rqbase {

int TVerrou::AttenteParDefaut() {
  if (const char* v = std::getenv("RQBASE_ATTENTE_VERROU")) {
    char* fin = nullptr;
    const long ms = std::strtol(v, &fin, 10);
    if (fin != v && *fin == 0 && ms >= 0 && ms <= 3600000) return static_cast<int>(ms);
  }
  return 10000;
}

std::unique_ptr<TVerrou> TVerrou::Prend(const std::string& chemin, TMode mode, int attenteMs, TIssue& issue) {
  if (TDisqueMemoire::Installe()) {
    issue = TIssue::Pris;
    return std::unique_ptr<TVerrou>(new TVerrou(-1));
  }
  int fd;
  do {
    fd = ::open(CheminOs(chemin).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK);
  } while (fd < 0 && errno == EINTR);
  struct stat st {};
  if (fd < 0 || ::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
    if (fd >= 0) ::close(fd);
    issue = TIssue::Impossible;
    return nullptr;
  }
  const int operation = (mode == TMode::Exclusif ? LOCK_EX : LOCK_SH) | LOCK_NB;
  const auto limite = std::chrono::steady_clock::now() + std::chrono::milliseconds(attenteMs);
  for (;;) {
    if (::flock(fd, operation) == 0) {
      issue = TIssue::Pris;
      return std::unique_ptr<TVerrou>(new TVerrou(fd));
    }
    if (errno != EWOULDBLOCK && errno != EINTR) break;
    if (std::chrono::steady_clock::now() >= limite) {
      ::close(fd);
      issue = TIssue::Occupe;
      return nullptr;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ::close(fd);
  issue = TIssue::Impossible;
  return nullptr;
}

TVerrou::~TVerrou() {
  if (Fd >= 0) ::close(Fd);  // fermer le descripteur rend le verrou
}

}  // namespace rqbase
