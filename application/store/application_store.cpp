#include "application/store/application_store.h"

#include <algorithm>
#include <array>
#include <exception>
#include <iterator>
#include <optional>
#include <system_error>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "application/store/store_failure.h"

namespace orvan {
namespace {

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

StoreRole roleFor(ApplicationStore::Access access) noexcept {
  return access == ApplicationStore::Access::read ? StoreRole::applicationReader : StoreRole::applicationWriter;
}

std::shared_ptr<DatabaseQueue> openWithTables(const EncryptedStore& store, StoreRole role) {
  std::shared_ptr<DatabaseQueue> opened = store.openQueue(role);
  opened->read(requireTables);
  return opened;
}

std::shared_ptr<DatabasePool> openPoolWithTables(const EncryptedStore& store) {
  std::shared_ptr<DatabasePool> opened = store.openPool(StoreRole::applicationWriter);
  opened->readOnWriter(requireTables);
  return opened;
}

constexpr const char* copyInfix = ".before-version-";

/// The store as it was before it is moved forward, beside it and gone at the end.
class CopyBefore {
 public:
  CopyBefore(const EncryptedStore& store, std::int64_t version)
      : path_(store.file().native() + copyInfix + std::to_string(version)) {
    // One that an interruption left is of no use any more: the store opened, and is as it was or was written since.
    std::error_code failsTheCopying;
    std::filesystem::remove(path_, failsTheCopying);
    store.copyTo(path_);
  }
  ~CopyBefore() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  CopyBefore(const CopyBefore&) = delete;
  CopyBefore& operator=(const CopyBefore&) = delete;

 private:
  std::filesystem::path path_;
};

/// Of two programs that do this at once, one waits and finds it done. The copy goes once the transaction has ended,
/// whichever way.
void moveForward(const EncryptedStore& store) {
  std::optional<CopyBefore> copy;
  const auto mover = store.openQueue(StoreRole::applicationMover);
  mover->write([&](Connection& connection) {
    const auto newest = SchemaIdentity::newest();
    if (SchemaIdentity::of(connection) != newest) {
      copy.emplace(store, newest.version);
      moveCanonicalSchemaForward(connection);
    }
  });
}

/// What `open` gives, once the store's tables are not older than this program's.
template <typename Open>
auto openMovedForward(const EncryptedStore& store, Open open) {
  try {
    return open(store);
  } catch (const Error& error) {
    if (error.code() != EncryptedStoreError::schemaOlder) {
      throw;
    }
  }
  moveForward(store);
  return open(store);
}

void checkpointAtOnce(Connection& connection) {
  connection.executeScript("PRAGMA busy_timeout = 0; PRAGMA wal_checkpoint(TRUNCATE)");
}

} // namespace

void ApplicationStore::create(const std::filesystem::path& file, const CredentialVault& vault) {
  try {
    inApplicationWords("creating the store", [&] { EncryptedStore(file, vault).create(); });
  } catch (const Error& error) {
    if (error.code() == ApplicationStoreError::cannotReachStore ||
        error.code() == ApplicationStoreError::cannotReadStore) {
      throw Error(ApplicationStoreError::cannotCreate, "creating the store");
    }
    throw;
  }
}

void ApplicationStore::requireUsableFile(const std::filesystem::path& file) {
  inApplicationWords("looking at the store", [&] { EncryptedStore::examine(file, StoreRole::applicationWriter); });
}

std::shared_ptr<DatabaseQueue> ApplicationStore::open(const std::filesystem::path& file, const CredentialVault& vault,
                                                      Access access) {
  return inApplicationWords("opening the store", [&] {
    return openMovedForward(EncryptedStore(file, vault),
                            [access](const EncryptedStore& store) { return openWithTables(store, roleFor(access)); });
  });
}

std::shared_ptr<DatabasePool> ApplicationStore::openPool(const std::filesystem::path& file,
                                                         const CredentialVault& vault) {
  return inApplicationWords("opening the store",
                            [&] { return openMovedForward(EncryptedStore(file, vault), openPoolWithTables); });
}

bool ApplicationStore::checkpoint(DatabaseQueue& store) {
  return store.withoutTransaction([](Connection& connection) {
    const auto wasBusy = connection.fetchOptionalInteger("PRAGMA wal_checkpoint(TRUNCATE)");
    return wasBusy == 0;
  });
}

void ApplicationStore::checkpointWithoutWaiting(DatabaseQueue& store) noexcept {
  try {
    store.withoutTransaction(checkpointAtOnce);
  } catch (const std::exception&) { // NOLINT(bugprone-empty-catch): all that was written is safe in the log.
  }
}

void ApplicationStore::checkpointWithoutWaiting(DatabasePool& store) noexcept {
  try {
    store.withoutTransaction(checkpointAtOnce);
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

StoreDamage ApplicationStore::damage(Connection& connection) {
  try {
    if (connection.query("PRAGMA cipher_integrity_check").next()) {
      return StoreDamage::pages;
    }
    return connection.fetchOptionalText("PRAGMA quick_check") == "ok" ? StoreDamage::none : StoreDamage::tables;
  } catch (const StoreError& error) {
    if (failureOf(error) != ApplicationStoreError::cannotDecrypt) {
      throw;
    }
    return StoreDamage::pages;
  }
}

std::uintmax_t ApplicationStore::logSize(const std::filesystem::path& file) {
  std::error_code missing;
  const auto size = std::filesystem::file_size(EncryptedStore::logFileOf(file), missing);
  return missing ? 0 : size;
}

std::vector<std::filesystem::path> ApplicationStore::copiesLeft(const std::filesystem::path& file) {
  return filesBeside(file, copyInfix);
}

std::vector<std::filesystem::path> ApplicationStore::filesBeside(const std::filesystem::path& file,
                                                                 std::string_view ending) {
  std::vector<std::filesystem::path> found;
  const auto store = EncryptedStore::fileBehind(file);
  const auto beginning = store.filename().native() + std::string{ending};
  std::error_code unreadable;
  for (std::filesystem::directory_iterator entry(store.parent_path(), unreadable), end; !unreadable && entry != end;
       entry.increment(unreadable)) {
    if (entry->path().filename().native().starts_with(beginning)) {
      found.push_back(entry->path());
    }
  }
  std::ranges::sort(found);
  return found;
}

} // namespace orvan
