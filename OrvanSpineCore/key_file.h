#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>

#include "OrvanSpineCore/credential_vault.h"

namespace orvan {

/// The store key in a file of its own: the raw bytes and nothing else, mode 0600, owned by the user. The vault of
/// programs that have no desktop keyring.
class KeyFile final : public CredentialSource {
 public:
  static constexpr std::size_t keyLength = 32;

  explicit KeyFile(std::filesystem::path path);

  /// The file's bytes (at most 4096 of them), whatever their number; nothing when there is no file. A file that others
  /// can read or write, or that belongs to someone else, is refused with keyFileNotPrivate, and a folder, pipe or
  /// device with keyFileNotRegular.
  std::optional<SecretBytes> loadLocalStoreKey() const override;

  /// Makes a new random key of keyLength bytes and writes it, synced to disk; whatever interrupts it, the file is there
  /// with the whole key or not at all, and what is left of an interruption goes with the next call. Refuses with
  /// keyExists when the file is there. The caller makes sure that no store exists yet: a store's content is lost with
  /// its key.
  void create() const;

  /// Writes these bytes in the same way.
  void keep(std::span<const unsigned char> key) const;

  /// A new random key of keyLength bytes.
  static SecretBytes makeKey();

 private:
  std::filesystem::path path_;
};

} // namespace orvan
