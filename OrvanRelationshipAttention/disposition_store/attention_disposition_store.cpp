#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"

#include <array>
#include <boost/asio/strand.hpp>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/disposition_store/internal/disposition_rows.h"
#include "OrvanRelationshipAttention/store_access/plaintext_database.h"
#include "OrvanRelationshipAttention/store_access/store_key.h"
#include "OrvanSpineCore/store_write_diagnostics.h"
#include "OrvanStore/database_pool.h"

namespace orvan {
namespace {

using Transition = AttentionItemDispositionTransition;

constexpr std::array requiredTables{"person", "relationship_attention_disposition", "relationship_attention_candidate",
                                    "relationship_attention_candidate_evidence"};

/// Operations run one at a time, so a second reader would never be asked for.
constexpr std::size_t mostReaders = 1;

constexpr std::array preparation{
    "PRAGMA cipher_page_size = 4096", "PRAGMA foreign_keys = ON",   "PRAGMA journal_mode = WAL",
    "PRAGMA synchronous = FULL",      "PRAGMA temp_store = MEMORY", "PRAGMA wal_autocheckpoint = 0",
    "PRAGMA mmap_size = 0",           "PRAGMA secure_delete = ON",  "PRAGMA busy_timeout = 5000",
};

void prepareConnection(Connection& connection, const StoreKeyProvider& keyProvider) {
  keyConnection(connection, keyProvider, AttentionDispositionStoreError::invalidKeyLength);
  for (const char* statement : preparation) {
    connection.executeScript(statement);
  }
  StoreWriteDiagnostics::attach(connection, StorePool::relationshipAttention, nullptr);
}

void verifyEncryption(Connection& connection) {
  if (!isSQLCipher(connection)) {
    throw Error(AttentionDispositionStoreError::cannotOpenEncryptedStore, "asking for SQLCipher's version");
  }
  if (connection.fetchOptionalInteger("PRAGMA secure_delete").value_or(0) == 0) {
    throw Error(AttentionDispositionStoreError::cannotOpenEncryptedStore,
                "asking whether deleted rows are overwritten");
  }
}

void verifyRequiredTablesPresent(Connection& connection) {
  for (const char* table : requiredTables) {
    if (!connection.fetchOptionalText("SELECT name FROM sqlite_master WHERE type = 'table' AND name = ?", table)) {
      throw Error(AttentionDispositionStoreError::canonicalSchemaUnavailable, "looking for the tables of dispositions");
    }
  }
}

/// The checks read on the writer, which is open anyway: a reader would have to derive the key a second time, for
/// programs that may never read.
std::unique_ptr<DatabasePool> openDatabasePool(const std::filesystem::path& file, StoreKeyProvider keyProvider) {
  DatabasePool::Configuration configuration;
  configuration.mostReaders = mostReaders;
  configuration.connection.checkpointsOnClose = false;
  configuration.connection.prepare = [keyProvider = std::move(keyProvider)](Connection& connection) {
    prepareConnection(connection, keyProvider);
  };
  auto pool = std::make_unique<DatabasePool>(file, std::move(configuration));
  pool->readOnWriter(verifyEncryption);
  pool->readOnWriter(verifyRequiredTablesPresent);
  return pool;
}

bool isOurs(const std::error_code& code) noexcept {
  return code.category() == make_error_code(AttentionDispositionStoreError::cannotOpenEncryptedStore).category();
}

[[noreturn]] void failOpening() {
  throw Error(AttentionDispositionStoreError::cannotOpenEncryptedStore, "opening the store for writing");
}

std::unique_ptr<DatabasePool> openStore(const std::filesystem::path& file, CredentialVault credentialVault) {
  rejectPlaintextDatabase(file, AttentionDispositionStoreError::plaintextDatabaseRejected);
  try {
    return openDatabasePool(file, makeStoreKeyProvider(std::move(credentialVault)));
  } catch (const Error& error) {
    if (isOurs(error.code())) {
      throw;
    }
    failOpening();
  } catch (...) { // A vault may throw anything.
    failOpening();
  }
}

} // namespace

/// What the operations work on, one at a time: all but the construction runs on the strand.
class AttentionDispositionStore::Desk {
 public:
  Desk(std::filesystem::path databaseURL, CredentialVault credentialVault, const Executor& executor)
      : databaseURL_(std::move(databaseURL)),
        database_(openStore(databaseURL_, std::move(credentialVault))),
        turn_(boost::asio::make_strand(executor)) {}

  static Task<AttentionItemDispositionRecord> applyInTurn(const std::shared_ptr<Desk>& desk, AttentionCatchUpItem item,
                                                          AttentionItemAction action, Instant asOf) {
    return runOn(desk->turn_, applyOne(desk, std::move(item), action, asOf));
  }

  static Task<std::vector<AttentionItemDispositionRecord>> recordsInTurn(const std::shared_ptr<Desk>& desk,
                                                                         std::string personID) {
    return runOn(desk->turn_, recordsOf(desk, std::move(personID)));
  }

 private:
  static Task<AttentionItemDispositionRecord> applyOne(std::shared_ptr<Desk> desk, AttentionCatchUpItem item,
                                                       AttentionItemAction action, Instant asOf) {
    co_return desk->apply(item, action, asOf);
  }

  static Task<std::vector<AttentionItemDispositionRecord>> recordsOf(std::shared_ptr<Desk> desk, std::string personID) {
    co_return desk->records(personID);
  }

  AttentionItemDispositionRecord apply(const AttentionCatchUpItem& item, const AttentionItemAction& action,
                                       Instant asOf);
  std::vector<AttentionItemDispositionRecord> records(std::string_view personID);

  const std::filesystem::path databaseURL_;
  const std::unique_ptr<DatabasePool> database_;
  boost::asio::strand<Executor> turn_;
};

AttentionItemDispositionRecord AttentionDispositionStore::Desk::apply(const AttentionCatchUpItem& item,
                                                                      const AttentionItemAction& action, Instant asOf) {
  return database_->write([&](Connection& connection) {
    const auto prior = internal::loadRecord(item.itemKey(), connection);
    const auto current = Transition::state(item.itemKey(), prior, asOf);
    auto record = Transition::apply(action, current, item.itemKey(), asOf);
    internal::write(record, item, connection, asOf);
    return record;
  });
}

std::vector<AttentionItemDispositionRecord> AttentionDispositionStore::Desk::records(std::string_view personID) {
  return database_->read([&](Connection& connection) { return internal::loadRecords(personID, connection); });
}

AttentionDispositionStore::AttentionDispositionStore(std::filesystem::path databaseURL, CredentialVault credentialVault)
    : desk_(std::make_shared<Desk>(std::move(databaseURL), std::move(credentialVault), work_.get())) {}

AttentionDispositionStore::AttentionDispositionStore(std::filesystem::path databaseURL, CredentialVault credentialVault,
                                                     Executor executor)
    : work_(std::move(executor)),
      desk_(std::make_shared<Desk>(std::move(databaseURL), std::move(credentialVault), work_.get())) {}

AttentionDispositionStore::~AttentionDispositionStore() = default;

Task<AttentionItemDispositionRecord> AttentionDispositionStore::apply(AttentionCatchUpItem item,
                                                                      AttentionItemAction action, Instant asOf) {
  return Desk::applyInTurn(desk_, std::move(item), action, asOf);
}

Task<std::vector<AttentionItemDispositionRecord>> AttentionDispositionStore::records(std::string personID) {
  return Desk::recordsInTurn(desk_, std::move(personID));
}

std::vector<AttentionItemDispositionRecord> AttentionDispositionStore::records(std::string_view personID,
                                                                               Connection& connection) {
  return internal::loadRecords(personID, connection);
}

} // namespace orvan
