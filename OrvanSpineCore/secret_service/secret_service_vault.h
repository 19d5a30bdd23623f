#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "OrvanSpineCore/credential_vault.h"

namespace orvan {

/// The store key in the desktop's keyring, through the Secret Service of the session bus (GNOME Keyring, KWallet,
/// KeePassXC).
///
/// Every operation blocks until the service has answered. It may be called from any thread, several at once, each
/// call on its own behalf: nothing is kept between calls. A locked keyring is reported and never unlocked from here,
/// because unlocking asks the user, and a program may have nobody to ask.
///
/// The key crosses the bus encrypted for this session, and libsecret holds it in locked memory that it clears. What
/// lies beyond the bus, in the keyring's own process and file, is the keyring's to protect.
class SecretServiceVault final : public CredentialSource {
 public:
  static constexpr std::size_t keyLength = 32;

  /// The vault of the store that `storeIdentifier` names. The keyring shows the identifier and keeps it unencrypted:
  /// it must not tell anything about the user.
  explicit SecretServiceVault(std::string storeIdentifier);

  /// The key's bytes, or nothing when the unlocked keyring holds none. Throws Error:
  /// CredentialVaultError::vaultLocked while the keyring, or the item in it, is locked (a locked keyring would answer
  /// that there is no key), vaultUnavailable when nothing on the session bus keeps secrets or there is no session bus,
  /// accessFailed when the service fails.
  std::optional<SecretBytes> loadLocalStoreKey() const override;

  /// Keeps `key` in the user's default keyring and makes sure that it can be read back. The service may ask the user
  /// to make a keyring when there is none.
  ///
  /// Throws as loadLocalStoreKey() does, and keyExists when there is a key already: a key is never replaced, since the
  /// store would be lost with it. For the same reason the caller makes a new key only while no store file exists.
  void storeLocalStoreKey(std::span<const unsigned char, keyLength> key) const;

  /// Takes the key out of the keyring, if it is there. Throws as loadLocalStoreKey() does. A store that has no other
  /// key kept for it is lost with it.
  void removeLocalStoreKey() const;

 private:
  std::string storeIdentifier_;
};

} // namespace orvan
