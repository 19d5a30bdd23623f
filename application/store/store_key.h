#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string>

#include "OrvanSpineCore/credential_vault.h"

namespace orvan {

/// Where the bytes of a store's key are.
enum class KeyPlace { file, keyring };

/// The key of the application's store. The key file says where it is: it holds the 32 bytes themselves, or the name
/// under which the desktop's keyring holds them. So every command finds the key by the same path, and one renaming
/// changes the key, its place, or both.
///
/// A key is never overwritten and never made up: what makes one fails with CredentialVaultError::keyExists where there
/// is a key file. Failures are Errors with a CredentialVaultError, or ApplicationStoreError::keyNotInKeyring when the
/// keyring is open and does not have what the file names. A value, used from any thread.
class StoreKey final : public CredentialSource {
 public:
  explicit StoreKey(std::filesystem::path file) : file_(std::move(file)) {}

  std::optional<SecretBytes> loadLocalStoreKey() const override;

  /// Nothing when there is no key file. The keyring is not asked.
  std::optional<KeyPlace> place() const;
  /// Whether something has the key file's name.
  bool exists() const noexcept;
  const std::filesystem::path& file() const noexcept { return file_; }

  /// Makes a new random key and keeps it.
  void create(KeyPlace place) const;
  /// Keeps these bytes.
  void keep(std::span<const unsigned char> key, KeyPlace place) const;

  /// A key that is to become this one, beside it.
  StoreKey pending() const { return StoreKey(file_.native() + ".pending"); }
  /// Makes the pending key this one, on disk. What the keyring held for the former is removed, as far as that goes.
  void replaceWithPending() const;
  /// Removes the file, and what the keyring holds for it, as far as that goes.
  void discard() const;

 private:
  /// The name in the keyring; nothing when the file holds the key itself, or is not there.
  std::optional<std::string> nameInKeyring() const;

  std::filesystem::path file_;
};

} // namespace orvan
