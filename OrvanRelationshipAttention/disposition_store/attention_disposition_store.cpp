#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"

#include <array>
#include <boost/asio/strand.hpp>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/disposition_store/internal/disposition_rows.h"
#include "OrvanSpineCore/encrypted_store.h"

namespace orvan {
namespace {

using Transition = AttentionItemDispositionTransition;

constexpr std::array requiredTables{"person", "relationship_attention_disposition", "relationship_attention_candidate",
                                    "relationship_attention_candidate_evidence"};

/// Operations run one at a time, so a second reader would never be asked for.
constexpr std::size_t mostReaders = 1;

void verifyRequiredTablesPresent(Connection& connection) {
  for (const char* table : requiredTables) {
    if (!connection.fetchOptionalText("SELECT name FROM sqlite_master WHERE type = 'table' AND name = ?", table)) {
      throw Error(AttentionDispositionStoreError::canonicalSchemaUnavailable, "looking for the tables of dispositions");
    }
  }
}

bool isOurs(const std::error_code& code) noexcept {
  return code.category() == make_error_code(AttentionDispositionStoreError::cannotOpenEncryptedStore).category();
}

/// Opens a connection or more, and tells what keeps it from that in our own words.
template <typename Open>
auto opening(Open open) {
  try {
    return open();
  } catch (const Error& error) {
    if (isOurs(error.code())) {
      throw;
    }
    throw Error(error.code() == EncryptedStoreError::invalidKeyLength
                    ? AttentionDispositionStoreError::invalidKeyLength
                    : AttentionDispositionStoreError::cannotOpenEncryptedStore,
                "opening the store");
  } catch (...) { // A vault may throw anything.
    throw Error(AttentionDispositionStoreError::cannotOpenEncryptedStore, "opening the store");
  }
}

void rejectPlaintext(const std::filesystem::path& file) {
  try {
    EncryptedStore::examine(file, StoreRole::dispositionStore);
  } catch (const Error& error) {
    if (error.code() == EncryptedStoreError::plaintext) {
      throw Error(AttentionDispositionStoreError::plaintextDatabaseRejected, "opening the store");
    }
    throw;
  }
}

std::unique_ptr<DatabasePool> openStore(const std::filesystem::path& file, CredentialVault credentialVault) {
  rejectPlaintext(file);
  const EncryptedStore store(file, std::move(credentialVault));
  return opening([&store] {
    auto pool = store.openPool(StoreRole::dispositionStore, mostReaders);
    pool->readOnWriter(verifyRequiredTablesPresent);
    return pool;
  });
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
  return database_->write(
      [&](Connection& connection) { return AttentionDispositionStore::apply(item, action, asOf, connection); });
}

std::vector<AttentionItemDispositionRecord> AttentionDispositionStore::Desk::records(std::string_view personID) {
  opening([this] { database_->openReader(); });
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

AttentionItemDispositionRecord AttentionDispositionStore::apply(const AttentionCatchUpItem& item,
                                                                const AttentionItemAction& action, Instant asOf,
                                                                Connection& connection) {
  const auto prior = internal::loadRecord(item.itemKey(), connection);
  const auto current = Transition::state(item.itemKey(), prior, asOf);
  auto record = Transition::apply(action, current, item.itemKey(), asOf);
  internal::write(record, item, connection, asOf);
  return record;
}

std::vector<AttentionItemDispositionRecord> AttentionDispositionStore::records(std::string_view personID,
                                                                               Connection& connection) {
  return internal::loadRecords(personID, connection);
}

} // namespace orvan
