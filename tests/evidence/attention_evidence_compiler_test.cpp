#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"

#include <gmock/gmock.h>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_future.hpp>
#include <fstream>
#include <future>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/store_error.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Options = AttentionEvidenceCompilerOptions;

const Instant asOf = *parseInternetDateTime("2026-03-05T14:07:09Z");

/// Lists the people it was given.
class FixedProjection final : public ProjectionReader {
 public:
  explicit FixedProjection(const std::vector<std::string>& keys = {}) {
    for (const auto& key : keys) {
      people_.emplace_back(key, "");
    }
  }

  Task<Projection> project(std::int64_t minimumInteractions) override {
    asked = minimumInteractions;
    co_return Projection{people_};
  }

  std::int64_t asked = 0;

 private:
  std::vector<ProjectedPerson> people_;
};

/// Answers when the test says so.
class HeldProjection final : public ProjectionReader {
 public:
  Task<Projection> project(std::int64_t /*minimumInteractions*/) override { return runOn(pool_, answer()); }

  std::promise<void> asked;
  std::promise<void> released;

 private:
  Task<Projection> answer() {
    asked.set_value();
    released.get_future().wait();
    co_return Projection{{{"ana", "Ana"}}};
  }

  boost::asio::thread_pool threads_{1};
  Executor pool_ = threads_.get_executor();
};

AttentionEvidenceCompiler makeCompiler(const std::filesystem::path& file,
                                       std::shared_ptr<ProjectionReader> people = std::make_shared<FixedProjection>(),
                                       Options options = Options::defaults) {
  return {file, CredentialVault{std::make_shared<KeyInMemory>()}, std::move(people), options};
}

AttentionEvidenceBundle compile(AttentionEvidenceCompiler& compiler, const char* person = "ana") {
  return waitFor(compiler.executor(), compiler.compile(person, asOf));
}

std::vector<AttentionEvidenceBundle> compileAll(AttentionEvidenceCompiler& compiler) {
  return waitFor(compiler.executor(), compiler.compileAll(asOf));
}

AttentionEvidenceBundle emptyBundle(const char* person) {
  return {person, "2026-03-05T14:07:09Z", 30, {}, {}, {}, {}, {}, {}, 0};
}

class CompilingOnePerson : public testing::Test {
 protected:
  CompilingOnePerson() {
    store.addPerson("ana");
    store.add(TestInteraction{.id = "old", .at = "2025-12-01T10:00:00Z", .thread = "t1"});
    store.add(TestInteraction{.id = "new", .at = "2026-03-01T10:00:00Z", .thread = "t1"});
    store.add(TestInteraction{.id = "m", .at = "2026-03-09T10:00:00Z", .thread = "t2", .kind = "meeting"});
    store.add(TestOpenLoop{.id = "ol", .at = "2026-02-01T10:00:00Z"});
    store.run("INSERT INTO source_progress_projection VALUES ('mail', 'sync', 'stale', NULL)");
    store.run("INSERT INTO user_correction VALUES ('uc', 'person', 'ana', '2026-03-02T10:00:00Z')");
  }

  TestStore store;
  AttentionEvidenceCompiler compiler = makeCompiler(store.file());
};

TEST_F(CompilingOnePerson, PutsEveryKindOfEvidenceInItsPlace) {
  EXPECT_EQ(compile(compiler),
            AttentionEvidenceBundle(
                "ana", "2026-03-05T14:07:09Z", 30, {{"t1", "mail", "new", "event-new", "2026-03-01T10:00:00Z"}},
                {{"m", "t2", "event-m", "mail", "2026-03-09T10:00:00Z"}},
                ChangedContextEvidence{21, "2025-12-01T10:00:00Z", "2026-03-01T10:00:00Z", {"new", "m"}, 2},
                {{"ol", "promise", "2026-02-01T10:00:00Z", "evidence-ol"}}, {{"mail", "sync", "stale", std::nullopt}},
                "2026-03-02T10:00:00Z", 1));
  EXPECT_EQ(compile(compiler, "stranger"), emptyBundle("stranger"));
}

TEST_F(CompilingOnePerson, SeesWhatOthersWroteSinceItWasOpened) {
  store.run("UPDATE interaction SET occurred_at = '2025-12-01T10:00:00.5Z' WHERE id = 'old'");
  EXPECT_FALSE(compile(compiler).changedContext()) << "a timestamp that cannot be read costs this and no more";
  EXPECT_EQ(compile(compiler).openThreads().size(), 1U);
  store.add(TestInteraction{.id = "answer", .at = "2026-03-04T10:00:00Z", .thread = "t1", .direction = "outbound"});
  EXPECT_THAT(compile(compiler).openThreads(), IsEmpty());
}

TEST_F(CompilingOnePerson, StoreThatLacksATableHoldsNoEvidence) {
  const auto whole = compile(compiler);
  for (const std::string table : {"person", "interaction", "interaction_participant", "identity_membership", "thread",
                                  "source_event", "open_loop", "user_correction", "claim", "claim_evidence",
                                  "source_progress_projection", "exclusion_rule", "deletion_tombstone"}) {
    store.run("ALTER TABLE " + table + " RENAME TO gone");
    EXPECT_EQ(compile(compiler), emptyBundle("ana")) << table;
    store.run("ALTER TABLE gone RENAME TO " + table);
  }
  EXPECT_EQ(compile(compiler), whole);
}

TEST_F(CompilingOnePerson, CompilerMadeBeforeThereIsAStoreNeverLooksAgain) {
  store.run("PRAGMA wal_checkpoint(TRUNCATE)");
  const auto missing = store.file().parent_path() / "later.db";
  const auto people = std::make_shared<FixedProjection>(std::vector<std::string>{"ana"});
  auto early = makeCompiler(missing, people);
  EXPECT_EQ(compile(early), emptyBundle("ana"));
  std::filesystem::copy_file(store.file(), missing);
  EXPECT_EQ(compile(early), emptyBundle("ana"));
  EXPECT_THAT(compileAll(early), IsEmpty());
  EXPECT_EQ(people->asked, 1);
  auto second = makeCompiler(missing);
  EXPECT_FALSE(compile(second).isEmpty());
}

TEST_F(CompilingOnePerson, DamagedPagesAreAnErrorOfTheStore) {
  store.run("PRAGMA wal_checkpoint(TRUNCATE)");
  constexpr std::size_t page = 4096;
  std::fstream file(store.file(), std::ios::in | std::ios::out | std::ios::binary);
  for (std::size_t offset = page; offset < std::filesystem::file_size(store.file()); offset += page) {
    file.seekp(static_cast<std::streamoff>(offset + page / 2)).write("damage", 6);
  }
  file.close();
  EXPECT_THROW(compile(compiler), StoreError);
  EXPECT_THROW(compile(compiler), StoreError) << "and again, not a crash or a forgotten transaction";
}

class CompilingEveryone : public testing::Test {
 protected:
  void addCorrection(const std::string& person) {
    store.run("INSERT INTO user_correction VALUES (?, 'person', ?, '2026-03-01T10:00:00Z')", person, person);
  }

  std::vector<std::string> compiledKeys(const std::vector<std::string>& projected,
                                        Options options = Options::defaults) {
    auto compiler = makeCompiler(store.file(), std::make_shared<FixedProjection>(projected), options);
    std::vector<std::string> keys;
    for (const auto& bundle : compileAll(compiler)) {
      EXPECT_EQ(bundle.generatedAt(), "2026-03-05T14:07:09Z");
      keys.push_back(bundle.personKey());
    }
    return keys;
  }

  static Options withCap(std::int64_t people) { return Options{14, 21, 30, 5, 5, 5, 5, people}; }

  TestStore store;
};

TEST_F(CompilingEveryone, LooksAtTheFirstTwoHundredInKeyOrder) {
  std::vector<std::string> people;
  for (int number = 1249; number >= 1000; --number) {
    addCorrection(people.emplace_back("p" + std::to_string(number)));
  }
  const std::vector<std::string> expected(people.rbegin(), people.rbegin() + 200);
  EXPECT_EQ(compiledKeys(people), expected);
}

TEST_F(CompilingEveryone, CapsThePeopleLookedAtAndNotTheBundles) {
  addCorrection("b");
  addCorrection("Z");
  EXPECT_THAT(compiledKeys({"b", "a", "b", "Z"}), ElementsAre("Z", "b", "b"));
  EXPECT_THAT(compiledKeys({"b", "a", "Z"}, withCap(2)), ElementsAre("Z"));
  EXPECT_THAT(compiledKeys({"b"}, withCap(0)), IsEmpty());
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(compiledKeys({"b"}, withCap(-1)), "maxPeopleGlobalCap must not be negative");
}

TEST_F(CompilingEveryone, LeavesOutThoseOfWhomOnlySourceFreshnessIsKnown) {
  store.addPerson("ana");
  store.add(TestInteraction{.id = "i", .at = "2026-03-01T10:00:00Z", .direction = "outbound"});
  store.run("INSERT INTO source_progress_projection VALUES ('mail', 'sync', 'stale', NULL)");
  EXPECT_THAT(compiledKeys({"ana"}), IsEmpty());
}

TEST_F(CompilingEveryone, GivesUpItsTurnWhileThePeopleAreListed) {
  addCorrection("ana");
  const auto people = std::make_shared<HeldProjection>();
  auto compiler = makeCompiler(store.file(), people);
  auto everyone =
      boost::asio::co_spawn(compiler.executor(), resultInOptional(compiler.compileAll(asOf)), boost::asio::use_future);
  people->asked.get_future().wait();
  auto one = boost::asio::co_spawn(compiler.executor(), resultInOptional(compiler.compile("ana", asOf)),
                                   boost::asio::use_future);
  const auto outcome = one.wait_for(30s);
  people->released.set_value();
  EXPECT_EQ(outcome, std::future_status::ready);
  EXPECT_THAT(*everyone.get(), ElementsAre(*one.get()));
}

} // namespace
} // namespace orvan
