#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/faulting_vfs.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using Record = AttentionItemDispositionRecord;
using testing::ElementsAre;
using testing::IsEmpty;

/// A store with two items, whose content lies partly in the log: releasing the store leaves it there.
class StoreInUse {
 public:
  StoreInUse() {
    createStore(file());
    for (int number = 0; number < 2; ++number) {
      apply(*open(), number);
    }
    copyFiles(working_.path(), kept_.path());
  }

  std::filesystem::path file() const { return working_.path() / "store.db"; }

  std::unique_ptr<AttentionDispositionStore> open() const {
    return std::make_unique<AttentionDispositionStore>(file(), CredentialVault{std::make_shared<KeyInMemory>()});
  }

  static void apply(AttentionDispositionStore& store, int number) {
    waitFor(store.executor(), store.apply(numberedItem(number), numberedAction(number), actionTime));
  }

  /// Puts the files back as they were in the midst of use.
  void restore() const {
    std::filesystem::remove_all(working_.path());
    std::filesystem::create_directory(working_.path());
    copyFiles(kept_.path(), working_.path());
  }

 private:
  static void copyFiles(const std::filesystem::path& from, const std::filesystem::path& to) {
    for (const char* name : {"store.db", "store.db-wal"}) {
      std::filesystem::copy_file(from / name, to / name);
    }
  }

  ScratchFolder working_;
  ScratchFolder kept_;
};

struct Fault {
  FileCall call;
  int code;
  const char* name;
};

class FileFaults : public testing::TestWithParam<std::tuple<Fault, FaultSpan>> {
 protected:
  static void SetUpTestSuite() { deriveKeysQuickly(); }

  /// Opens the store and applies an action whose traces are many. Tells whether the caller was given a record.
  bool applyUnderFaults() const {
    try {
      const auto store = store_.open();
      StoreInUse::apply(*store, 4);
      EXPECT_FALSE(files_.hasFailed()) << "a fault was kept from the caller";
      return true;
    } catch (const Error&) {
      EXPECT_TRUE(files_.hasFailed()) << "an error without a fault";
      return false;
    }
  }

  /// What the application does when it is done.
  void moveLogIntoStore() const {
    try {
      Connection connection(store_.file(), keyedConfiguration(OpenMode::readWrite));
      connection.execute("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const Error&) {
      EXPECT_TRUE(files_.hasFailed());
    }
  }

  bool isApplied() const {
    const auto store = store_.open();
    EXPECT_THAT(waitFor(store->executor(), store->records(numberedPerson(1))),
                ElementsAre(Record{numberedItem(1).itemKey(), numberedState(1)}));
    return !waitFor(store->executor(), store->records(numberedPerson(4))).empty();
  }

  void expectAllOrNothing(bool isApplied) const {
    Connection connection(store_.file(), keyedConfiguration());
    EXPECT_THAT(damage(connection), IsEmpty());
    for (const auto& [table, rows] : {std::pair{"disposition", 1}, {"candidate", 1}, {"candidate_evidence", 3}}) {
      EXPECT_EQ(connection.fetchOptionalInteger(std::string{"SELECT count(*) FROM relationship_attention_"} + table),
                (isApplied ? 3 : 2) * rows)
          << table;
    }
  }

  StoreInUse store_;
  FaultingVfs files_;
};

TEST_P(FileFaults, AreErrorsToTheCallerAndLeaveTheStateBeforeOrAfter) {
  const auto& [fault, span] = GetParam();
  int ordinal = 1;
  for (bool hadFault = true; hadFault && !HasFailure(); ++ordinal) {
    SCOPED_TRACE("at call " + std::to_string(ordinal));
    store_.restore();
    files_.failAt(fault.call, ordinal, span, fault.code);
    const bool acknowledged = applyUnderFaults();
    moveLogIntoStore();
    files_.heal();
    hadFault = files_.hasFailed();
    const bool applied = isApplied();
    EXPECT_TRUE(applied || !acknowledged) << "an acknowledged action is lost";
    expectAllOrNothing(applied);
  }
  EXPECT_GT(ordinal, 2) << "there never was a fault";
}

const std::vector<Fault> faults{
    {FileCall::open, SQLITE_CANTOPEN, "Open"},        {FileCall::read, SQLITE_IOERR_READ, "Read"},
    {FileCall::write, SQLITE_IOERR_WRITE, "Write"},   {FileCall::write, SQLITE_FULL, "OutOfSpace"},
    {FileCall::sync, SQLITE_IOERR_FSYNC, "Sync"},     {FileCall::truncate, SQLITE_IOERR_TRUNCATE, "Truncate"},
    {FileCall::remove, SQLITE_IOERR_DELETE, "Remove"}};

std::string nameOf(const testing::TestParamInfo<std::tuple<Fault, FaultSpan>>& info) {
  const auto& [fault, span] = info.param;
  return std::string{fault.name} + (span == FaultSpan::once ? "Once" : "FromThenOn");
}

INSTANTIATE_TEST_SUITE_P(Every, FileFaults,
                         testing::Combine(testing::ValuesIn(faults),
                                          testing::Values(FaultSpan::once, FaultSpan::fromThenOn)),
                         nameOf);

TEST(PowerCuts, LoseNothingThatWasAcknowledged) {
  deriveKeysQuickly();
  const StoreInUse used;
  FaultingVfs files;
  files.rememberSyncs(used.file().parent_path());
  const auto store = used.open();
  for (int number = 2; number < 12; ++number) {
    StoreInUse::apply(*store, number);
    const ScratchFolder afterwards;
    files.copySyncedFiles(afterwards.path());
    Connection connection(afterwards.path() / "store.db", keyedConfiguration(OpenMode::readWrite));
    EXPECT_THAT(damage(connection), IsEmpty());
    EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_disposition"), number + 1);
  }
}

/// Another process that opens and closes a store at a word, as the application does.
class OtherProgram {
 public:
  explicit OtherProgram(const std::filesystem::path& file) {
    EXPECT_EQ(pipe(word_), 0);
    process_ = fork();
    if (process_ == 0) {
      char any = 0;
      static_cast<void>(!read(word_[0], &any, 1));
      _exit(faultOf([&] { const Connection opened(file, keyedConfiguration()); }) ? 1 : 0);
    }
  }
  int run() const {
    int status = -1;
    static_cast<void>(!write(word_[1], "!", 1));
    waitpid(process_, &status, 0);
    return status;
  }

 private:
  int word_[2] = {-1, -1};
  pid_t process_ = -1;
};

TEST(Locks, OfAnOpenStoreSurviveThatItsFileIsLookedAtOnceMore) {
  deriveKeysQuickly();
  const StoreInUse used;
  const OtherProgram other(used.file());
  auto store = used.open();
  EncryptedStore::examine(used.file(), StoreRole::dispositionStore);
  EXPECT_EQ(other.run(), 0);
  EXPECT_TRUE(std::filesystem::exists(EncryptedStore::logFileOf(used.file()))) << "taken for nobody's";
  StoreInUse::apply(*store, 4);
  store.reset();
  store = used.open();
  EXPECT_FALSE(waitFor(store->executor(), store->records(numberedPerson(4))).empty());
}

} // namespace
} // namespace orvan
