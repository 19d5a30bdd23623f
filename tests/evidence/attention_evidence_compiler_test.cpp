#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/co_spawn.hpp>
#include <boost/asio/use_future.hpp>
#include <fstream>
#include <future>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanStore/store_error.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

const Instant asOf = *parseInternetDateTime("2026-03-05T14:07:09Z");

using Options = AttentionEvidenceCompilerOptions;

/// Lists the people it was given, or throws.
class FixedProjection final : public ProjectionReader {
 public:
  explicit FixedProjection(std::vector<std::string> keys = {}) : keys_(std::move(keys)) {}

  Task<Projection> project(std::int64_t minimumInteractions) override {
    asked_ = minimumInteractions;
    if (fault) {
      throw Error(fault, "listing people");
    }
    std::vector<ProjectedPerson> people;
    people.reserve(keys_.size());
    for (const auto& key : keys_) {
      people.emplace_back(key, "");
    }
    co_return Projection{std::move(people)};
  }

  std::int64_t asked() const noexcept { return asked_; }
  std::error_code fault;

 private:
  std::vector<std::string> keys_;
  std::int64_t asked_ = 0;
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

AttentionEvidenceCompiler makeCompiler(const std::filesystem::path& file, std::shared_ptr<const CredentialSource> key,
                                       std::shared_ptr<ProjectionReader> people = std::make_shared<FixedProjection>(),
                                       Options options = Options::defaults) {
  return {file, CredentialVault{std::move(key)}, std::move(people), options};
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

TEST(OpeningTheStore, CompilerMadeBeforeThereIsAStoreNeverLooksAgain) {
  TestStore store;
  store.run("INSERT INTO user_correction VALUES ('uc', 'person', 'ana', '2026-03-01T10:00:00Z')");
  store.run("PRAGMA wal_checkpoint(TRUNCATE)");
  const auto missing = store.file().parent_path() / "later.db";
  const auto key = std::make_shared<KeyInMemory>();
  const auto people = std::make_shared<FixedProjection>(std::vector<std::string>{"ana"});
  auto compiler = makeCompiler(missing, key, people);
  EXPECT_EQ(compile(compiler), emptyBundle("ana"));
  std::filesystem::copy_file(store.file(), missing);
  EXPECT_EQ(compile(compiler), emptyBundle("ana"));
  EXPECT_THAT(compileAll(compiler), IsEmpty());
  EXPECT_EQ(people->asked(), 1);
  EXPECT_EQ(key->timesAsked(), 0);
  auto second = makeCompiler(missing, key);
  EXPECT_FALSE(compile(second).isEmpty());
}

class CompilingOnePerson : public testing::Test {
 protected:
  CompilingOnePerson() {
    store.addPerson("ana");
    store.add(TestInteraction{.id = "old", .at = "2025-12-01T10:00:00Z", .thread = "t1"});
    store.add(TestInteraction{.id = "new", .at = "2026-03-01T10:00:00Z", .thread = "t1"});
    store.add(TestInteraction{.id = "m",
                              .at = "2026-03-09T10:00:00Z",
                              .thread = "t2",
                              .direction = "mutual",
                              .kind = "meeting",
                              .account = "calendar"});
    store.add(TestOpenLoop{.id = "ol", .at = "2026-02-01T10:00:00Z"});
    store.run("INSERT INTO source_progress_projection VALUES ('mail', 'sync', 'stale', NULL)");
    store.run("INSERT INTO user_correction VALUES ('uc', 'person', 'ana', '2026-03-02T10:00:00Z')");
  }

  AttentionEvidenceCompiler connected() { return makeCompiler(store.file(), std::make_shared<KeyInMemory>()); }

  TestStore store;
};

TEST_F(CompilingOnePerson, PutsEveryKindOfEvidenceInItsPlace) {
  auto compiler = connected();
  EXPECT_EQ(compile(compiler),
            AttentionEvidenceBundle(
                "ana", "2026-03-05T14:07:09Z", 30, {{"t1", "mail", "new", "event-new", "2026-03-01T10:00:00Z"}},
                {{"m", "t2", "event-m", "calendar", "2026-03-09T10:00:00Z"}},
                ChangedContextEvidence{21, "2025-12-01T10:00:00Z", "2026-03-01T10:00:00Z", {"new", "m"}, 2},
                {{"ol", "promise", "2026-02-01T10:00:00Z", "evidence-ol"}}, {{"mail", "sync", "stale", std::nullopt}},
                "2026-03-02T10:00:00Z", 1));
  EXPECT_EQ(compile(compiler, "stranger"), emptyBundle("stranger"));
}

TEST_F(CompilingOnePerson, UnreadableTimestampCostsOnlyTheChangedContext) {
  store.run("UPDATE interaction SET occurred_at = '2025-12-01T10:00:00.5Z' WHERE id = 'old'");
  auto compiler = connected();
  const auto bundle = compile(compiler);
  EXPECT_FALSE(bundle.changedContext());
  EXPECT_EQ(bundle.openThreads().size(), 1U);
}

TEST_F(CompilingOnePerson, SeesWhatOthersWroteSinceItWasOpened) {
  auto compiler = connected();
  static_cast<void>(compile(compiler));
  store.add(TestInteraction{.id = "answer", .at = "2026-03-04T10:00:00Z", .thread = "t1", .direction = "outbound"});
  EXPECT_THAT(compile(compiler).openThreads(), IsEmpty());
}

TEST_F(CompilingOnePerson, StoreThatLacksATableHoldsNoEvidence) {
  auto compiler = connected();
  store.run("DROP TABLE deletion_tombstone");
  EXPECT_EQ(compile(compiler), emptyBundle("ana"));
  auto second = connected();
  EXPECT_EQ(compile(second), emptyBundle("ana"));
}

TEST_F(CompilingOnePerson, DamagedPagesAreAnErrorOfTheStore) {
  store.run("PRAGMA wal_checkpoint(TRUNCATE)");
  auto compiler = connected();
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

  std::vector<std::string> compiledKeys(std::vector<std::string> projected, Options options = Options::defaults) {
    auto compiler = makeCompiler(store.file(), std::make_shared<KeyInMemory>(),
                                 std::make_shared<FixedProjection>(std::move(projected)), options);
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
  for (int number = 0; number < 250; ++number) {
    people.push_back("p" + std::to_string(1000 + number * 7 % 250));
    addCorrection(people.back());
  }
  auto expected = people;
  std::ranges::sort(expected);
  expected.resize(200);
  EXPECT_EQ(compiledKeys(people), expected);
}

TEST_F(CompilingEveryone, CapsThePeopleLookedAtAndNotTheBundles) {
  addCorrection("b");
  addCorrection("Z");
  EXPECT_THAT(compiledKeys({"b", "a", "b", "Z"}), ElementsAre("Z", "b", "b"));
  EXPECT_THAT(compiledKeys({"b", "a", "Z"}, withCap(2)), ElementsAre("Z"));
  EXPECT_THAT(compiledKeys({"b"}, withCap(0)), IsEmpty());
  EXPECT_THAT(compiledKeys({}), IsEmpty());
}

TEST_F(CompilingEveryone, LeavesOutThoseOfWhomOnlySourceFreshnessIsKnown) {
  store.addPerson("ana");
  store.add(TestInteraction{.id = "i", .at = "2026-03-01T10:00:00Z", .direction = "outbound"});
  store.run("INSERT INTO source_progress_projection VALUES ('mail', 'sync', 'stale', NULL)");
  EXPECT_THAT(compiledKeys({"ana"}), IsEmpty());
}

TEST_F(CompilingEveryone, PassesTheProjectionsErrorOn) {
  const auto people = std::make_shared<FixedProjection>(std::vector<std::string>{"ana"});
  people->fault = std::make_error_code(std::errc::timed_out);
  auto compiler = makeCompiler(store.file(), std::make_shared<KeyInMemory>(), people);
  try {
    compileAll(compiler);
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), std::errc::timed_out);
  }
  EXPECT_EQ(people->asked(), 1);
}

TEST_F(CompilingEveryone, GivesUpItsTurnWhileThePeopleAreListed) {
  addCorrection("ana");
  const auto people = std::make_shared<HeldProjection>();
  auto compiler = makeCompiler(store.file(), std::make_shared<KeyInMemory>(), people);
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

TEST_F(CompilingEveryone, EndsTheProgramOnANegativeCap) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(compiledKeys({"ana"}, withCap(-1)), "maxPeopleGlobalCap must not be negative");
}

} // namespace
} // namespace orvan
