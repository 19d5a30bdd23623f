#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "OrvanObservatory/projection_reader.h"
#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/work_executor.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler_error.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_compiler_options.h"
#include "OrvanSpineCore/credential_vault.h"

namespace orvan {

/// Reads the encrypted store and compiles what it holds on a person into an AttentionEvidenceBundle.
///
/// A compiler holds one read-only connection for its whole life. When no store file exists at construction it has none,
/// never looks again, and compiles empty bundles: make a new compiler once there is a store.
///
/// Operations are asynchronous and run one at a time on the compiler's executor, where reads of the store block; a
/// caller on any executor awaits its turn and is resumed on its own. The compiler must outlive the operations awaited
/// on it. Programs without an event loop wait with `waitFor(compiler.executor(), compiler.compile(...))`.
class AttentionEvidenceCompiler {
 public:
  /// Opens the store at `databaseURL` with the 32-byte key of `credentialVault`. Operations run on a thread of the
  /// compiler's own; its destructor ends that thread and must not run on it.
  ///
  /// Throws Error: plaintextDatabaseRejected when the file is an unencrypted SQLite database (no key is asked for
  /// then); the system's error when the file cannot be read; cannotOpenEncryptedStore for everything else, be it the
  /// vault, the key's length, a wrong key or a damaged file. The key is zeroed before the constructor returns.
  AttentionEvidenceCompiler(std::filesystem::path databaseURL, CredentialVault credentialVault,
                            std::shared_ptr<ProjectionReader> observatory, AttentionEvidenceCompilerOptions options);

  /// The same on the application's executor, which must outlive every operation. Reads block its threads, so it should
  /// not be a user interface's.
  AttentionEvidenceCompiler(std::filesystem::path databaseURL, CredentialVault credentialVault,
                            std::shared_ptr<ProjectionReader> observatory, AttentionEvidenceCompilerOptions options,
                            Executor executor);

  ~AttentionEvidenceCompiler();
  AttentionEvidenceCompiler(const AttentionEvidenceCompiler&) = delete;
  AttentionEvidenceCompiler& operator=(const AttentionEvidenceCompiler&) = delete;

  /// What the store holds on one person as of an instant. A store that lacks one of the tables gives an empty bundle; a
  /// fault of the store is thrown as StoreError, and no partial bundle is returned. Each kind of evidence is a read of
  /// its own: another program may write between two of them.
  Task<AttentionEvidenceBundle> compile(std::string personKey, Instant asOf);

  /// The bundles that are not empty, of the people whom the projection reader lists, in ascending order of their keys.
  /// At most `maxPeopleGlobalCap` people are looked at, whether or not they turn out to have evidence. The first fault,
  /// the projection reader's included, is thrown and drops what was compiled. While the reader works, other operations
  /// may have their turn.
  Task<std::vector<AttentionEvidenceBundle>> compileAll(Instant asOf);

  /// Gives back the memory in which pages of the store are kept between operations; what is asked next reads them anew.
  /// For programs that stay open after they have compiled everybody. Throws StoreError.
  Task<void> releaseMemory();

  /// Where operations run.
  const Executor& executor() const noexcept { return work_.get(); }

 private:
  class Desk;

  /// Destroyed last: its own thread, if it has one, ends only after the operations that use the desk.
  WorkExecutor work_;
  std::shared_ptr<Desk> desk_;
};

} // namespace orvan
