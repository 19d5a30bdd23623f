#include "bench/evidence_floor.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_compiler_options.h"
#include "OrvanSpineCore/internal/store_terms.h"
#include "tests/support/test_store.h"

namespace orvan::bench {
namespace {

constexpr auto& options = AttentionEvidenceCompilerOptions::defaults;

constexpr std::array tables{"person",
                            "interaction",
                            "interaction_participant",
                            "identity_membership",
                            "thread",
                            "source_event",
                            "open_loop",
                            "user_correction",
                            "claim",
                            "claim_evidence",
                            "source_progress_projection",
                            "exclusion_rule",
                            "deletion_tombstone"};

void require(bool holds, sqlite3* connection) {
  if (!holds) {
    std::fprintf(stderr, "The floor's connection failed: %s\n", sqlite3_errmsg(connection));
    std::exit(1); // NOLINT(concurrency-mt-unsafe): no other thread runs here.
  }
}

void execute(const char* statement, sqlite3* connection) {
  require(sqlite3_exec(connection, statement, nullptr, nullptr, nullptr) == SQLITE_OK, connection);
}

/// One run of a statement, reset at its end.
class Run {
 public:
  explicit Run(sqlite3_stmt* statement) : statement_(statement) {}
  ~Run() { sqlite3_reset(statement_); }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  /// The text must outlive the run.
  Run& with(std::string_view text) {
    sqlite3_bind_text(statement_, ++position_, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    return *this;
  }
  Run& with(std::int64_t number) {
    sqlite3_bind_int64(statement_, ++position_, number);
    return *this;
  }

  bool next() {
    const int code = sqlite3_step(statement_);
    require(code == SQLITE_ROW || code == SQLITE_DONE, sqlite3_db_handle(statement_));
    return code == SQLITE_ROW;
  }

  /// Without an address for NULL.
  std::string_view view(int column) const noexcept {
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
    return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement_, column))};
  }
  bool has(int column) const noexcept { return view(column).data() != nullptr; }
  std::string text(int column) const { return std::string{view(column)}; }

 private:
  sqlite3_stmt* statement_;
  int position_ = 0;
};

void runOnce(sqlite3_stmt* statement) {
  Run(statement).next();
}

/// A read transaction for a scope.
class Read {
 public:
  Read(sqlite3_stmt* begin, sqlite3_stmt* commit) : commit_(commit) { runOnce(begin); }
  ~Read() { runOnce(commit_); }
  Read(const Read&) = delete;
  Read& operator=(const Read&) = delete;

 private:
  sqlite3_stmt* commit_;
};

} // namespace

EvidenceFloor::EvidenceFloor(const std::filesystem::path& file, const Statements& statements) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &opened,
                                   SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
  connection_.reset(opened);
  require(code == SQLITE_OK, opened);
  sqlite3_busy_timeout(opened, 5000);
  const auto key = KeyInMemory{}.bytes();
  require(sqlite3_key(opened, key.bytes().data(), static_cast<int>(key.size())) == SQLITE_OK, opened);
  for (const char* setting : internal::termsOf(StoreRole::evidenceCompiler).preparation) {
    execute(setting, opened);
  }
  for (const char* statement : {"PRAGMA cache_size = -65536", "BEGIN", "PRAGMA cipher_version",
                                "SELECT count(*) FROM sqlite_master", "COMMIT"}) {
    execute(statement, opened);
  }
  begin_ = prepare("BEGIN");
  commit_ = prepare("COMMIT");
  schemaCheck_ = prepare(statements.schemaCheck);
  restrictions_ = prepare(statements.restrictions);
  openThreads_ = prepare(statements.openThreads);
  upcomingInteractions_ = prepare(statements.upcomingInteractions);
  history_ = prepare(statements.history);
  commitments_ = prepare(statements.commitments);
  accounts_ = prepare(statements.accounts);
  const auto opening = statements.freshness.find("(?") + 1;
  freshnessUntilAccounts_ = statements.freshness.substr(0, opening);
  freshnessAfterAccounts_ = statements.freshness.substr(statements.freshness.find(')', opening));
  for (const auto& correction : statements.corrections) {
    corrections_.push_back(prepare(correction));
  }
}

EvidenceFloor::Statement EvidenceFloor::prepare(const std::string& sql) const {
  sqlite3_stmt* statement = nullptr;
  const int code = sqlite3_prepare_v3(connection_.get(), sql.data(), static_cast<int>(sql.size()),
                                      SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  require(code == SQLITE_OK, connection_.get());
  return Statement{statement};
}

bool EvidenceFloor::hasTables() {
  const Read read(begin_.get(), commit_.get());
  return std::ranges::all_of(tables, [this](const char* table) { return Run(schemaCheck_.get()).with(table).next(); });
}

std::vector<OpenThreadEvidence> EvidenceFloor::openThreads(const std::string& personKey, const std::string& now) {
  const Read read(begin_.get(), commit_.get());
  std::vector<OpenThreadEvidence> found;
  runOnce(restrictions_.get());
  Run run(openThreads_.get());
  run.with(personKey).with(now).with(now).with(options.maxOpenThreadsPerPerson());
  while (run.next()) {
    if (run.has(0) && run.has(1) && run.has(2) && run.has(3) && run.has(4)) {
      found.emplace_back(run.text(0), run.text(1), run.text(2), run.text(3), run.text(4));
    }
  }
  return found;
}

std::vector<UpcomingInteractionEvidence> EvidenceFloor::upcomingInteractions(const std::string& personKey,
                                                                             const std::string& now,
                                                                             const std::string& windowEnd) {
  const Read read(begin_.get(), commit_.get());
  std::vector<UpcomingInteractionEvidence> found;
  runOnce(restrictions_.get());
  Run run(upcomingInteractions_.get());
  run.with(personKey).with(now).with(windowEnd).with(options.maxUpcomingInteractionsPerPerson());
  while (run.next()) {
    if (run.has(0) && run.has(1) && run.has(2) && run.has(3) && run.has(4)) {
      found.emplace_back(run.text(0), run.text(1), run.text(2), run.text(3), run.text(4));
    }
  }
  return found;
}

std::vector<ChangedContextDetector::TimestampedInteraction> EvidenceFloor::history(const std::string& personKey) {
  const Read read(begin_.get(), commit_.get());
  std::vector<ChangedContextDetector::TimestampedInteraction> found;
  runOnce(restrictions_.get());
  Run run(history_.get());
  run.with(personKey);
  while (run.next()) {
    const auto id = run.view(0);
    const auto occurredAt = run.view(1);
    if (id.data() != nullptr && occurredAt.data() != nullptr) {
      found.emplace_back(std::string{id}, std::string{occurredAt});
    }
  }
  return found;
}

std::vector<CommitmentEvidence> EvidenceFloor::commitments(const std::string& personKey) {
  const Read read(begin_.get(), commit_.get());
  std::vector<CommitmentEvidence> found;
  runOnce(restrictions_.get());
  Run run(commitments_.get());
  run.with(personKey).with(options.maxCommitmentsPerPerson());
  while (run.next()) {
    if (run.has(0) && run.has(1) && run.has(2) && run.has(3)) {
      found.emplace_back(run.text(0), run.text(1), run.text(3), run.text(2));
    }
  }
  return found;
}

std::vector<SourceFreshnessEvidence> EvidenceFloor::freshness(const std::string& personKey) {
  const Read read(begin_.get(), commit_.get());
  std::vector<std::string> accounts;
  runOnce(restrictions_.get());
  Run run(accounts_.get());
  run.with(personKey);
  while (run.next()) {
    accounts.push_back(run.text(0));
  }
  std::vector<SourceFreshnessEvidence> found;
  if (!accounts.empty()) {
    addFreshness(accounts, found);
  }
  return found;
}

void EvidenceFloor::addFreshness(const std::vector<std::string>& accounts,
                                 std::vector<SourceFreshnessEvidence>& freshness) {
  freshness_.resize(std::max(freshness_.size(), accounts.size() + 1));
  auto& statement = freshness_[accounts.size()];
  if (statement == nullptr) {
    std::string placeholders = "?";
    for (std::size_t account = 1; account < accounts.size(); ++account) {
      placeholders += ", ?";
    }
    statement = prepare(freshnessUntilAccounts_ + placeholders + freshnessAfterAccounts_);
  }
  Run run(statement.get());
  for (const auto& account : accounts) {
    run.with(account);
  }
  while (run.next()) {
    if (run.has(0) && run.has(1) && run.has(2)) {
      const auto state = run.text(2);
      freshness.emplace_back(run.text(0), run.text(1), state == "current" || state == "stale" ? state : "unknown",
                             run.has(3) ? std::optional{run.text(3)} : std::nullopt);
    }
  }
}

std::optional<std::string> EvidenceFloor::lastCorrection(const std::string& personKey, const std::string& windowStart,
                                                         std::int64_t& count) {
  const Read read(begin_.get(), commit_.get());
  std::optional<std::string> last;
  for (const auto& statement : corrections_) {
    Run run(statement.get());
    run.with(personKey);
    while (run.next()) {
      auto createdAt = run.text(0);
      count += createdAt >= windowStart ? 1 : 0;
      if (!last || *last < createdAt) {
        last = std::move(createdAt);
      }
    }
  }
  return last;
}

AttentionEvidenceBundle EvidenceFloor::compile(const std::string& personKey, Instant asOf) {
  const auto now = formatInternetDateTime(asOf);
  const auto windowEnd = formatInternetDateTime(instantByAddingDays(asOf, options.upcomingInteractionWindowDays()));
  const auto windowStart = formatInternetDateTime(instantBySubtractingDays(asOf, options.recentWindowDays()));
  if (!hasTables()) {
    return {personKey, now, options.recentWindowDays(), {}, {}, {}, {}, {}, {}, 0};
  }
  auto threads = openThreads(personKey, now);
  auto meetings = upcomingInteractions(personKey, now, windowEnd);
  auto resumption =
      ChangedContextDetector::detectResumption(history(personKey), asOf, options.quietPeriodThresholdDays(),
                                               options.recentWindowDays(), options.maxResumedInteractionIDsPerBundle());
  auto loops = commitments(personKey);
  auto fresh = freshness(personKey);
  std::int64_t corrections = 0;
  auto last = lastCorrection(personKey, windowStart, corrections);
  return {personKey,
          now,
          options.recentWindowDays(),
          std::move(threads),
          std::move(meetings),
          std::move(resumption),
          std::move(loops),
          std::move(fresh),
          std::move(last),
          corrections};
}

std::vector<AttentionEvidenceBundle> EvidenceFloor::compileAll(std::vector<std::string> personKeys, Instant asOf) {
  std::ranges::sort(personKeys);
  std::vector<AttentionEvidenceBundle> bundles;
  for (const auto& personKey : personKeys) {
    auto bundle = compile(personKey, asOf);
    if (!bundle.isEmpty()) {
      bundles.push_back(std::move(bundle));
    }
  }
  return bundles;
}

} // namespace orvan::bench
