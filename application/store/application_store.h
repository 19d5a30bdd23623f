#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/database_queue.h"
#include "application/store/application_store_error.h"

namespace orvan {

/// The store as its owner, the application, handles it: made, opened for the importers and the people list, and
/// checkpointed. Every failure to open is an Error with an ApplicationStoreError, or with a CredentialVaultError from
/// the vault.
class ApplicationStore {
 public:
  enum class Access { read, write };

  ApplicationStore() = delete;

  /// Makes a store with the canonical tables at `file`, which must not exist, readable by its owner alone. When it
  /// fails, no file is left.
  static void create(const std::filesystem::path& file, const CredentialVault& vault);

  /// Looks at the file without opening it as a store: throws when it is missing, when others than its owner can read or
  /// write it, and when it is an SQLite database without encryption.
  static void requireUsableFile(const std::filesystem::path& file);

  /// Opens the store. A read-only connection never changes the file.
  static std::shared_ptr<DatabaseQueue> open(const std::filesystem::path& file, const CredentialVault& vault,
                                             Access access);

  /// Moves what the write-ahead log holds into the store file as far as readers allow, and empties the log. The
  /// library's connections never do that by themselves. Returns the log's size in bytes afterwards.
  static std::uintmax_t checkpoint(const std::filesystem::path& file, DatabaseQueue& store);

  /// The same once the log has passed the size at which it is worth the work.
  static void checkpointIfLarge(const std::filesystem::path& file, DatabaseQueue& store);

  /// Whether the log has passed that size.
  static bool isLogLarge(const std::filesystem::path& file);

  /// How many bytes the write-ahead log of `file` has; 0 when there is none.
  static std::uintmax_t logSize(const std::filesystem::path& file);
};

} // namespace orvan
