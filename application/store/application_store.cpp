#include "application/store/application_store.h"

#include <algorithm>
#include <array>
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

/// A larger log costs disk and the next first opening.
constexpr std::uintmax_t logWorthACheckpoint = std::uintmax_t{64} * 1024 * 1024;

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

void requirePrivate(const std::filesystem::path& file) {
  constexpr auto everyoneElse = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
  if ((std::filesystem::status(file).permissions() & everyoneElse) != std::filesystem::perms::none) {
    throw Error(ApplicationStoreError::storeNotPrivate, "opening the store");
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

/// SQLite says "not a database" for a wrong key and for a damaged file alike; other errors carry their own reason.
[[noreturn]] void rethrowAsOpeningFailure(const StoreError& error) {
  if (error.code() == StoreFault::engineCannotEncrypt) {
    throw Error(ApplicationStoreError::engineCannotEncrypt, "opening the store");
  }
  throw Error(ApplicationStoreError::cannotDecrypt, "opening the store");
}

void removeStore(const std::filesystem::path& file) {
  std::error_code ignored;
  for (const char* suffix : {"", "-wal", "-shm", "-journal"}) {
    std::filesystem::remove(file.native() + suffix, ignored);
  }
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
  if (std::filesystem::exists(file)) {
    throw Error(ApplicationStoreError::storeExists, "creating the store");
  }
  try {
    DatabaseQueue store(file, configurationFor(Access::write, OpenMode::readWriteCreate, keyProviderOf(vault)));
    store.write(createCanonicalSchema);
    checkpoint(file, store);
  } catch (const StoreError& error) {
    removeStore(file);
    if (error.code() == StoreFault::engineCannotEncrypt) {
      rethrowAsOpeningFailure(error);
    }
    throw Error(ApplicationStoreError::cannotCreate, "creating the store");
  } catch (...) {
    removeStore(file);
    throw;
  }
}

void ApplicationStore::requireUsableFile(const std::filesystem::path& file) {
  if (!std::filesystem::exists(file)) {
    throw Error(ApplicationStoreError::storeMissing, "opening the store");
  }
  requirePrivate(file);
  rejectPlaintextDatabase(file, ApplicationStoreError::plaintextStore);
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
    rethrowAsOpeningFailure(error);
  }
}

std::uintmax_t ApplicationStore::checkpoint(const std::filesystem::path& file, DatabaseQueue& store) {
  store.withoutTransaction([](Connection& connection) { connection.execute("PRAGMA wal_checkpoint(TRUNCATE)"); });
  return logSize(file);
}

void ApplicationStore::checkpointIfLarge(const std::filesystem::path& file, DatabaseQueue& store) {
  if (isLogLarge(file)) {
    checkpoint(file, store);
  }
}

bool ApplicationStore::isLogLarge(const std::filesystem::path& file) {
  return logSize(file) >= logWorthACheckpoint;
}

std::uintmax_t ApplicationStore::logSize(const std::filesystem::path& file) {
  std::error_code missing;
  const auto size = std::filesystem::file_size(logOf(file), missing);
  return missing ? 0 : size;
}

} // namespace orvan
