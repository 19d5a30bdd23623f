#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/database_pool.h"
#include "OrvanStore/database_queue.h"
#include "application/store/application_store_error.h"

namespace orvan {

enum class StoreDamage { none, pages, tables };

/// The store as its owner, the application, handles it: made, opened for the importers and the people list, and
/// checkpointed. Every failure to make or open it is an Error with an ApplicationStoreError, or with a
/// CredentialVaultError from the vault.
class ApplicationStore {
 public:
  enum class Access { read, write };

  ApplicationStore() = delete;

  /// Makes a store with the canonical tables at `file`, which must not exist, readable by its owner alone: whole or not
  /// at all, whatever interrupts it. Of two calls at once one fails with storeExists.
  static void create(const std::filesystem::path& file, const CredentialVault& vault);

  /// Looks at the file without opening it as a store: throws when it is missing or no regular file, when it or one of
  /// the files beside it (the write-ahead log and its index) belongs to somebody else or can be read or written by
  /// others, and when it is an SQLite database without encryption.
  static void requireUsableFile(const std::filesystem::path& file);

  /// Opens the store. A store with the tables of an older version is first brought to this one's, for reading too: all
  /// in one transaction, and with a copy of the store beside it until that has ended. One of a newer version is
  /// refused. Apart from that, a read-only connection never changes the file.
  static std::shared_ptr<DatabaseQueue> open(const std::filesystem::path& file, const CredentialVault& vault,
                                             Access access);

  /// The same with a writer and readers, for what reads while another thread writes: reminders.
  static std::shared_ptr<DatabasePool> openPool(const std::filesystem::path& file, const CredentialVault& vault);

  /// Moves what the write-ahead log holds into the store file and empties the log; the library's connections never do
  /// that by themselves. Waits for readers and writers for as long as the connection's busy timeout says. Whether the
  /// log was emptied: when others kept the store busy, what they still need stays in it.
  static bool checkpoint(DatabaseQueue& store);

  /// The same as far as it goes without waiting, for the end of a program: a log that could not be emptied is emptied
  /// another time.
  static void checkpointWithoutWaiting(DatabaseQueue& store) noexcept;
  static void checkpointWithoutWaiting(DatabasePool& store) noexcept;

  /// The canonical tables, columns and indices that the store lacks, in their creation's words.
  static std::vector<std::string> missingSchemaParts(Connection& connection);

  /// What is wrong with a store that opens. Every page is read: each carries a code that tells whether it is as it was
  /// written. Outside a transaction.
  static StoreDamage damage(Connection& connection);

  /// How many bytes the write-ahead log of `file` has; 0 when there is none.
  static std::uintmax_t logSize(const std::filesystem::path& file);

  /// The copies beside `file` that a killed program left when it brought the store to a newer version. While one does
  /// so, its copy is among them.
  static std::vector<std::filesystem::path> copiesLeft(const std::filesystem::path& file);

  /// The files beside `file` whose names begin with its own and `ending`, in the order of their names.
  static std::vector<std::filesystem::path> filesBeside(const std::filesystem::path& file, std::string_view ending);
};

} // namespace orvan
