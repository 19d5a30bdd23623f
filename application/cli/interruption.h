#pragma once

#include <signal.h>

#include <optional>

#include "application/cli/command_failure.h"
#include "application/import/ledger/import_watch.h"

namespace orvan {

/// While it lives, Ctrl-C (SIGINT) and SIGTERM ask an import to stop instead of ending the program; the second of a
/// kind ends it at once, as if there were no Interruption. A signal that the program was started to ignore stays
/// ignored.
///
/// One at a time, because signals belong to the whole process. The destructor puts back what was there before.
class Interruption {
 public:
  /// `watch` must outlive this.
  explicit Interruption(ImportWatch& watch);
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  /// The latest signal that came.
  std::optional<int> signal() const noexcept;

 private:
  struct sigaction formerInterrupt_ = {};
  struct sigaction formerTerminate_ = {};
};

/// How a program ends that a signal has stopped, as shells have it.
ExitCode exitCodeFor(int signal) noexcept;

} // namespace orvan
