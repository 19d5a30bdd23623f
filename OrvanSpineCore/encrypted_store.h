#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>

#include "OrvanSpineCore/credential_vault.h"
#include "OrvanSpineCore/encrypted_store_error.h"
#include "OrvanStore/database_pool.h"
#include "OrvanStore/database_queue.h"

namespace orvan {

/// Who opens a store. It decides what is asked of the file, how each connection is prepared and what is asked of the
/// content:
///
/// | role                | the file must                  | a connection | the content must                   |
/// |---------------------|--------------------------------|--------------|------------------------------------|
/// | `evidenceCompiler`  | not be plaintext               | only reads   | decrypt                            |
/// | `dispositionStore`  | not be plaintext; is created   | writes       | decrypt                            |
/// | `programReader`     | be there, regular, encrypted   | only reads   | decrypt                            |
/// | `programWriter`     | be there, regular, encrypted   | writes       | decrypt                            |
/// | `applicationReader` | as well be the user's alone    | only reads   | have this version's tables         |
/// | `applicationWriter` | as well be the user's alone    | writes       | have this version's tables         |
/// | `applicationMover`  | as well be the user's alone    | writes       | have these or an older version's   |
///
/// A program that embeds the library takes `programReader` and `programWriter`, for its own tables and for the
/// projection reader and the follow-ups that it gives a connection to.
///
/// A connection that only reads never changes the file. One that writes keeps foreign keys, is on disk with each
/// commit, keeps temporary content in memory, overwrites what is deleted, and leaves the write-ahead log to be moved
/// into the file by the program; SQLite does that by itself only when the last connection is closed, and never when
/// that is a disposition store's. Both have 4096-byte pages and wait five seconds for the locks of others.
enum class StoreRole {
  evidenceCompiler,
  dispositionStore,
  programReader,
  programWriter,
  applicationReader,
  applicationWriter,
  applicationMover,
};

/// What the file of a copy is to be.
enum class CopyForm {
  /// A store to work with, as create() makes it.
  store,
  /// One file with nothing beside it, which can be read where nothing can be written.
  singleFile,
};

/// How far the copying is, in pages. Called now and then, on the thread that copies.
using CopyProgress = std::function<void(std::int64_t copied, std::int64_t total)>;

/// The road into an encrypted store file: every connection to one is opened here, so that all of them agree on the key,
/// on what is refused, and on how the file is treated.
///
/// A value, used from any thread. It holds no connection and no key: the vault is asked anew for each connection, and
/// the key zeroed as soon as that has it. What it opens may outlive it.
///
/// A program that has a store open must not open its file in any other way, to copy or to read it: closing that would
/// take away the process's locks on the store, and another program would remove the log from under it.
///
/// Operations that fail throw Error with an EncryptedStoreError, or with a CredentialVaultError or anything else that
/// the vault throws; StoreError for what SQLite reports, a key that does not fit and a damaged file among it
/// (SQLITE_NOTADB); and Error with the system's reason when the file cannot be looked at.
class EncryptedStore {
 public:
  /// The store at `file`, which need not be there. A relative path counts from the folder that is current now, and
  /// symbolic links are followed now.
  EncryptedStore(const std::filesystem::path& file, CredentialVault vault);

  /// Makes the file with the canonical tables of this version, readable by its owner alone. It appears whole, on disk,
  /// or not at all, whatever interrupts it; what is left of an interruption goes with the next call. Of two calls at
  /// once one waits for the other and fails with storeExists, as with anything that has the name already.
  void create() const;
  /// The same with what `makeTables` makes in one transaction instead: for a file that is encrypted and kept as a store
  /// is, and is none. It opens as `programWriter`.
  void create(const std::function<void(Connection&)>& makeTables) const;

  /// Writes what the store holds at this moment into a new file, encrypted with the same key, as create() does; others
  /// may use the store meanwhile.
  void copyTo(const std::filesystem::path& destination) const;

  /// The same, encrypted with the key of `destination`. `approve` is given the copy, opened anew to be read, before it
  /// gets its name; when it throws, there is no copy.
  void copyTo(const EncryptedStore& destination, CopyForm form, const std::function<void(Connection&)>& approve,
              const CopyProgress& progress) const;

  /// Replaces all that `destination` holds with what this one holds, in one transaction, whatever key each has. Others
  /// may use `destination` meanwhile: they see what it held until that is committed. Writers wait for it.
  void copyInto(const EncryptedStore& destination, const CopyProgress& progress) const;

  /// Encrypts the store anew with the key that `successor` holds, as a whole or not at all; which of the two it came to
  /// is found by opening it, for a failure may be told that came after all was done. Fails with SQLITE_BUSY when
  /// anybody else has the store open, and keeps it from being opened until it returns.
  ///
  /// `begin` is called when nobody else can open the store any more and before anything of it has changed: here the
  /// caller keeps the new key for good.
  void changeKey(const CredentialVault& successor, const std::function<void()>& begin) const;

  bool exists() const noexcept;

  /// Asks of the file what `role` does, without asking for the key; opening does the same first. For the application's
  /// roles, a log that its owner may do less with than with the store is given the store's permissions: SQLite makes it
  /// with those that the store has at the moment, and one that was made while the store could only be read would keep
  /// it from being written.
  static void examine(const std::filesystem::path& file, StoreRole role);

  /// One connection. What `role` asks of the content is asked before this returns.
  std::unique_ptr<DatabaseQueue> openQueue(StoreRole role) const;

  /// A writer and, as reads ask for them, readers, for a role that writes. What `role` asks of the content is asked of
  /// the writer before this returns. Opening a reader later may fail as opening does, with whatever the vault throws
  /// included; DatabasePool::openReader tells such a failure from one of reading.
  std::unique_ptr<DatabasePool> openPool(StoreRole role, std::size_t mostReaders = 4) const;

  /// Where the store lies, absolute and without links.
  const std::filesystem::path& file() const noexcept { return file_; }
  static std::filesystem::path fileBehind(const std::filesystem::path& file);
  /// Where its write-ahead log lies.
  static std::filesystem::path logFileOf(const std::filesystem::path& file);

 private:
  std::filesystem::path file_;
  CredentialVault vault_;
};

} // namespace orvan
