#include "application/store/store_users.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <set>

namespace orvan {
namespace {

/// As the list of locks names a file: "fd:01:131234", device in hexadecimal digits.
std::string nameAmongLocks(const std::filesystem::path& file) {
  struct stat found{};
  if (stat(file.c_str(), &found) != 0) {
    return "";
  }
  char name[64]; // NOLINT(modernize-avoid-c-arrays)
  const int length = std::snprintf(name, sizeof name, "%02x:%02x:%llu", major(found.st_dev), minor(found.st_dev),
                                   static_cast<unsigned long long>(found.st_ino));
  return {name, static_cast<std::size_t>(length)};
}

std::string programOf(pid_t process) {
  std::ifstream name("/proc/" + std::to_string(process) + "/comm");
  std::string program;
  std::getline(name, program);
  return program;
}

} // namespace

std::vector<StoreUser> otherUsersOf(const std::filesystem::path& file) {
  const std::set<std::string> names{nameAmongLocks(file), nameAmongLocks(file.native() + "-shm")};
  std::vector<StoreUser> users;
  std::ifstream locks("/proc/locks");
  // "1: POSIX  ADVISORY  READ 4711 fd:01:131234 1073741826 1073742335"; one that waits has "->" after the number.
  std::string number;
  std::string kind;
  std::string strictness;
  std::string access;
  std::string name;
  pid_t process = 0;
  std::string rest;
  while (locks >> number >> kind && (kind != "->" || locks >> kind) &&
         locks >> strictness >> access >> process >> name && std::getline(locks, rest)) {
    const bool isKnown = std::ranges::find(users, process, &StoreUser::process) != users.end();
    if (names.contains(name) && !name.empty() && process > 0 && process != getpid() && !isKnown) {
      users.push_back({process, programOf(process)});
    }
  }
  return users;
}

} // namespace orvan
