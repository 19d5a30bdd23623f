#pragma once

#include <memory>
#include <optional>
#include <system_error>

#include "OrvanPlatform/secret_bytes.h"

namespace orvan {

enum class CredentialVaultError {
  /// The vault can be read and holds no store key.
  keyMissing = 1,
  /// The vault is locked; the user has to unlock it.
  vaultLocked,
  /// There is no vault to talk to.
  vaultUnavailable,
  /// The vault is there and reading or writing it failed.
  accessFailed,
  /// The key file can be read by others than its owner.
  keyFileNotPrivate,
  /// A key is there already and would have been overwritten.
  keyExists,
  /// What should be the key file is a folder, a pipe or a device.
  keyFileNotRegular,
};

std::error_code make_error_code(CredentialVaultError error) noexcept;

/// Where a store key is kept: a key file, the desktop's Secret Service, or memory in tests.
class CredentialSource {
 public:
  virtual ~CredentialSource() = default;

  /// The key's bytes, whatever their number, or nothing when none is kept. Throws Error with a CredentialVaultError.
  /// May be called from several threads at once.
  virtual std::optional<SecretBytes> loadLocalStoreKey() const = 0;
};

/// The vault that holds the key of the local store. A value: copies share their source.
class CredentialVault {
 public:
  explicit CredentialVault(std::shared_ptr<const CredentialSource> source);

  /// The local store's key, or nothing when the vault holds none. Asks the source each time and keeps nothing. Throws
  /// Error with a CredentialVaultError. May be called from any thread.
  std::optional<SecretBytes> loadLocalStoreKey() const;

 private:
  std::shared_ptr<const CredentialSource> source_;
};

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::CredentialVaultError> : std::true_type {};
