#include "application/session/session_settings.h"

#include <cstdlib>
#include <system_error>

#include "OrvanPlatform/error.h"
#include "application/store/application_store_error.h"

namespace orvan {
namespace {

std::filesystem::path userDataFolder() {
  // NOLINTBEGIN(concurrency-mt-unsafe): nothing changes the environment of our programs.
  if (const char* data = std::getenv("XDG_DATA_HOME"); data != nullptr && *data == '/') {
    return std::filesystem::path{data} / "orvan";
  }
  const char* home = std::getenv("HOME");
  // NOLINTEND(concurrency-mt-unsafe)
  return std::filesystem::path{home == nullptr ? "." : home} / ".local" / "share" / "orvan";
}

} // namespace

SessionSettings SessionSettings::defaults() {
  const auto folder = userDataFolder();
  return {.store = folder / "store.db", .keyFile = folder / "key"};
}

void SessionSettings::requirePrivateFolder() const {
  constexpr auto everyoneElse = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
  const auto folder = store.parent_path();
  std::error_code missing;
  const auto status = std::filesystem::status(folder, missing);
  if (folder == userDataFolder() && std::filesystem::is_directory(status) &&
      (status.permissions() & everyoneElse) != std::filesystem::perms::none) {
    throw Error(ApplicationStoreError::folderNotPrivate, "looking at the store's folder");
  }
}

} // namespace orvan
