#include "rqbase/platform/fil.h"

#include <sys/syscall.h>
#include <unistd.h>

namespace rqbase {

uint32_t IdThreadCourant() { return static_cast<uint32_t>(::syscall(SYS_gettid)); }

}  // namespace rqbase
