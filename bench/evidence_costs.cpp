#include "bench/evidence_costs.h"

#include <algorithm>
#include <utility>

#include "bench/seeded_store.h"
#include "tests/support/test_store.h"

namespace orvan::bench {
namespace {

Projection projectionOf(const std::vector<std::string>& keys) {
  std::vector<ProjectedPerson> people;
  people.reserve(keys.size());
  for (const auto& key : keys) {
    people.emplace_back(key, "");
  }
  return Projection{std::move(people)};
}

class GivenPeople final : public ProjectionReader {
 public:
  explicit GivenPeople(const std::vector<std::string>& keys) : projection_(projectionOf(keys)) {}

  Task<Projection> project(std::int64_t /*minimumInteractions*/) override { co_return projection_; }

 private:
  Projection projection_;
};

bool isOfATransaction(const std::string& text) noexcept {
  return text == "BEGIN" || text == "COMMIT";
}

} // namespace

LibrarySide::LibrarySide(const std::filesystem::path& file, const std::vector<std::string>& personKeys)
    : compiler_(file, CredentialVault{std::make_shared<KeyInMemory>()}, std::make_shared<GivenPeople>(personKeys),
                AttentionEvidenceCompilerOptions::defaults),
      handle_(ConnectionWatch::latest()) {}

AttentionEvidenceBundle LibrarySide::compile(const std::string& personKey) {
  return waitFor(compiler_.executor(), compiler_.compile(personKey, seededNow()));
}

std::vector<AttentionEvidenceBundle> LibrarySide::compileAll() {
  return waitFor(compiler_.executor(), compiler_.compileAll(seededNow()));
}

std::vector<AttentionEvidenceBundle> FloorSide::compileAll() {
  return floor_.compileAll(personKeys_, seededNow());
}

EvidenceFloor::Statements statementsOf(LibrarySide& library, const std::string& personKey) {
  const StatementLog log(library.handle());
  library.compile(personKey);
  auto texts = log.texts();
  std::erase_if(texts, isOfATransaction);
  const auto repeated = std::ranges::unique(texts);
  texts.erase(repeated.begin(), repeated.end());
  auto restrictions = texts.at(1);
  std::erase(texts, restrictions);
  return {texts.at(0),
          std::move(restrictions),
          texts.at(1),
          texts.at(2),
          texts.at(3),
          texts.at(4),
          texts.at(5),
          texts.at(6),
          {texts.at(7), texts.at(8), texts.at(9)}};
}

std::int64_t pageMisses(sqlite3* connection) {
  int misses = 0;
  int highest = 0;
  sqlite3_db_status(connection, SQLITE_DBSTATUS_CACHE_MISS, &misses, &highest, 0);
  return misses;
}

std::int64_t takeMachineSteps(sqlite3* connection) {
  std::int64_t steps = 0;
  for (auto* statement = sqlite3_next_stmt(connection, nullptr); statement != nullptr;
       statement = sqlite3_next_stmt(connection, statement)) {
    steps += sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_VM_STEP, 1);
  }
  return steps;
}

} // namespace orvan::bench
