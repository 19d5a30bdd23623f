#include "OrvanSpineCore/internal/store_file.h"

#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/encrypted_store_error.h"

namespace orvan::internal {
namespace {

/// Nothing but this is read: a store may be a gigabyte.
constexpr std::string_view plaintextHeader = "SQLite format 3";

/// A second descriptor for a store that is open in this process would, when it is closed, take away the locks that the
/// process has on the file, and another program would then remove the log from under it. SQLite's own file layer knows
/// which files are open and keeps such a descriptor until they are not.
class FileThroughEngine {
 public:
  explicit FileThroughEngine(const std::filesystem::path& path)
      : name_(path.native() + '\0'),
        layer_(sqlite3_vfs_find(nullptr)),
        memory_(static_cast<std::size_t>(layer_->szOsFile) / sizeof(void*) + 1) {
    check(layer_->xOpen(layer_, name_.c_str(), file(), SQLITE_OPEN_READONLY | SQLITE_OPEN_MAIN_DB, nullptr));
  }
  ~FileThroughEngine() { file()->pMethods->xClose(file()); }
  FileThroughEngine(const FileThroughEngine&) = delete;
  FileThroughEngine& operator=(const FileThroughEngine&) = delete;

  /// What lies beyond the end reads as zeros.
  template <std::size_t length>
  std::array<char, length> start() {
    std::array<char, length> bytes{};
    const int code = file()->pMethods->xRead(file(), bytes.data(), static_cast<int>(length), 0);
    check(code == SQLITE_IOERR_SHORT_READ ? SQLITE_OK : code);
    return bytes;
  }

 private:
  sqlite3_file* file() noexcept { return reinterpret_cast<sqlite3_file*>(memory_.data()); }

  void check(int code) const {
    if (code != SQLITE_OK) {
      const int reason = layer_->xGetLastError(layer_, 0, nullptr);
      throw Error({reason == 0 ? EIO : reason, std::generic_category()}, "reading the start of the store file");
    }
  }

  /// The layer takes a second zero for the end of a name's parameters.
  std::string name_;
  sqlite3_vfs* layer_;
  /// The layer says how large its files are; they start with a pointer.
  std::vector<void*> memory_;
};

/// Nothing when there is no file.
std::optional<struct stat> statusOf(const std::filesystem::path& file) {
  struct stat status{};
  if (stat(file.c_str(), &status) == 0) {
    return status;
  }
  if (errno != ENOENT && errno != ENOTDIR) {
    throw Error({errno, std::generic_category()}, "looking at the store's files");
  }
  return std::nullopt;
}

void requireRegular(const struct stat& status) {
  if (!S_ISREG(status.st_mode)) {
    throw Error(EncryptedStoreError::notRegularFile, "looking at the store's files");
  }
}

void requirePrivate(const struct stat& status) {
  constexpr mode_t everyoneElse = 077;
  if ((status.st_mode & everyoneElse) != 0 || status.st_uid != geteuid()) {
    throw Error(EncryptedStoreError::notPrivate, "looking at the store's files");
  }
}

} // namespace

void rejectPlaintext(const std::filesystem::path& file) {
  std::error_code unreachable;
  const auto type = std::filesystem::status(file, unreachable).type();
  if (type == std::filesystem::file_type::not_found || type == std::filesystem::file_type::none) {
    return;
  }
  if (type == std::filesystem::file_type::directory) {
    throw Error(std::make_error_code(std::errc::is_a_directory), "reading the start of the store file");
  }
  // Opening a pipe would wait for a writer.
  if (type != std::filesystem::file_type::regular) {
    throw Error(std::make_error_code(std::errc::invalid_seek), "reading the start of the store file");
  }
  if (std::ranges::equal(FileThroughEngine(file).start<plaintextHeader.size()>(), plaintextHeader)) {
    throw Error(EncryptedStoreError::plaintext, "opening the store");
  }
}

void requireRegular(const std::filesystem::path& file) {
  const auto status = statusOf(file);
  if (!status) {
    throw Error(EncryptedStoreError::storeMissing, "looking at the store's files");
  }
  requireRegular(*status);
}

void requirePrivate(const std::filesystem::path& file) {
  const auto store = statusOf(file);
  if (!store) {
    throw Error(EncryptedStoreError::storeMissing, "looking at the store's files");
  }
  requirePrivate(*store);
  for (const char* suffix : {"-wal", "-shm"}) {
    const auto path = file.native() + suffix;
    const auto beside = statusOf(path);
    if (!beside) {
      continue;
    }
    requireRegular(*beside);
    requirePrivate(*beside);
    // SQLite makes them with the store's permissions of the moment; made while it could only be read, they would keep
    // it from being written for good. Should this fail, opening tells.
    if ((store->st_mode & ~beside->st_mode & S_IRWXU) != 0) {
      static_cast<void>(chmod(path.c_str(), (store->st_mode | beside->st_mode) & S_IRWXU));
    }
  }
}

} // namespace orvan::internal
