#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvanObservatory/contact_outlook.h"
#include "OrvanObservatory/projection_reader.h"
#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/database_queue.h"
#include "application/session/session_settings.h"
#include "application/store/application_store.h"

namespace orvan {

/// A user's store as every front end works with it: opened part by part as it is needed, with its people, their
/// evidence and what was decided about them.
///
/// Belongs to one thread at a time. Every call blocks while the store is read or written, so a window keeps its session
/// on a thread of its own. Connections stay open until the session is destroyed; that empties no log, see finish().
///
/// Opening throws what ApplicationStore and AttentionEvidenceCompiler throw, and leaves the session as it was: once the
/// cause is mended the call can be repeated. Reading and writing throw StoreError.
class Session {
 public:
  /// Opens nothing yet.
  explicit Session(SessionSettings settings);
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  const SessionSettings& settings() const noexcept { return settings_; }
  const CredentialVault& vault() const noexcept { return vault_; }

  /// Opens what a list needs, all at once: each connection's key takes a moment to derive, and the machine can derive
  /// several at a time. The calls below open by themselves what they lack, one after the other.
  void openForReading();
  /// The same, able to remember what is shown (see isWritable()) where the store can be written to, and without it
  /// where not.
  void openForShowing();
  /// The same for a decision too.
  void openForDeciding();

  /// One person as everything shows them; nothing when there is nobody with that key.
  std::optional<ProjectedPerson> person(const std::string& personKey);

  /// Whether the user keeps the person from being shown.
  bool isHidden(const std::string& personKey);

  /// The people the user deals with, with what can be told of them without a look at their evidence, in the order in
  /// which that is worthwhile. Read once for a moment: what another program adds is seen after readAgain(). Valid until
  /// then, or until another moment is asked for.
  const std::vector<ContactOutlook>& outlooks(Instant asOf);
  void readAgain() noexcept;
  /// Gives back to the system what reading everybody took in memory, most of it pages of the store. For programs that
  /// stay open: what they read next costs its pages anew. Throws StoreError.
  void giveMemoryBack();
  /// How many of `outlooks(asOf)`, from the first, are looked at: those who can have a reason, up to the cap.
  std::size_t countLookedAt(Instant asOf);

  /// The key of the person that a user means by `text`: a key, or a name or address that only one person has. Throws a
  /// PersonNotFound.
  std::string personKeyOf(const std::string& text);

  /// Writes down how fresh the sources are at `asOf`, where that is not what the store says: see source_freshness.h. A
  /// store that cannot be written now is left as it is. The calls below do it first.
  void bringSourceFreshnessUpToDate(Instant asOf);

  /// What stands at `asOf`: of everyone who is looked at and has some evidence, in key order, or of one person.
  std::vector<AttentionEvidenceBundle> bundles(Instant asOf);
  AttentionEvidenceBundle bundle(const std::string& personKey, Instant asOf);

  /// What was decided about a person, in the store's order.
  std::vector<AttentionItemDispositionRecord> records(const std::string& personKey);

  /// The store for the application's own reading, and for its writing, as importers do it.
  DatabaseQueue& readableStore() { return store(); }
  DatabaseQueue& writableStore();
  /// Whether the store is open for writing, so that writableStore() opens nothing.
  bool isWritable() const noexcept { return store_ != nullptr && access_ == ApplicationStore::Access::write; }

  /// For the end of a program: when this session could write, empties the write-ahead log as far as that goes without
  /// waiting for others. The session's connection does not wait for them any more afterwards.
  void finish() noexcept;

 private:
  class PeopleToLookAt;

  AttentionEvidenceCompilerOptions compilerOptions() const;
  void open(ApplicationStore::Access access);
  DatabaseQueue& store(ApplicationStore::Access access = ApplicationStore::Access::read);

  SessionSettings settings_;
  CredentialVault vault_;
  std::shared_ptr<DatabaseQueue> store_;
  /// What `store_` was opened for.
  ApplicationStore::Access access_ = ApplicationStore::Access::read;
  std::shared_ptr<PeopleToLookAt> people_;
  std::unique_ptr<AttentionEvidenceCompiler> compiler_;
};

} // namespace orvan
