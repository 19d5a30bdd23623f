#pragma once

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace orvan {

/// A program that has a store open.
struct StoreUser {
  pid_t process;
  /// As the system calls it ("orvan-desktop"); empty when it does not tell.
  std::string program;

  bool operator==(const StoreUser&) const = default;
};

/// The other processes on this machine that hold a lock on the store at `file`, which every connection does for as long
/// as it is open. Told by the system's list of locks: the store itself is not opened, for closing it would take away
/// this process's own locks. Empty where the system has no such list.
std::vector<StoreUser> otherUsersOf(const std::filesystem::path& file);

} // namespace orvan
