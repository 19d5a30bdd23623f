#pragma once

#include <filesystem>

namespace orvan::internal {

/// Throws EncryptedStoreError::plaintext when the file is an SQLite database without encryption, which must never be
/// taken for the store. A missing file passes, and so does one too short to tell. A file that is there and cannot be
/// read throws Error with the system's reason.
void rejectPlaintext(const std::filesystem::path& file);

/// Throws storeMissing or notRegularFile.
void requireRegular(const std::filesystem::path& file);

/// Throws notPrivate when the store, its log or the log's index is open to others or somebody else's, and
/// notRegularFile when one of the two is not what it should be. Either of these may be missing, and is given what the
/// owner may do with the store.
void requirePrivate(const std::filesystem::path& file);

} // namespace orvan::internal
