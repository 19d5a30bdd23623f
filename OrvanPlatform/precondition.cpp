#include "OrvanPlatform/precondition.h"

#include <cstdio>
#include <cstdlib>

namespace orvan {

void precondition(bool holds, const char* sentence) noexcept {
  if (!holds) {
    std::fprintf(stderr, "%s\n", sentence);
    std::abort();
  }
}

} // namespace orvan
