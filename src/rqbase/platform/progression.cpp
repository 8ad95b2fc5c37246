#include "rqbase/platform/progression.h"

namespace rqbase {

TProgression& ProgressionMuette() {
  thread_local TProgression muette;
  muette.Pos = 0;
  muette.Max = 0;
  return muette;
}

}  // namespace rqbase
