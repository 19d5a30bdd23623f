#include <gmock/gmock.h>

#include <chrono>
#include <memory>
#include <random>
#include <string>
#include <thread>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/encrypted_store.h"
#include "tests/support/test_store.h"
#include "writer_process.h"

namespace orvan {
namespace {

/// Lets a writer go on from item `first` until a random moment. Returns how many items it acknowledged.
int writeUntilKilled(const std::filesystem::path& file, int first, std::mt19937& random) {
  constexpr int moreThanItCanReach = 100000;
  WriterProcess writer(file, first, moreThanItCanReach);
  int acknowledged = 0;
  const auto awaited = static_cast<int>(random() % 25);
  while (acknowledged < awaited && writer.nextAcknowledgement()) {
    ++acknowledged;
  }
  // Anywhere within the next actions, or within the opening when nothing was awaited.
  std::this_thread::sleep_for(std::chrono::microseconds{random() % 5000});
  writer.kill();
  while (const auto late = writer.nextAcknowledgement()) {
    EXPECT_EQ(*late, std::to_string(first + acknowledged));
    ++acknowledged;
  }
  EXPECT_FALSE(writer.succeeded()) << "it was to be killed";
  return acknowledged;
}

/// One more than the highest item in the store: an action may be on disk without having been acknowledged.
int itemsPresent(Connection& connection) {
  return static_cast<int>(
      connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_disposition").value_or(-1));
}

void expectSound(Connection& connection) {
  EXPECT_THAT(damage(connection), testing::IsEmpty());
  EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_candidate"),
            itemsPresent(connection));
  EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_disposition "
                                            "JOIN relationship_attention_candidate USING (candidate_key, person_id)"),
            itemsPresent(connection));
  EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_candidate_evidence"),
            3 * itemsPresent(connection));
}

void expectStates(const std::filesystem::path& file, int count) {
  AttentionDispositionStore store(file, CredentialVault{std::make_shared<KeyInMemory>()});
  int found = 0;
  for (int person = 0; person < std::min(count, 7); ++person) {
    for (const auto& record : waitFor(store.executor(), store.records(numberedPerson(person)))) {
      const int number = std::stoi(record.itemKey().substr(std::string{"item-"}.size()));
      EXPECT_EQ(record, AttentionItemDispositionRecord(numberedItem(number).itemKey(), numberedState(number)));
      ++found;
    }
  }
  EXPECT_EQ(found, count);
}

TEST(KilledWriters, LoseNothingTheyAcknowledgedAndLeaveASoundStore) {
  deriveKeysQuickly();
  const ScratchFolder folder;
  const auto file = folder.path() / "store.db";
  createStore(file);
  const auto seed = std::random_device{}();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  int present = 0;
  for (int kills = isNightly() ? 400 : 30; kills > 0 && !testing::Test::HasFailure(); --kills) {
    const int acknowledged = writeUntilKilled(file, present, random);
    {
      Connection connection(file, keyedConfiguration(OpenMode::readWrite));
      const int before = std::exchange(present, itemsPresent(connection));
      EXPECT_GE(present, before + acknowledged);
      EXPECT_LE(present, before + acknowledged + 1) << "one action may have been under way";
      expectSound(connection);
    }
    expectStates(file, present);
  }
  EXPECT_GT(present, 30) << "the writers wrote too little to prove anything";
}

} // namespace
} // namespace orvan
