#include "rqbase/platform/fil.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace rqbase {

uint32_t IdThreadCourant() {
  // Demandé à chaque lecture d'une personne : l'appel système une fois par fil suffit.
  thread_local const uint32_t id = static_cast<uint32_t>(::syscall(SYS_gettid));
  return id;
}

long IdProcessus() { return static_cast<long>(::getpid()); }

}  // namespace rqbase
