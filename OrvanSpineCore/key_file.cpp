#include "OrvanSpineCore/key_file.h"

#include <fcntl.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <span>
#include <string>
#include <utility>

#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

constexpr std::size_t mostBytesRead = 4096;

class Descriptor {
 public:
  explicit Descriptor(int number) noexcept : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) {
      close(number_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const noexcept { return number_; }
  bool isOpen() const noexcept { return number_ >= 0; }

 private:
  int number_;
};

[[noreturn]] void fail(CredentialVaultError error, const char* attempt) {
  throw Error(error, attempt);
}

void requirePrivate(int descriptor) {
  struct stat status{};
  if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
    fail(CredentialVaultError::accessFailed, "looking at the key file");
  }
  constexpr mode_t everyoneElse = 077;
  if ((status.st_mode & everyoneElse) != 0 || status.st_uid != geteuid()) {
    fail(CredentialVaultError::keyFileNotPrivate, "looking at the key file");
  }
}

/// Reads until the buffer is full or the file ends; the number of bytes read.
std::size_t readInto(int descriptor, std::span<unsigned char> buffer) {
  std::size_t filled = 0;
  while (filled < buffer.size()) {
    const auto count = read(descriptor, buffer.data() + filled, buffer.size() - filled);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      fail(CredentialVaultError::accessFailed, "reading the key file");
    }
    if (count == 0) {
      break;
    }
    filled += static_cast<std::size_t>(count);
  }
  return filled;
}

void writeAll(int descriptor, std::span<const unsigned char> bytes) {
  while (!bytes.empty()) {
    const auto count = write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      fail(CredentialVaultError::accessFailed, "writing the key file");
    }
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

/// A file beside the key's, readable by its owner alone, and gone at the end. Half a key under the key's own name would
/// pass for one, so the name is given to a file that is whole.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::filesystem::path& beside)
      : path_(beside.native() + ".XXXXXX"), file_(mkostemp(path_.data(), O_CLOEXEC)) {
    if (!file_.isOpen()) {
      fail(CredentialVaultError::accessFailed, "creating the key file");
    }
  }
  ~TemporaryFile() { unlink(path_.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int descriptor() const noexcept { return file_.number(); }

  /// Gives the file the name `path`, unless that is taken.
  void appearAs(const std::filesystem::path& path) const {
    if (link(path_.c_str(), path.c_str()) != 0) {
      fail(errno == EEXIST ? CredentialVaultError::keyExists : CredentialVaultError::accessFailed,
           "naming the key file");
    }
  }

 private:
  std::string path_;
  Descriptor file_;
};

/// A new file's name survives a crash only once its directory is synced.
void syncDirectory(const std::filesystem::path& directory) {
  const Descriptor opened{open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)};
  if (!opened.isOpen() || fsync(opened.number()) != 0) {
    fail(CredentialVaultError::accessFailed, "syncing the key file's directory");
  }
}

} // namespace

KeyFile::KeyFile(std::filesystem::path path) : path_(std::move(path)) {}

std::optional<SecretBytes> KeyFile::loadLocalStoreKey() const {
  const Descriptor file{open(path_.c_str(), O_RDONLY | O_CLOEXEC)};
  if (!file.isOpen()) {
    if (errno == ENOENT) {
      return std::nullopt;
    }
    fail(CredentialVaultError::accessFailed, "opening the key file");
  }
  requirePrivate(file.number());
  SecretBytes buffer(mostBytesRead);
  const auto length = readInto(file.number(), buffer.bytes());
  return SecretBytes{buffer.bytes().first(length)};
}

void KeyFile::create() const {
  SecretBytes key(keyLength);
  if (RAND_priv_bytes(key.bytes().data(), static_cast<int>(key.size())) != 1) {
    fail(CredentialVaultError::accessFailed, "making a random key");
  }
  const TemporaryFile file(path_);
  writeAll(file.descriptor(), key.bytes());
  if (fsync(file.descriptor()) != 0) {
    fail(CredentialVaultError::accessFailed, "syncing the key file");
  }
  file.appearAs(path_);
  syncDirectory(path_.has_parent_path() ? path_.parent_path() : ".");
}

} // namespace orvan
