#pragma once

#include <stdexcept>
#include <string>

namespace orvan {

/// How the program ends.
enum class ExitCode {
  done = 0,
  failed = 1,
  wrongCommandLine = 2,
  cannotOpen = 3,
  /// 128 and the number of the signal, as shells have it.
  interrupted = 130,
  terminated = 143,
};

/// Ends a command: one sentence that says what to do, without anything from the user's data.
class CommandFailure : public std::runtime_error {
 public:
  CommandFailure(ExitCode code, const std::string& sentence) : std::runtime_error(sentence), code_(code) {}
  ExitCode code() const noexcept { return code_; }

 private:
  ExitCode code_;
};

/// The failure that an exception from the library or the importers means to the user. To be called within a handler.
CommandFailure failureOfCurrentException();

} // namespace orvan
