#include "OrvanSpineCore/internal/store_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <optional>
#include <string_view>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/encrypted_store_error.h"

namespace orvan::internal {
namespace {

constexpr std::string_view plaintextHeader = "SQLite format 3";

/// Nothing but the header is read: a store may be a gigabyte.
using Header = std::array<char, plaintextHeader.size()>;

[[noreturn]] void failWithSystemsReason(const char* attempt) {
  throw Error({errno, std::generic_category()}, attempt);
}

std::string_view readHeader(int descriptor, Header& header) {
  std::size_t length = 0;
  while (length < header.size()) {
    const auto count = pread(descriptor, header.data() + length, header.size() - length, static_cast<off_t>(length));
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      failWithSystemsReason("reading the start of the store file");
    }
    if (count == 0) {
      break;
    }
    length += static_cast<std::size_t>(count);
  }
  return {header.data(), length};
}

class OpenFile {
 public:
  /// A pipe would keep the opening waiting for a writer.
  explicit OpenFile(const std::filesystem::path& path)
      : descriptor_(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
    if (descriptor_ < 0) {
      failWithSystemsReason("reading the start of the store file");
    }
  }
  ~OpenFile() { close(descriptor_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  int descriptor() const noexcept { return descriptor_; }

 private:
  int descriptor_;
};

/// Nothing when there is no file.
std::optional<struct stat> statusOf(const std::filesystem::path& file) {
  struct stat status{};
  if (stat(file.c_str(), &status) == 0) {
    return status;
  }
  if (errno != ENOENT && errno != ENOTDIR) {
    failWithSystemsReason("looking at the store's files");
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
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) {
    return;
  }
  const OpenFile opened(file);
  Header header{};
  if (readHeader(opened.descriptor(), header) == plaintextHeader) {
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
