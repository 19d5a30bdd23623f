#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "OrvanObservatory/projection_reader.h"
#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/database_queue.h"
#include "application/store/application_store.h"

namespace orvan {

/// Where the user's store and key are, and the moment that commands take for now.
struct WorkspaceSettings {
  std::filesystem::path store;
  std::filesystem::path keyFile;
  Instant asOf;
  /// How many people are looked at, in key order.
  std::int64_t peopleCap = AttentionEvidenceCompilerOptions::defaults.maxPeopleGlobalCap();

  /// The shipped settings: below the user's data folder, at this moment.
  static WorkspaceSettings defaults();

  /// Throws folderNotPrivate when others can look into the store's folder and it is the shipped one. Of another folder
  /// that is the user's own affair.
  void requirePrivateFolder() const;
};

/// The user's store, opened part by part as a command needs it. Opening throws what ApplicationStore, the compiler and
/// the disposition store throw.
class Workspace {
 public:
  explicit Workspace(WorkspaceSettings settings);
  ~Workspace();

  const WorkspaceSettings& settings() const noexcept { return settings_; }
  const CredentialVault& vault() const noexcept { return vault_; }

  /// Opens what a list needs, all at once: each connection's key takes a moment to derive, and the machine can derive
  /// several at a time.
  void openForReading();
  /// The same for a command that also takes a decision.
  void openForDeciding();

  /// The people the user deals with, in key order; read once.
  const std::vector<ProjectedPerson>& people();

  std::vector<AttentionEvidenceBundle> bundles();
  AttentionEvidenceBundle bundle(const std::string& personKey);

  /// Only after openForDeciding().
  AttentionDispositionStore& dispositions() { return *dispositions_; }
  std::vector<AttentionItemDispositionRecord> records(const std::string& personKey);

  /// The store for the application's own writing.
  DatabaseQueue& writableStore();

  /// Ends the work: when something was written, empties the write-ahead log as far as that goes without waiting.
  void finish() noexcept;

  /// The key that a user means by `person`: a key, or a name or address that only one person has. What fits nobody is
  /// returned as it is. Throws CommandFailure when it fits several.
  std::string personKeyOf(const std::string& person);

 private:
  class PeopleInHand;

  AttentionEvidenceCompilerOptions compilerOptions() const;
  DatabaseQueue& store();

  WorkspaceSettings settings_;
  CredentialVault vault_;
  ApplicationStore::Access access_ = ApplicationStore::Access::read;
  std::shared_ptr<DatabaseQueue> store_;
  std::shared_ptr<PeopleInHand> people_;
  std::unique_ptr<AttentionEvidenceCompiler> compiler_;
  std::unique_ptr<AttentionDispositionStore> dispositions_;
};

} // namespace orvan
