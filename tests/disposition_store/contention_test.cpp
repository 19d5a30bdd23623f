#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/encrypted_store.h"
#include "tests/support/test_store.h"
#include "writer_process.h"

namespace orvan {
namespace {

/// A shared disk may keep a single sync waiting for seconds, and with it everyone else's turn: by day the store lies
/// in memory, where nothing but the other processes is waited for.
ScratchFolder folderForManyWriters() {
  const std::filesystem::path memory = "/dev/shm";
  return ScratchFolder{isNightly() || !std::filesystem::exists(memory) ? std::filesystem::temp_directory_path()
                                                                       : memory};
}

constexpr int processes = 10;
constexpr int actionsEach = 40;

/// What the processes were told about each contested place.
using StatesByPlace = std::map<int, std::set<std::string>>;

/// Has the processes work at the same time on items of their own and on the contested ones, in opposite directions.
StatesByPlace runRound(const std::filesystem::path& file, int round, AttentionDispositionStore& reader) {
  std::list<WriterProcess> writers;
  for (int process = 0; process < processes; ++process) {
    const int first = (round * processes + process) * actionsEach;
    writers.emplace_back(file, first, actionsEach, process % 2 == 0 ? "dismiss" : "resolve");
  }
  StatesByPlace told;
  for (auto& writer : writers) {
    for (int place = 0; const auto acknowledgement = writer.nextAcknowledgement(); ++place) {
      told[place].insert(acknowledgement->substr(acknowledgement->find(' ') + 1));
      waitFor(reader.executor(), reader.records(numberedPerson(place)));
    }
    EXPECT_TRUE(writer.succeeded()) << "no writer may meet a lock that outlasts its patience";
  }
  return told;
}

void expectAgreement(const StatesByPlace& told, AttentionDispositionStore& reader) {
  ASSERT_EQ(told.size(), static_cast<std::size_t>(actionsEach));
  std::map<std::string, std::string> stored;
  for (const auto& record : waitFor(reader.executor(), reader.records(contestedItem(0).personKey()))) {
    stored.emplace(record.itemKey(), caseName(record.state().kind()));
  }
  for (const auto& [place, states] : told) {
    EXPECT_THAT(states, testing::ElementsAre(stored[contestedItem(place).itemKey()])) << place;
  }
}

TEST(TenProcesses, LoseNoActionAndAgreeOnContestedItemsWhileAnotherReads) {
  deriveKeysQuickly();
  const ScratchFolder folder = folderForManyWriters();
  const auto file = folder.path() / "store.db";
  createStore(file);
  AttentionDispositionStore reader(file, CredentialVault{std::make_shared<KeyInMemory>()});
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes{isNightly() ? 1 : 0};
  int rounds = 0;
  do {
    expectAgreement(runRound(file, rounds, reader), reader);
    ++rounds;
  } while (std::chrono::steady_clock::now() < end && !testing::Test::HasFailure());
  Connection connection(file, keyedConfiguration());
  EXPECT_THAT(damage(connection), testing::IsEmpty());
  EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_disposition"),
            rounds * processes * actionsEach + actionsEach);
}

} // namespace
} // namespace orvan
