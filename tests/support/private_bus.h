#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace orvan {

/// A message bus (dbus-daemon) of a test's own, which nobody else is on. Programs that the test starts see it as the
/// bus of the user's session, as the test itself does.
class PrivateBus {
 public:
  /// Keeps its files in `folder`, which outlives it. `folder / "services"` may be given service files, which say what
  /// the bus starts when somebody calls a name.
  explicit PrivateBus(std::filesystem::path folder);
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  /// False when no dbus-daemon is installed.
  bool runs() const noexcept { return !address_.empty(); }
  const std::string& address() const noexcept { return address_; }

  /// Ends the bus under everybody who is on it.
  void end();

 private:
  std::filesystem::path folder_;
  pid_t daemon_ = -1;
  std::string address_;
};

} // namespace orvan
