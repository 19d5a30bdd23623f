#include "OrvanSpineCore/key_file.h"

#include <fcntl.h>
#include <openssl/rand.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/internal/new_file.h"

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

void requireRegularAndPrivate(int descriptor) {
  struct stat status{};
  if (fstat(descriptor, &status) != 0) {
    fail(CredentialVaultError::accessFailed, "looking at the key file");
  }
  if (!S_ISREG(status.st_mode)) {
    fail(CredentialVaultError::keyFileNotRegular, "looking at the key file");
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

void writeInto(const std::filesystem::path& path, std::span<const unsigned char> bytes) {
  const Descriptor file{open(path.c_str(), O_WRONLY | O_CLOEXEC)};
  if (!file.isOpen()) {
    fail(CredentialVaultError::accessFailed, "opening the new key file");
  }
  writeAll(file.number(), bytes);
}

} // namespace

KeyFile::KeyFile(std::filesystem::path path) : path_(std::move(path)) {}

std::optional<SecretBytes> KeyFile::loadLocalStoreKey() const {
  // A pipe would keep the opening waiting for a writer.
  const Descriptor file{open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)};
  if (!file.isOpen()) {
    if (errno == ENOENT) {
      return std::nullopt;
    }
    fail(CredentialVaultError::accessFailed, "opening the key file");
  }
  requireRegularAndPrivate(file.number());
  SecretBytes buffer(mostBytesRead);
  const auto length = readInto(file.number(), buffer.bytes());
  return SecretBytes{buffer.bytes().first(length)};
}

void KeyFile::create() const {
  keep(makeKey().bytes());
}

void KeyFile::keep(std::span<const unsigned char> key) const {
  try {
    internal::NewFile file(path_);
    writeInto(file.path(), key);
    file.appear();
  } catch (const Error& error) {
    if (error.code() == std::errc::file_exists) {
      fail(CredentialVaultError::keyExists, "naming the key file");
    }
    fail(CredentialVaultError::accessFailed, "making the key file");
  }
}

SecretBytes KeyFile::makeKey() {
  SecretBytes key(keyLength);
  if (RAND_priv_bytes(key.bytes().data(), static_cast<int>(key.size())) != 1) {
    fail(CredentialVaultError::accessFailed, "making a random key");
  }
  return key;
}

} // namespace orvan
