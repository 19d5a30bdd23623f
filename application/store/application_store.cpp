#include "application/store/application_store.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <exception>
#include <iterator>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/store_access/plaintext_database.h"
#include "OrvanRelationshipAttention/store_access/store_key.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanSpineCore/store_write_diagnostics.h"
#include "OrvanStore/store_error.h"

namespace orvan {
namespace {

void prepareForReading(Connection& connection, const StoreKeyProvider& provider) {
  keyConnection(connection, provider, ApplicationStoreError::keyMalformed);
  connection.executeScript(
      "PRAGMA cipher_page_size = 4096;"
      "PRAGMA query_only = 1");
}

/// As the disposition store's connections, so that whichever writes, the file is treated alike.
void prepareForWriting(Connection& connection, const StoreKeyProvider& provider) {
  keyConnection(connection, provider, ApplicationStoreError::keyMalformed);
  connection.executeScript(
      "PRAGMA cipher_page_size = 4096;"
      "PRAGMA foreign_keys = ON;"
      "PRAGMA journal_mode = WAL;"
      "PRAGMA synchronous = FULL;"
      "PRAGMA temp_store = MEMORY;"
      "PRAGMA wal_autocheckpoint = 0;"
      "PRAGMA mmap_size = 0;"
      "PRAGMA secure_delete = ON");
  StoreWriteDiagnostics::attach(connection, StorePool::application, nullptr);
}

ConnectionConfiguration configurationFor(ApplicationStore::Access access, OpenMode mode, StoreKeyProvider provider) {
  ConnectionConfiguration configuration;
  configuration.mode = mode;
  configuration.prepare = [access, provider = std::move(provider)](Connection& connection) {
    if (access == ApplicationStore::Access::read) {
      prepareForReading(connection, provider);
    } else {
      prepareForWriting(connection, provider);
    }
  };
  return configuration;
}

/// What lies at `path` must be the user's own, for nobody else to read or write. Nothing may lie there.
void requirePrivate(const std::filesystem::path& path) {
  struct stat status{};
  if (stat(path.c_str(), &status) != 0) {
    if (errno == ENOENT) {
      return;
    }
    throw Error(ApplicationStoreError::cannotReachStore, "looking at the store's files");
  }
  constexpr mode_t everyoneElse = 077;
  if ((status.st_mode & everyoneElse) != 0 || status.st_uid != geteuid()) {
    throw Error(ApplicationStoreError::storeNotPrivate, "looking at the store's files");
  }
}

void rejectPlaintext(const std::filesystem::path& file) {
  try {
    rejectPlaintextDatabase(file, ApplicationStoreError::plaintextStore);
  } catch (const Error& error) {
    if (error.code() == ApplicationStoreError::plaintextStore) {
      throw;
    }
    throw Error(ApplicationStoreError::cannotReachStore, "reading the start of the store file");
  }
}

void requireTables(Connection& connection) {
  constexpr std::array tables{"person", "interaction", "thread", "source_event", "relationship_attention_disposition"};
  const bool allThere = std::ranges::all_of(tables, [&connection](const char* table) {
    return connection.fetchOptionalText("SELECT name FROM sqlite_master WHERE type = 'table' AND name = ?", table)
        .has_value();
  });
  if (!allThere) {
    throw Error(ApplicationStoreError::schemaMissing, "looking at the store's tables");
  }
}

std::vector<std::string> schemaParts(Connection& connection) {
  std::vector<std::string> parts;
  auto rows = connection.query(R"sql(
SELECT type || ' ' || name AS part
FROM sqlite_schema
WHERE name NOT LIKE 'sqlite_%'
UNION ALL
SELECT 'column ' || owner.name || '.' || field.name
FROM sqlite_schema owner
JOIN pragma_table_info(owner.name) field
WHERE owner.type = 'table'
ORDER BY part
)sql");
  while (rows.next()) {
    parts.emplace_back(rows.text(Column{0}));
  }
  return parts;
}

/// SQLite says "not a database" for a wrong key and for a damaged file alike.
ApplicationStoreError openingFailureOf(const StoreError& error) {
  if (error.code() == StoreFault::engineCannotEncrypt) {
    return ApplicationStoreError::engineCannotEncrypt;
  }
  switch (error.extendedCode() & 0xff) {
    case SQLITE_NOTADB:
    case SQLITE_CORRUPT:
      return ApplicationStoreError::cannotDecrypt;
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return ApplicationStoreError::storeBusy;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
      return ApplicationStoreError::cannotReachStore;
    case SQLITE_READONLY:
      return ApplicationStoreError::storeReadOnly;
    case SQLITE_FULL:
      return ApplicationStoreError::diskFull;
    default:
      return ApplicationStoreError::cannotReadStore;
  }
}

void removeStore(const std::filesystem::path& file) {
  std::error_code ignored;
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
    std::filesystem::remove(file.native() + suffix, ignored);
  }
}

/// Whoever makes the file owns it: of two programs that make a store at once, the other must not touch it.
void createEmptyFile(const std::filesystem::path& file) {
  constexpr mode_t ownerOnly = 0600;
  const int descriptor = ::open(file.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, ownerOnly);
  if (descriptor < 0) {
    throw Error(errno == EEXIST ? ApplicationStoreError::storeExists : ApplicationStoreError::cannotCreate,
                "creating the store");
  }
  close(descriptor);
}

std::filesystem::path logOf(const std::filesystem::path& file) {
  return file.native() + "-wal";
}

StoreKeyProvider keyProviderOf(const CredentialVault& vault) {
  return [provider = makeStoreKeyProvider(vault)] {
    try {
      return provider();
    } catch (const Error& error) {
      if (error.code() == CredentialVaultError::keyMissing) {
        throw Error(ApplicationStoreError::keyMissing, "opening the store");
      }
      throw;
    }
  };
}

} // namespace

void ApplicationStore::create(const std::filesystem::path& file, const CredentialVault& vault) {
  createEmptyFile(file);
  try {
    DatabaseQueue store(file, configurationFor(Access::write, OpenMode::readWrite, keyProviderOf(vault)));
    store.write(createCanonicalSchema);
    checkpoint(store);
  } catch (const StoreError& error) {
    removeStore(file);
    throw Error(error.code() == StoreFault::engineCannotEncrypt ? ApplicationStoreError::engineCannotEncrypt
                                                                : ApplicationStoreError::cannotCreate,
                "creating the store");
  } catch (...) {
    removeStore(file);
    throw;
  }
}

void ApplicationStore::requireUsableFile(const std::filesystem::path& file) {
  std::error_code unreachable;
  if (!std::filesystem::exists(file, unreachable)) {
    throw Error(unreachable ? ApplicationStoreError::cannotReachStore : ApplicationStoreError::storeMissing,
                "opening the store");
  }
  for (const char* suffix : {"", "-wal", "-shm"}) {
    requirePrivate(file.native() + suffix);
  }
  rejectPlaintext(file);
}

std::shared_ptr<DatabaseQueue> ApplicationStore::open(const std::filesystem::path& file, const CredentialVault& vault,
                                                      Access access) {
  requireUsableFile(file);
  const auto mode = access == Access::read ? OpenMode::readOnly : OpenMode::readWrite;
  try {
    auto store = std::make_shared<DatabaseQueue>(file, configurationFor(access, mode, keyProviderOf(vault)));
    store->read(requireTables);
    return store;
  } catch (const StoreError& error) {
    throw Error(openingFailureOf(error), "opening the store");
  }
}

bool ApplicationStore::checkpoint(DatabaseQueue& store) {
  return store.withoutTransaction([](Connection& connection) {
    const auto wasBusy = connection.fetchOptionalInteger("PRAGMA wal_checkpoint(TRUNCATE)");
    return wasBusy == 0;
  });
}

void ApplicationStore::checkpointWithoutWaiting(DatabaseQueue& store) noexcept {
  try {
    store.withoutTransaction([](Connection& connection) { connection.executeScript("PRAGMA busy_timeout = 0"); });
    checkpoint(store);
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): all that was written is safe in the log.
  }
}

std::vector<std::string> ApplicationStore::missingSchemaParts(Connection& connection) {
  ConnectionConfiguration inMemory;
  inMemory.mode = OpenMode::readWrite;
  Connection complete(":memory:", inMemory);
  createCanonicalSchema(complete);
  std::vector<std::string> missing;
  std::ranges::set_difference(schemaParts(complete), schemaParts(connection), std::back_inserter(missing));
  return missing;
}

std::uintmax_t ApplicationStore::logSize(const std::filesystem::path& file) {
  std::error_code missing;
  const auto size = std::filesystem::file_size(logOf(file), missing);
  return missing ? 0 : size;
}

} // namespace orvan
