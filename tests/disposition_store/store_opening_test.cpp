#include <gmock/gmock.h>

#include <fstream>
#include <list>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "tests/support/connection_watch.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using Reading = AttentionEvidenceCompilerError;
using Writing = AttentionDispositionStoreError;
using testing::ElementsAre;

struct NoKey final : CredentialSource {
  std::optional<SecretBytes> loadLocalStoreKey() const override { return std::nullopt; }
};
struct FailingVault final : CredentialSource {
  std::optional<SecretBytes> loadLocalStoreKey() const override { throw 7; }
};

/// Is there for the first connection, and afterwards has the length it is given, or fails.
struct ForgottenKey final : CredentialSource {
  std::optional<SecretBytes> loadLocalStoreKey() const override {
    const auto now = std::exchange(length, 0);
    return now == 0 ? throw 7 : KeyInMemory{now}.loadLocalStoreKey();
  }
  mutable std::size_t length = 32;
};

/// Follows every connection from the moment its key is fetched, which is before its first statement.
struct WatchedKey final : CredentialSource {
  std::optional<SecretBytes> loadLocalStoreKey() const override {
    logs.emplace_back(ConnectionWatch::latest());
    return KeyInMemory{}.loadLocalStoreKey();
  }
  ConnectionWatch watch;
  mutable std::list<StatementLog> logs;
};

class StoreOpening : public testing::Test {
 protected:
  static void SetUpTestSuite() { deriveKeysQuickly(); }

  /// What opening the store for reading fails with, and opening it for writing.
  using Faults = std::pair<std::error_code, std::error_code>;

  Faults faultsWith(std::shared_ptr<const CredentialSource> key = std::make_shared<KeyInMemory>()) const {
    const CredentialVault vault{std::move(key)};
    const auto& options = AttentionEvidenceCompilerOptions::defaults;
    return {faultOf([&] { const AttentionEvidenceCompiler compiler(file, vault, nullptr, options); }),
            faultOf([&] { const AttentionDispositionStore store(file, vault); })};
  }

  const ScratchFolder folder;
  const std::filesystem::path file = folder.path() / "store.db";
  const Faults none{};
  const Faults refused{Reading::cannotOpenEncryptedStore, Writing::cannotOpenEncryptedStore};
};

TEST_F(StoreOpening, RefusesAPlaintextFileBeforeAskingForTheKey) {
  Connection(file, {}).executeScript("CREATE TABLE person (id TEXT)");
  const auto key = std::make_shared<KeyInMemory>();
  EXPECT_EQ(faultsWith(key), (Faults{Reading::plaintextDatabaseRejected, Writing::plaintextDatabaseRejected}));
  EXPECT_EQ(key->timesAsked(), 0);
  std::ofstream(file) << "SQLite format ";
  EXPECT_EQ(faultsWith(key), refused) << "a file too short to tell passes for an encrypted one";
  EXPECT_EQ(key->timesAsked(), 2);
}

TEST_F(StoreOpening, PassesOnWhyAFileCannotBeRead) {
  std::filesystem::create_directory(file);
  const auto reason = std::make_error_code(std::errc::is_a_directory);
  EXPECT_EQ(faultsWith(), Faults(reason, reason));
}

TEST_F(StoreOpening, RefusesEveryKeyThatDoesNotFitAndADamagedFile) {
  createStore(file);
  EXPECT_EQ(faultsWith(), none);
  const Faults wrongLength{Reading::cannotOpenEncryptedStore, Writing::invalidKeyLength};
  EXPECT_EQ(faultsWith(std::make_shared<KeyInMemory>(31)), wrongLength);
  EXPECT_EQ(faultsWith(std::make_shared<KeyInMemory>(33)), wrongLength);
  EXPECT_EQ(faultsWith(std::make_shared<KeyInMemory>(32, 8)), refused);
  EXPECT_EQ(faultsWith(std::make_shared<NoKey>()), refused);
  EXPECT_EQ(faultsWith(std::make_shared<FailingVault>()), refused);
  std::ofstream(file) << std::string(8192, 'x');
  EXPECT_EQ(faultsWith(), refused);
}

TEST_F(StoreOpening, ForWritingCreatesAMissingFileEncryptedAndEmpty) {
  EXPECT_EQ(faultsWith(), (Faults{{}, Writing::canonicalSchemaUnavailable}));
  EXPECT_EQ(faultsWith(std::make_shared<KeyInMemory>(32, 8)), refused);
  std::filesystem::remove_all(folder.path());
  EXPECT_EQ(faultsWith(), (Faults{{}, Writing::cannotOpenEncryptedStore}));
}

TEST_F(StoreOpening, ForWritingNeedsEachOfItsTables) {
  for (const char* table : {"person", "relationship_attention_disposition", "relationship_attention_candidate",
                            "relationship_attention_candidate_evidence"}) {
    std::filesystem::remove(file);
    createStore(file);
    Connection(file, keyedConfiguration()).executeScript("PRAGMA foreign_keys = OFF; DROP TABLE " + std::string{table});
    EXPECT_EQ(faultsWith(), (Faults{{}, Writing::canonicalSchemaUnavailable})) << table;
  }
}

TEST_F(StoreOpening, ForReadingPreparesTheConnectionBeforeItTouchesThePages) {
  createStore(file);
  const auto key = std::make_shared<WatchedKey>();
  const AttentionEvidenceCompiler compiler(file, CredentialVault{key}, nullptr,
                                           AttentionEvidenceCompilerOptions::defaults);
  auto firstTexts = key->logs.front().texts();
  firstTexts.resize(3);
  EXPECT_THAT(firstTexts,
              ElementsAre("PRAGMA cipher_page_size = 4096", "PRAGMA busy_timeout = 5000", "PRAGMA query_only = 1"));
  key->logs.clear(); // Before the connection closes.
}

TEST_F(StoreOpening, ForWritingFetchesTheKeyAndPreparesOnceForEachOfTwoConnections) {
  createStore(file);
  const auto key = std::make_shared<WatchedKey>();
  AttentionDispositionStore store(file, CredentialVault{key});
  for (int number = 0; number < 5; ++number) {
    waitFor(store.executor(), store.apply(numberedItem(number), AttentionItemAction::dismiss(), actionTime));
  }
  EXPECT_EQ(key->logs.size(), 1U) << "the writer's";
  for (int number = 0; number < 5; ++number) {
    waitFor(store.executor(), store.records(numberedPerson(number)));
  }
  EXPECT_EQ(key->logs.size(), 2U) << "one reader's more";
  for (const auto& log : key->logs) {
    auto firstTexts = log.texts();
    firstTexts.resize(9);
    EXPECT_THAT(firstTexts,
                ElementsAre("PRAGMA cipher_page_size = 4096", "PRAGMA foreign_keys = ON", "PRAGMA journal_mode = WAL",
                            "PRAGMA synchronous = FULL", "PRAGMA temp_store = MEMORY", "PRAGMA wal_autocheckpoint = 0",
                            "PRAGMA mmap_size = 0", "PRAGMA secure_delete = ON", "PRAGMA busy_timeout = 5000"));
  }
  key->logs.clear(); // Before the connections close.
}

TEST_F(StoreOpening, ForReadingPreparesItsConnectionThenProvesThatItDecrypts) {
  createStore(file);
  const auto key = std::make_shared<WatchedKey>();
  const AttentionEvidenceCompiler compiler(file, CredentialVault{key}, nullptr,
                                           AttentionEvidenceCompilerOptions::defaults);
  ASSERT_EQ(key->logs.size(), 1U);
  EXPECT_THAT(key->logs.front().texts(),
              ElementsAre("PRAGMA cipher_page_size = 4096", "PRAGMA busy_timeout = 5000", "PRAGMA query_only = 1",
                          "PRAGMA busy_timeout", "BEGIN", "PRAGMA cipher_version", "SELECT count(*) FROM sqlite_master",
                          "PRAGMA cache_size = -65536", "COMMIT"));
  key->logs.clear(); // Before the connection closes.
}

TEST_F(StoreOpening, OfTheReaderThatRecordsNeedsFailsInTheStoresOwnWords) {
  createStore(file);
  const auto key = std::make_shared<ForgottenKey>();
  AttentionDispositionStore store(file, CredentialVault{key});
  const auto read = [&] { return waitFor(store.executor(), store.records("p-1")); };
  EXPECT_EQ(faultOf(read), Writing::cannotOpenEncryptedStore);
  key->length = 31;
  EXPECT_EQ(faultOf(read), Writing::invalidKeyLength);
  key->length = 32;
  EXPECT_EQ(faultOf(read), std::error_code{});
}

} // namespace
} // namespace orvan
