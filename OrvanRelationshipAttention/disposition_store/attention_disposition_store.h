#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/work_executor.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store_error.h"
#include "OrvanRelationshipAttention/disposition_store/follow_up_disposition_applying.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// Keeps in the encrypted store what the user did with catch-up items, each with the attention candidate and the
/// evidence references it stands on.
///
/// A store holds a writing connection from construction and a reading one from the first records() on; the key is
/// fetched once for each and never kept. Both are released with the store. Other programs may use the file at the same
/// time: an operation waits at most five seconds for their locks. The write-ahead log is never checkpointed,
/// not even when the store is released; the application does that.
///
/// Operations are asynchronous and run one at a time on the store's executor, where they block; a caller on any
/// executor awaits its turn and is resumed on its own. The store must outlive the operations awaited on it. Programs
/// without an event loop wait with `waitFor(store.executor(), store.apply(...))`.
class AttentionDispositionStore final : public FollowUpDispositionApplying {
 public:
  /// Opens the store at `databaseURL` with the 32-byte key of `credentialVault`. Operations run on a thread of the
  /// store's own; its destructor ends that thread and must not run on it.
  ///
  /// Throws Error: plaintextDatabaseRejected when the file is an unencrypted SQLite database (no key is asked for
  /// then); the system's error when the file cannot be read; invalidKeyLength; canonicalSchemaUnavailable when a table
  /// is missing; cannotOpenEncryptedStore for everything else, be it the vault, a wrong key or a damaged file. A
  /// missing file is created, empty, and so lacks the tables. The key is zeroed before the constructor returns.
  AttentionDispositionStore(std::filesystem::path databaseURL, CredentialVault credentialVault);

  /// The same on the application's executor, which must outlive every operation. Operations block its threads, so it
  /// should not be a user interface's.
  AttentionDispositionStore(std::filesystem::path databaseURL, CredentialVault credentialVault, Executor executor);

  ~AttentionDispositionStore() override;
  AttentionDispositionStore(const AttentionDispositionStore&) = delete;
  AttentionDispositionStore& operator=(const AttentionDispositionStore&) = delete;

  /// Does `action` to `item` at `asOf`, and gives the record that holds afterwards; it is on disk by then. The record's
  /// snooze end is exact, while the store keeps whole seconds of it.
  ///
  /// An item that was dismissed or resolved stays so. A record that cannot be read counts as none. When the item is
  /// active afterwards (a snooze that would end at or before `asOf`), the store holds neither disposition nor
  /// candidate.
  ///
  /// It is one transaction: a fault of the store is thrown as StoreError and leaves everything as it was.
  Task<AttentionItemDispositionRecord> apply(AttentionCatchUpItem item, AttentionItemAction action,
                                             Instant asOf) override;

  /// The same within the caller's write transaction, on the caller's thread, for what is to be kept together with it.
  /// Programs that have the store open already need no disposition store for it. A fault is thrown as StoreError, and
  /// the caller must roll back then.
  static AttentionItemDispositionRecord apply(const AttentionCatchUpItem& item, const AttentionItemAction& action,
                                              Instant asOf, Connection& connection);

  /// What the user decided about a person's items, in the store's order, snoozes that are over included. Records that
  /// cannot be read are left out. Throws StoreError when reading fails, and Error when the reading connection, which
  /// the first call opens, cannot be opened: invalidKeyLength, or cannotOpenEncryptedStore for everything else, be it
  /// the vault or another file in the place of the one the store was opened on. The next call tries again.
  Task<std::vector<AttentionItemDispositionRecord>> records(std::string personID);

  /// The same within the caller's read, on the caller's thread: for programs that have the store open already, since
  /// opening a disposition store derives the key anew.
  static std::vector<AttentionItemDispositionRecord> records(std::string_view personID, Connection& connection);

  /// Where operations run.
  const Executor& executor() const noexcept { return work_.get(); }

 private:
  class Desk;

  /// Destroyed last: its own thread, if it has one, ends only after the operations that use the desk.
  WorkExecutor work_;
  std::shared_ptr<Desk> desk_;
};

} // namespace orvan
