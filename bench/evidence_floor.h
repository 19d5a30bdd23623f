#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/evidence/values/changed_context_detector.h"

namespace orvan::bench {

/// The least that compiling evidence can cost: the statements that the library runs, stepped through SQLite's own
/// interface, each compiled once, and their texts copied into the same values. Nothing is checked that the library
/// checks, but for faults of SQLite, which end the program.
class EvidenceFloor {
 public:
  /// The statements of one bundle in the order in which the library begins them, transactions left out. The one about
  /// freshness is written anew for each number of accounts.
  struct Statements {
    std::string schemaCheck;
    /// Begun before each statement that leaves out what may not be shown.
    std::string restrictions;
    std::string openThreads;
    std::string upcomingInteractions;
    std::string history;
    std::string commitments;
    std::string accounts;
    std::string freshness;
    std::vector<std::string> corrections;
  };

  /// Opens `file` as the library does: the same flags, key, settings and page-cache ceiling.
  EvidenceFloor(const std::filesystem::path& file, const Statements& statements);

  AttentionEvidenceBundle compile(const std::string& personKey, Instant asOf);
  /// Those that are not empty.
  std::vector<AttentionEvidenceBundle> compileAll(std::vector<std::string> personKeys, Instant asOf);

  sqlite3* handle() const noexcept { return connection_.get(); }

 private:
  struct Closer {
    void operator()(sqlite3* connection) const noexcept { sqlite3_close_v2(connection); }
    void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
  };
  using Statement = std::unique_ptr<sqlite3_stmt, Closer>;

  Statement prepare(const std::string& sql) const;
  bool hasTables();
  std::vector<OpenThreadEvidence> openThreads(const std::string& personKey, const std::string& now);
  std::vector<UpcomingInteractionEvidence> upcomingInteractions(const std::string& personKey, const std::string& now,
                                                                const std::string& windowEnd);
  std::vector<ChangedContextDetector::TimestampedInteraction> history(const std::string& personKey);
  std::vector<CommitmentEvidence> commitments(const std::string& personKey);
  std::vector<SourceFreshnessEvidence> freshness(const std::string& personKey);
  void addFreshness(const std::vector<std::string>& accounts, std::vector<SourceFreshnessEvidence>& freshness);
  std::optional<std::string> lastCorrection(const std::string& personKey, const std::string& windowStart,
                                            std::int64_t& count);

  std::unique_ptr<sqlite3, Closer> connection_;
  std::string freshnessUntilAccounts_;
  std::string freshnessAfterAccounts_;
  Statement begin_;
  Statement commit_;
  Statement schemaCheck_;
  Statement restrictions_;
  Statement openThreads_;
  Statement upcomingInteractions_;
  Statement history_;
  Statement commitments_;
  Statement accounts_;
  /// By the number of accounts.
  std::vector<Statement> freshness_;
  std::vector<Statement> corrections_;
};

} // namespace orvan::bench
