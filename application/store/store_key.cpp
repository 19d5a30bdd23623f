#include "application/store/store_key.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string_view>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/key_file.h"
#include "OrvanSpineCore/secret_service/secret_service_vault.h"
#include "application/store/application_store_error.h"

namespace orvan {
namespace {

/// A key file with this has more than the 32 bytes of a key, so neither is taken for the other.
constexpr std::string_view referenceBeginning = "orvan key in the keyring: ";

std::string newName() {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto random = KeyFile::makeKey();
  std::string name;
  for (const unsigned char byte : random.bytes().first(random.size() / 2)) {
    name += digits[byte >> 4U];
    name += digits[byte & 0xfU];
  }
  return name;
}

std::span<const unsigned char> bytesOf(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

std::optional<std::string> nameIn(const SecretBytes& content) {
  const auto bytes = content.bytes();
  if (bytes.size() < referenceBeginning.size() ||
      !std::ranges::equal(bytes.first(referenceBeginning.size()), bytesOf(referenceBeginning))) {
    return std::nullopt;
  }
  std::string name;
  for (const unsigned char byte : bytes.subspan(referenceBeginning.size())) {
    if (byte == '\n') {
      break;
    }
    name += static_cast<char>(byte);
  }
  return name;
}

/// What is left behind in the keyring harms nobody, and the keyring may have been locked meanwhile.
void removeFromKeyring(const std::optional<std::string>& name) noexcept {
  try {
    if (name) {
      SecretServiceVault(*name).removeLocalStoreKey();
    }
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch)
  }
}

void syncFolderOf(const std::filesystem::path& file) {
  const auto folder = file.has_parent_path() ? file.parent_path() : std::filesystem::path{"."};
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  const bool isSynced = descriptor >= 0 && fsync(descriptor) == 0;
  if (descriptor >= 0) {
    close(descriptor);
  }
  if (!isSynced) {
    throw Error(CredentialVaultError::accessFailed, "syncing the folder of the key");
  }
}

} // namespace

std::optional<SecretBytes> StoreKey::loadLocalStoreKey() const {
  auto content = KeyFile(file_).loadLocalStoreKey();
  const auto name = content ? nameIn(*content) : std::nullopt;
  if (!name) {
    return content;
  }
  auto key = SecretServiceVault(*name).loadLocalStoreKey();
  if (!key) {
    throw Error(ApplicationStoreError::keyNotInKeyring, "reading the store key from the keyring");
  }
  return key;
}

std::optional<KeyPlace> StoreKey::place() const {
  const auto content = KeyFile(file_).loadLocalStoreKey();
  if (!content) {
    return std::nullopt;
  }
  return nameIn(*content) ? KeyPlace::keyring : KeyPlace::file;
}

bool StoreKey::exists() const noexcept {
  std::error_code ignored;
  return std::filesystem::exists(std::filesystem::symlink_status(file_, ignored));
}

void StoreKey::create(KeyPlace place) const {
  keep(KeyFile::makeKey().bytes(), place);
}

void StoreKey::keep(std::span<const unsigned char> key, KeyPlace place) const {
  if (place == KeyPlace::file) {
    KeyFile(file_).keep(key);
    return;
  }
  if (key.size() != SecretServiceVault::keyLength) {
    throw Error(ApplicationStoreError::keyMalformed, "keeping the store key in the keyring");
  }
  if (exists()) {
    throw Error(CredentialVaultError::keyExists, "keeping the store key in the keyring");
  }
  const auto name = newName();
  SecretServiceVault(name).storeLocalStoreKey(key.first<SecretServiceVault::keyLength>());
  try {
    KeyFile(file_).keep(bytesOf(std::string{referenceBeginning} + name + "\n"));
  } catch (...) {
    removeFromKeyring(name);
    throw;
  }
}

void StoreKey::replaceWithPending() const {
  const auto formerName = nameInKeyring();
  if (std::rename(pending().file_.c_str(), file_.c_str()) != 0) {
    if (errno == ENOENT) {
      return; // Another program did it at this moment.
    }
    throw Error(CredentialVaultError::accessFailed, "putting the new key in the place of the former");
  }
  syncFolderOf(file_);
  removeFromKeyring(formerName);
}

void StoreKey::discard() const {
  const auto name = nameInKeyring();
  if (unlink(file_.c_str()) != 0) {
    if (errno == ENOENT) {
      return; // Another program discarded it, or made it the key: what the keyring holds may be in use.
    }
    throw Error(CredentialVaultError::accessFailed, "removing a key that was not used");
  }
  syncFolderOf(file_);
  removeFromKeyring(name);
}

std::optional<std::string> StoreKey::nameInKeyring() const {
  const auto content = KeyFile(file_).loadLocalStoreKey();
  return content ? nameIn(*content) : std::nullopt;
}

} // namespace orvan
