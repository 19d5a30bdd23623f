#include "application/process/process_privacy.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace orvan {

void keepMemoryOutOfCrashDumps() noexcept {
  constexpr rlimit none{0, 0};
  setrlimit(RLIMIT_CORE, &none);
  prctl(PR_SET_DUMPABLE, 0);
  constexpr mode_t everyoneElse = 077;
  umask(everyoneElse);
}

} // namespace orvan
