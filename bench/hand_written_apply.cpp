#include "hand_written_apply.h"

#include <stdexcept>

#include "OrvanSpineCore/credential_vault.h"
#include "OrvanSpineCore/internal/store_terms.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

constexpr std::array texts{
    "BEGIN IMMEDIATE",
    "SELECT candidate_key, state, snoozed_until FROM relationship_attention_disposition WHERE candidate_key = ?",
    R"sql(INSERT INTO relationship_attention_candidate
  (candidate_key, person_id, kind, why_now_code, defining_event_at, due_at, expires_at, generator_version, created_at)
VALUES (?, ?, ?, ?, ?, NULL, NULL, ?, ?)
ON CONFLICT(candidate_key) DO UPDATE SET
  person_id = excluded.person_id, kind = excluded.kind, why_now_code = excluded.why_now_code,
  defining_event_at = excluded.defining_event_at, generator_version = excluded.generator_version)sql",
    "INSERT OR IGNORE INTO relationship_attention_candidate_evidence (candidate_key, reference_kind, reference_id) "
    "VALUES (?, ?, ?)",
    R"sql(INSERT INTO relationship_attention_disposition
  (candidate_key, person_id, state, snoozed_until, created_at, updated_at)
VALUES (?, ?, ?, ?, ?, ?)
ON CONFLICT(candidate_key) DO UPDATE SET
  person_id = excluded.person_id, state = excluded.state, snoozed_until = excluded.snoozed_until, updated_at = excluded.updated_at)sql",
    "COMMIT",
};

constexpr const char* now = "2026-03-05T14:07:09Z";

void require(bool holds) {
  if (!holds) {
    throw std::runtime_error("a hand-written statement failed");
  }
}

} // namespace

HandWrittenApply::HandWrittenApply(const std::filesystem::path& file) {
  const auto key = KeyInMemory{}.loadLocalStoreKey();
  require(sqlite3_open_v2(file.c_str(), &handle_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr) == SQLITE_OK);
  require(sqlite3_key(handle_, key->bytes().data(), static_cast<int>(key->size())) == SQLITE_OK);
  for (const char* statement : internal::termsOf(StoreRole::dispositionStore).preparation) {
    require(sqlite3_exec(handle_, statement, nullptr, nullptr, nullptr) == SQLITE_OK);
  }
  require(sqlite3_exec(handle_, "PRAGMA cache_size = -65536", nullptr, nullptr, nullptr) == SQLITE_OK);
  for (std::size_t step = 0; step < texts.size(); ++step) {
    require(sqlite3_prepare_v3(handle_, texts.at(step), -1, SQLITE_PREPARE_PERSISTENT, &statements_.at(step),
                               nullptr) == SQLITE_OK);
  }
}

HandWrittenApply::~HandWrittenApply() {
  for (auto* statement : statements_) {
    sqlite3_finalize(statement);
  }
  sqlite3_close(handle_);
}

void HandWrittenApply::bind(Step step, int position, std::string_view text) {
  sqlite3_bind_text(statements_.at(step), position, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

void HandWrittenApply::run(Step step) {
  require(sqlite3_step(statements_.at(step)) == SQLITE_DONE);
  sqlite3_reset(statements_.at(step));
}

void HandWrittenApply::dismiss(const Row& row) {
  run(begin);
  bind(select, 1, row.itemKey);
  run(select);
  int position = 0;
  for (const std::string_view text :
       {row.itemKey, row.personKey, std::string_view{"counterpart_request"}, std::string_view{"openThread"},
        std::string_view{"2026-03-01T10:00:00Z"}, std::string_view{"catchup-apply-time-v1"}, std::string_view{now}}) {
    bind(candidate, ++position, text);
  }
  run(candidate);
  for (const auto& reference : row.references) {
    bind(evidence, 1, row.itemKey);
    bind(evidence, 2, reference.kind);
    bind(evidence, 3, reference.identifier);
    run(evidence);
  }
  bind(disposition, 1, row.itemKey);
  bind(disposition, 2, row.personKey);
  bind(disposition, 3, "dismissed");
  sqlite3_bind_null(statements_.at(disposition), 4);
  bind(disposition, 5, now);
  bind(disposition, 6, now);
  run(disposition);
  run(commit);
}

} // namespace orvan
