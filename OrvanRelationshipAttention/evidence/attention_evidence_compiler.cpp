#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"

#include <algorithm>
#include <array>
#include <boost/asio/strand.hpp>
#include <optional>
#include <utility>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/precondition.h"
#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"
#include "OrvanRelationshipAttention/evidence/values/changed_context_detector.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanStore/database_queue.h"

namespace orvan {
namespace {

constexpr std::array projectableTables{"person",
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

void rejectPlaintext(const std::filesystem::path& file) {
  try {
    EncryptedStore::examine(file, StoreRole::evidenceCompiler);
  } catch (const Error& error) {
    if (error.code() == EncryptedStoreError::plaintext) {
      throw Error(AttentionEvidenceCompilerError::plaintextDatabaseRejected, "opening the store for reading");
    }
    throw;
  }
}

std::unique_ptr<DatabaseQueue> openStoreIfThere(const std::filesystem::path& file, CredentialVault credentialVault) {
  rejectPlaintext(file);
  const EncryptedStore store(file, std::move(credentialVault));
  if (!store.exists()) {
    return nullptr;
  }
  try {
    return store.openQueue(StoreRole::evidenceCompiler);
  } catch (...) { // A vault may throw anything.
    throw Error(AttentionEvidenceCompilerError::cannotOpenEncryptedStore, "opening the store for reading");
  }
}

bool hasProjectableSchema(Connection& connection) {
  return std::ranges::all_of(projectableTables, [&connection](const char* table) {
    return connection.fetchOptionalText("SELECT name FROM sqlite_master WHERE type = 'table' AND name = ?", table)
        .has_value();
  });
}

AttentionEvidenceBundle emptyBundle(std::string personKey, std::string generatedAt,
                                    const AttentionEvidenceCompilerOptions& options) {
  return {std::move(personKey), std::move(generatedAt), options.recentWindowDays(), {}, {}, {}, {}, {}, {}, 0};
}

} // namespace

/// What the operations work on, one at a time: all but the construction runs on the strand.
class AttentionEvidenceCompiler::Desk {
 public:
  Desk(const std::filesystem::path& databaseURL, CredentialVault credentialVault,
       std::shared_ptr<ProjectionReader> observatory, const AttentionEvidenceCompilerOptions& options,
       const Executor& executor)
      : databaseURL_(databaseURL),
        database_(openStoreIfThere(databaseURL_, std::move(credentialVault))),
        observatory_(std::move(observatory)),
        options_(options),
        queries_(options),
        turn_(boost::asio::make_strand(executor)) {}

  static Task<AttentionEvidenceBundle> compileInTurn(const std::shared_ptr<Desk>& desk, std::string personKey,
                                                     Instant asOf) {
    return runOn(desk->turn_, compileOne(desk, std::move(personKey), asOf));
  }

  static Task<std::vector<AttentionEvidenceBundle>> compileAllInTurn(const std::shared_ptr<Desk>& desk, Instant asOf) {
    return runOn(desk->turn_, compileEveryone(desk, asOf));
  }

  static Task<void> releaseInTurn(const std::shared_ptr<Desk>& desk) { return runOn(desk->turn_, releaseMemory(desk)); }

 private:
  static Task<void> releaseMemory(std::shared_ptr<Desk> desk) {
    if (desk->database_ != nullptr) {
      desk->database_->withoutTransaction(
          [](Connection& connection) { connection.executeScript("PRAGMA shrink_memory"); });
    }
    co_return;
  }
  static Task<AttentionEvidenceBundle> compileOne(std::shared_ptr<Desk> desk, std::string personKey, Instant asOf) {
    co_return desk->compile(std::move(personKey), asOf);
  }

  static Task<std::vector<AttentionEvidenceBundle>> compileEveryone(std::shared_ptr<Desk> desk, Instant asOf) {
    const Projection projection = co_await desk->observatory_->project(1);
    co_return desk->compilePeople(projection, asOf);
  }

  AttentionEvidenceBundle compile(std::string personKey, Instant asOf);
  std::vector<AttentionEvidenceBundle> compilePeople(const Projection& projection, Instant asOf);
  std::vector<std::string> keysWithinCap(const Projection& projection) const;

  const std::filesystem::path databaseURL_;
  std::unique_ptr<DatabaseQueue> database_;
  std::shared_ptr<ProjectionReader> observatory_;
  AttentionEvidenceCompilerOptions options_;
  internal::EvidenceQueries queries_;
  boost::asio::strand<Executor> turn_;
};

AttentionEvidenceBundle AttentionEvidenceCompiler::Desk::compile(std::string personKey, Instant asOf) {
  auto generatedAt = formatInternetDateTime(asOf);
  if (database_ == nullptr || !database_->read(hasProjectableSchema)) {
    return emptyBundle(std::move(personKey), std::move(generatedAt), options_);
  }
  auto openThreads =
      database_->read([&](Connection& connection) { return queries_.fetchOpenThreads(personKey, asOf, connection); });
  auto upcomingInteractions = database_->read(
      [&](Connection& connection) { return queries_.fetchUpcomingInteractions(personKey, asOf, connection); });
  const auto history = database_->read([&](Connection& connection) {
    return internal::EvidenceQueries::fetchInteractionTimestamps(personKey, connection);
  });
  auto changedContext = ChangedContextDetector::detectResumption(history, asOf, options_.quietPeriodThresholdDays(),
                                                                 options_.recentWindowDays(),
                                                                 options_.maxResumedInteractionIDsPerBundle());
  auto commitments =
      database_->read([&](Connection& connection) { return queries_.fetchCommitments(personKey, connection); });
  auto sourceFreshness = database_->read(
      [&](Connection& connection) { return internal::EvidenceQueries::fetchSourceFreshness(personKey, connection); });
  auto corrections = database_->read(
      [&](Connection& connection) { return queries_.fetchUserCorrections(personKey, asOf, connection); });
  return {std::move(personKey),     std::move(generatedAt),          options_.recentWindowDays(),
          std::move(openThreads),   std::move(upcomingInteractions), std::move(changedContext),
          std::move(commitments),   std::move(sourceFreshness),      std::move(corrections.lastAt),
          corrections.countInWindow};
}

std::vector<std::string> AttentionEvidenceCompiler::Desk::keysWithinCap(const Projection& projection) const {
  precondition(options_.maxPeopleGlobalCap() >= 0, "maxPeopleGlobalCap must not be negative.");
  std::vector<std::string> keys;
  keys.reserve(projection.people().size());
  for (const auto& person : projection.people()) {
    keys.push_back(person.personKey());
  }
  std::ranges::sort(keys);
  keys.resize(std::min(keys.size(), static_cast<std::size_t>(options_.maxPeopleGlobalCap())));
  return keys;
}

std::vector<AttentionEvidenceBundle> AttentionEvidenceCompiler::Desk::compilePeople(const Projection& projection,
                                                                                    Instant asOf) {
  std::vector<AttentionEvidenceBundle> bundles;
  for (auto& key : keysWithinCap(projection)) {
    auto bundle = compile(std::move(key), asOf);
    if (!bundle.isEmpty()) {
      bundles.push_back(std::move(bundle));
    }
  }
  return bundles;
}

AttentionEvidenceCompiler::AttentionEvidenceCompiler(std::filesystem::path databaseURL, CredentialVault credentialVault,
                                                     std::shared_ptr<ProjectionReader> observatory,
                                                     AttentionEvidenceCompilerOptions options)
    : desk_(std::make_shared<Desk>(databaseURL, std::move(credentialVault), std::move(observatory), options,
                                   work_.get())) {}

AttentionEvidenceCompiler::AttentionEvidenceCompiler(std::filesystem::path databaseURL, CredentialVault credentialVault,
                                                     std::shared_ptr<ProjectionReader> observatory,
                                                     AttentionEvidenceCompilerOptions options, Executor executor)
    : work_(std::move(executor)),
      desk_(std::make_shared<Desk>(databaseURL, std::move(credentialVault), std::move(observatory), options,
                                   work_.get())) {}

AttentionEvidenceCompiler::~AttentionEvidenceCompiler() = default;

Task<AttentionEvidenceBundle> AttentionEvidenceCompiler::compile(std::string personKey, Instant asOf) {
  return Desk::compileInTurn(desk_, std::move(personKey), asOf);
}

Task<std::vector<AttentionEvidenceBundle>> AttentionEvidenceCompiler::compileAll(Instant asOf) {
  return Desk::compileAllInTurn(desk_, asOf);
}

Task<void> AttentionEvidenceCompiler::releaseMemory() {
  return Desk::releaseInTurn(desk_);
}

} // namespace orvan
