#pragma once

#include <sys/types.h>

#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>

namespace orvan {

/// A process of its own that applies numbered actions to a store and acknowledges each on a pipe once it has returned.
class WriterProcess {
 public:
  /// Items `first` to `first` + `count` - 1; `rival` is "none", "dismiss" or "resolve".
  WriterProcess(const std::filesystem::path& store, int first, int count, const std::string& rival = "none");
  /// Kills it if it still runs.
  ~WriterProcess();
  WriterProcess(const WriterProcess&) = delete;
  WriterProcess& operator=(const WriterProcess&) = delete;

  /// Waits for the next acknowledgement; nothing once the process has ended and all were read.
  std::optional<std::string> nextAcknowledgement();

  void kill() noexcept;
  /// Waits for its end; tells whether it ended by itself without a fault.
  bool succeeded();

 private:
  pid_t process_ = -1;
  std::FILE* acknowledgements_ = nullptr;
};

/// Whether the long run was asked for (ORVAN_NIGHTLY=1).
bool isNightly();

} // namespace orvan
