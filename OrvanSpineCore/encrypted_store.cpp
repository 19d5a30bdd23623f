#include "OrvanSpineCore/encrypted_store.h"

#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanSpineCore/internal/new_file.h"
#include "OrvanSpineCore/internal/store_file.h"
#include "OrvanSpineCore/internal/store_terms.h"
#include "OrvanSpineCore/store_write_diagnostics.h"
#include "OrvanStore/store_error.h"

namespace orvan {
namespace {

using internal::FileDemand;
using internal::NewFile;
using internal::SchemaDemand;
using internal::StoreTerms;
using internal::termsOf;

constexpr std::size_t keyLength = 32;

SecretBytes keyOf(const CredentialVault& vault) {
  auto key = vault.loadLocalStoreKey();
  if (!key) {
    throw Error(CredentialVaultError::keyMissing, "loading the store key");
  }
  return std::move(*key);
}

/// The first act on a new connection. The key's bytes are zeroed on every way out.
void keyConnection(Connection& connection, const CredentialVault& vault) {
  const SecretBytes key = keyOf(vault);
  if (key.size() != keyLength) {
    throw Error(EncryptedStoreError::invalidKeyLength, "keying the connection");
  }
  connection.key(key.bytes());
}

ConnectionConfiguration configurationFor(const StoreTerms& terms, const CredentialVault& vault) {
  ConnectionConfiguration configuration;
  configuration.mode = terms.mode;
  configuration.checkpointsOnClose = terms.checkpointsOnClose;
  configuration.prepare = [&terms, vault](Connection& connection) {
    keyConnection(connection, vault);
    for (const char* statement : terms.preparation) {
      connection.executeScript(statement);
    }
    StoreWriteDiagnostics::attach(connection, terms.pool, nullptr);
  };
  return configuration;
}

void verifyEncryption(Connection& connection) {
  const auto version = connection.fetchOptionalText("PRAGMA cipher_version");
  if (!version || version->empty()) {
    throw Error(EncryptedStoreError::engineCannotEncrypt, "asking for SQLCipher's version");
  }
}

void verifyOverwriting(Connection& connection) {
  if (connection.fetchOptionalInteger("PRAGMA secure_delete").value_or(0) == 0) {
    throw Error(EncryptedStoreError::deletedStaysReadable, "asking whether deleted rows are overwritten");
  }
}

/// The first statement of a reading connection to touch the file's pages: it fails under a wrong key.
std::int64_t countSchemaRows(Connection& connection) {
  return connection.fetchOptionalInteger("SELECT count(*) FROM sqlite_master").value_or(0);
}

void verifySchema(Connection& connection, SchemaDemand demand) {
  const auto found = SchemaIdentity::of(connection);
  const auto newest = SchemaIdentity::newest();
  if (found.application != newest.application) {
    throw Error(countSchemaRows(connection) == 0 ? EncryptedStoreError::empty : EncryptedStoreError::notCanonical,
                "asking whose store it is");
  }
  if (found.version > newest.version) {
    throw Error(EncryptedStoreError::schemaNewer, "asking for the version of the store's tables");
  }
  if (found.version < newest.version && demand == SchemaDemand::newest) {
    throw Error(EncryptedStoreError::schemaOlder, "asking for the version of the store's tables");
  }
}

void verify(Connection& connection, const StoreTerms& terms) {
  verifyEncryption(connection);
  if (terms.isWriting()) {
    verifyOverwriting(connection);
  } else {
    countSchemaRows(connection);
  }
  if (terms.schema != SchemaDemand::none) {
    verifySchema(connection, terms.schema);
  }
}

/// Moves the log into the file, so that the file alone is the store.
void emptyLog(Connection& connection) {
  if (connection.fetchOptionalInteger("PRAGMA wal_checkpoint(TRUNCATE)") != 0) {
    throw StoreError({SQLITE_BUSY, sqliteCategory()}, "moving a new store's log into its file");
  }
}

/// Ends with the copying, whatever happens to it.
class Copying {
 public:
  Copying(Connection& source, Connection& destination)
      : destination_(destination), backup_(sqlite3_backup_init(destination.handle(), "main", source.handle(), "main")) {
    if (backup_ == nullptr) {
      throw StoreError::latestOf(destination.handle(), attempt);
    }
  }
  ~Copying() { sqlite3_backup_finish(backup_); }
  Copying(const Copying&) = delete;
  Copying& operator=(const Copying&) = delete;

  void run(const CopyProgress& progress) {
    constexpr int pagesAtOnce = 4096;
    int code = SQLITE_OK;
    while (code == SQLITE_OK) {
      code = sqlite3_backup_step(backup_, pagesAtOnce);
      if (progress) {
        const std::int64_t total = sqlite3_backup_pagecount(backup_);
        progress(total - sqlite3_backup_remaining(backup_), total);
      }
    }
    const int end = sqlite3_backup_finish(std::exchange(backup_, nullptr));
    if (code != SQLITE_DONE || end != SQLITE_OK) {
      throw StoreError::latestOf(destination_.handle(), attempt);
    }
  }

 private:
  static constexpr const char* attempt = "copying the store";
  Connection& destination_;
  sqlite3_backup* backup_;
};

/// In one read transaction of the source's, because the copying begins again whenever that changes.
void copyContent(DatabaseQueue& source, DatabaseQueue& destination, const CopyProgress& progress) {
  source.read([&](Connection& from) {
    countSchemaRows(from);
    destination.withoutTransaction([&](Connection& to) { Copying(from, to).run(progress); });
  });
}

/// Nothing has to be beside the file of a store without a log for it to be read.
void giveUpLog(Connection& connection) {
  connection.executeScript("PRAGMA journal_mode = DELETE");
}

/// With a log, the connections of others would keep their locks while they do nothing; without one, nobody reads a
/// single page while the pages change. EXTRA: a journal whose removal is not on disk would bring back the former pages
/// after a power cut, with their key.
void becomeOnlyUser(Connection& connection) {
  connection.executeScript("PRAGMA locking_mode = EXCLUSIVE");
  giveUpLog(connection);
  connection.executeScript("PRAGMA synchronous = EXTRA");
}

void encryptAnew(Connection& connection, const CredentialVault& successor) {
  const SecretBytes key = keyOf(successor);
  if (key.size() != keyLength) {
    throw Error(EncryptedStoreError::invalidKeyLength, "changing the store's key");
  }
  const int code = sqlite3_rekey(connection.handle(), key.bytes().data(), static_cast<int>(key.size()));
  if (code != SQLITE_OK) {
    throw StoreError({code, sqliteCategory()}, "changing the store's key");
  }
}

/// Makes a store that appears at `file` once `fill` has filled it and `approve` has nothing against it.
template <typename Fill, typename Approve>
void makeStore(const std::filesystem::path& file, const CredentialVault& vault, Fill fill, Approve approve) {
  NewFile made(file);
  {
    DatabaseQueue store(made.path(), configurationFor(termsOf(StoreRole::programWriter), vault));
    fill(store);
    store.withoutTransaction(emptyLog);
  }
  approve(made.path());
  made.appear();
}

void approveUnseen(const std::filesystem::path& /*made*/) {}

} // namespace

EncryptedStore::EncryptedStore(const std::filesystem::path& file, CredentialVault vault)
    : file_(fileBehind(file)), vault_(std::move(vault)) {}

void EncryptedStore::create() const {
  create(createCanonicalSchema);
}

void EncryptedStore::create(const std::function<void(Connection&)>& makeTables) const {
  try {
    makeStore(file_, vault_, [&makeTables](DatabaseQueue& store) { store.write(makeTables); }, approveUnseen);
  } catch (const Error& error) {
    if (error.code() == std::errc::file_exists) {
      throw Error(EncryptedStoreError::storeExists, "creating the store");
    }
    throw;
  }
}

void EncryptedStore::copyTo(const std::filesystem::path& destination) const {
  const auto source = openQueue(StoreRole::programReader);
  makeStore(
      destination, vault_, [&source](DatabaseQueue& copy) { copyContent(*source, copy, nullptr); }, approveUnseen);
}

void EncryptedStore::copyTo(const EncryptedStore& destination, CopyForm form,
                            const std::function<void(Connection&)>& approve, const CopyProgress& progress) const {
  const auto source = openQueue(StoreRole::programReader);
  makeStore(
      destination.file_, destination.vault_,
      [&](DatabaseQueue& copy) {
        copyContent(*source, copy, progress);
        if (form == CopyForm::singleFile) {
          copy.withoutTransaction(giveUpLog);
        }
      },
      [&](const std::filesystem::path& made) {
        DatabaseQueue copy(made, configurationFor(termsOf(StoreRole::programReader), destination.vault_));
        copy.withoutTransaction(approve);
      });
}

void EncryptedStore::copyInto(const EncryptedStore& destination, const CopyProgress& progress) const {
  const auto source = openQueue(StoreRole::programReader);
  const auto target = destination.openQueue(StoreRole::programWriter);
  copyContent(*source, *target, progress);
}

void EncryptedStore::changeKey(const CredentialVault& successor, const std::function<void()>& begin) const {
  openQueue(StoreRole::applicationWriter)->withoutTransaction([&](Connection& connection) {
    becomeOnlyUser(connection);
    begin();
    encryptAnew(connection, successor);
  });
}

bool EncryptedStore::exists() const noexcept {
  std::error_code ignored;
  return std::filesystem::exists(file_, ignored);
}

void EncryptedStore::examine(const std::filesystem::path& file, StoreRole role) {
  const auto store = fileBehind(file);
  const auto demand = termsOf(role).file;
  if (demand != FileDemand::encrypted) {
    internal::requireRegular(store);
  }
  if (demand == FileDemand::isPrivate) {
    internal::requirePrivate(store);
  }
  internal::rejectPlaintext(store);
}

/// Links that lead nowhere, and folders that cannot be looked into, are for the opening to tell of.
std::filesystem::path EncryptedStore::fileBehind(const std::filesystem::path& file) {
  std::error_code unresolvable;
  auto path = std::filesystem::canonical(file, unresolvable);
  if (unresolvable) {
    path = std::filesystem::absolute(file, unresolvable);
  }
  return unresolvable ? file : path;
}

std::filesystem::path EncryptedStore::logFileOf(const std::filesystem::path& file) {
  return fileBehind(file).native() + "-wal";
}

std::unique_ptr<DatabaseQueue> EncryptedStore::openQueue(StoreRole role) const {
  const auto& terms = termsOf(role);
  examine(file_, role);
  auto configuration = configurationFor(terms, vault_);
  // The ceiling waits for the verification, because setting it reads the schema.
  const auto ceiling = std::exchange(configuration.pageCacheCeilingKiB, 0);
  auto queue = std::make_unique<DatabaseQueue>(file_, configuration);
  queue->read([&](Connection& connection) {
    verify(connection, terms);
    connection.setPageCacheCeiling(ceiling);
  });
  return queue;
}

std::unique_ptr<DatabasePool> EncryptedStore::openPool(StoreRole role, std::size_t mostReaders) const {
  const auto& terms = termsOf(role);
  examine(file_, role);
  DatabasePool::Configuration configuration;
  configuration.mostReaders = mostReaders;
  configuration.connection = configurationFor(terms, vault_);
  auto pool = std::make_unique<DatabasePool>(file_, std::move(configuration));
  // A reader would have to derive the key a second time, for programs that may never read.
  pool->readOnWriter([&terms](Connection& connection) { verify(connection, terms); });
  return pool;
}

} // namespace orvan
