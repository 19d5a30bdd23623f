#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanStore/transaction.h"
#include "tests/support/connection_watch.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/encrypted_store.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using Code = AttentionDispositionStoreError;
using testing::ElementsAre;

class NoKey final : public CredentialSource {
 public:
  std::optional<SecretBytes> loadLocalStoreKey() const override { return std::nullopt; }
};

class FailingVault final : public CredentialSource {
 public:
  std::optional<SecretBytes> loadLocalStoreKey() const override { throw 7; }
};

/// Follows every connection from the moment its key is fetched, which is before its first statement.
class WatchedKey final : public CredentialSource {
 public:
  std::optional<SecretBytes> loadLocalStoreKey() const override {
    logs_.push_back(std::make_unique<StatementLog>(ConnectionWatch::latest()));
    return KeyInMemory{}.loadLocalStoreKey();
  }
  std::vector<std::string> firstStatements(std::size_t connection, std::size_t count) const {
    auto texts = logs_.at(connection)->texts();
    texts.resize(std::min(texts.size(), count));
    return texts;
  }
  /// Before the connections close.
  void stopWatching() { logs_.clear(); }

 private:
  ConnectionWatch watch_;
  mutable std::vector<std::unique_ptr<StatementLog>> logs_;
};

class DispositionStoreOpening : public testing::Test {
 protected:
  static void SetUpTestSuite() { deriveKeysQuickly(); }

  std::filesystem::path file() const { return folder_.path() / "store.db"; }

  /// What opening fails with; no code when it succeeds.
  std::error_code failureOfOpening(std::shared_ptr<const CredentialSource> key) const {
    try {
      const AttentionDispositionStore store(file(), CredentialVault{std::move(key)});
      return {};
    } catch (const Error& error) {
      return error.code();
    }
  }

  std::error_code failureOfOpeningWithout(const char* table) const {
    createStore(file());
    Connection(file(), keyedConfiguration())
        .executeScript("PRAGMA foreign_keys = OFF; DROP TABLE " + std::string{table});
    const auto failure = failureOfOpening(std::make_shared<KeyInMemory>());
    std::filesystem::remove(file());
    return failure;
  }

 private:
  ScratchFolder folder_;
};

TEST_F(DispositionStoreOpening, RefusesAPlaintextFileBeforeAskingForTheKey) {
  Connection(file(), {}).executeScript("CREATE TABLE person (id TEXT)");
  const auto key = std::make_shared<KeyInMemory>();
  EXPECT_EQ(failureOfOpening(key), Code::plaintextDatabaseRejected);
  EXPECT_EQ(key->timesAsked(), 0);
}

TEST_F(DispositionStoreOpening, PassesOnWhyAFileCannotBeRead) {
  std::filesystem::create_directory(file());
  EXPECT_EQ(failureOfOpening(std::make_shared<KeyInMemory>()), std::errc::is_a_directory);
}

TEST_F(DispositionStoreOpening, NamesAKeyOfTheWrongLengthAndNoOtherTroubleWithTheKey) {
  createStore(file());
  EXPECT_EQ(failureOfOpening(std::make_shared<KeyInMemory>(31)), Code::invalidKeyLength);
  EXPECT_EQ(failureOfOpening(std::make_shared<KeyInMemory>(33)), Code::invalidKeyLength);
  EXPECT_EQ(failureOfOpening(std::make_shared<KeyInMemory>(32, 8)), Code::cannotOpenEncryptedStore);
  EXPECT_EQ(failureOfOpening(std::make_shared<NoKey>()), Code::cannotOpenEncryptedStore);
  EXPECT_EQ(failureOfOpening(std::make_shared<FailingVault>()), Code::cannotOpenEncryptedStore);
  EXPECT_EQ(failureOfOpening(std::make_shared<KeyInMemory>()), std::error_code{});
}

TEST_F(DispositionStoreOpening, CannotOpenADamagedFileOrOneInNoFolder) {
  std::ofstream(file()) << std::string(8192, 'x');
  EXPECT_EQ(failureOfOpening(std::make_shared<KeyInMemory>()), Code::cannotOpenEncryptedStore);
  try {
    const AttentionDispositionStore store(file().parent_path() / "none" / "store.db",
                                          CredentialVault{std::make_shared<KeyInMemory>()});
    FAIL() << "opened";
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), Code::cannotOpenEncryptedStore);
  }
}

TEST_F(DispositionStoreOpening, CreatesAMissingFileEncryptedAndEmptyAndMissesItsTables) {
  EXPECT_EQ(failureOfOpening(std::make_shared<KeyInMemory>()), Code::canonicalSchemaUnavailable);
  EXPECT_TRUE(std::filesystem::exists(file()));
  EXPECT_EQ(failureOfOpening(std::make_shared<KeyInMemory>(32, 8)), Code::cannotOpenEncryptedStore);
}

TEST_F(DispositionStoreOpening, NeedsEachOfItsTables) {
  for (const char* table : {"person", "relationship_attention_disposition", "relationship_attention_candidate",
                            "relationship_attention_candidate_evidence"}) {
    EXPECT_EQ(failureOfOpeningWithout(table), Code::canonicalSchemaUnavailable) << table;
  }
}

TEST_F(DispositionStoreOpening, PreparesEveryConnectionInTheSameOrder) {
  createStore(file());
  const auto key = std::make_shared<WatchedKey>();
  AttentionDispositionStore store(file(), CredentialVault{key});
  waitFor(store.executor(), store.records("p-1"));
  for (const std::size_t connection : {0U, 1U}) {
    EXPECT_THAT(key->firstStatements(connection, 9),
                ElementsAre("PRAGMA cipher_page_size = 4096", "PRAGMA foreign_keys = ON", "PRAGMA journal_mode = WAL",
                            "PRAGMA synchronous = FULL", "PRAGMA temp_store = MEMORY", "PRAGMA wal_autocheckpoint = 0",
                            "PRAGMA mmap_size = 0", "PRAGMA secure_delete = ON", "PRAGMA busy_timeout = 5000"));
  }
  key->stopWatching();
}

TEST_F(DispositionStoreOpening, FetchesTheKeyOnceForEachConnectionAndNeverAgain) {
  createStore(file());
  const auto key = std::make_shared<KeyInMemory>();
  AttentionDispositionStore store(file(), CredentialVault{key});
  EXPECT_EQ(key->timesAsked(), 1) << "the writer's";
  for (int number = 0; number < 5; ++number) {
    waitFor(store.executor(), store.apply(numberedItem(number), AttentionItemAction::dismiss(), actionTime));
  }
  EXPECT_EQ(key->timesAsked(), 1);
  for (int times = 0; times < 5; ++times) {
    waitFor(store.executor(), store.records(numberedPerson(times)));
  }
  EXPECT_EQ(key->timesAsked(), 2) << "one reader's more";
}

} // namespace
} // namespace orvan
