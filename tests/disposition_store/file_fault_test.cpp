#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>

#include "OrvanPlatform/error.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/encrypted_store.h"
#include "tests/support/faulting_vfs.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using Action = AttentionItemAction;
using Record = AttentionItemDispositionRecord;
using testing::ElementsAre;
using testing::IsEmpty;

CredentialVault vault() {
  return CredentialVault{std::make_shared<KeyInMemory>()};
}

/// A store with two items, whose content lies partly in the log: releasing the store leaves it there.
class StoreInUse {
 public:
  StoreInUse() {
    createStore(working_.path() / "store.db");
    {
      AttentionDispositionStore store(working_.path() / "store.db", vault());
      for (int number = 0; number < 2; ++number) {
        waitFor(store.executor(), store.apply(numberedItem(number), numberedAction(number), actionTime));
      }
    }
    copyInto(kept_.path());
  }

  std::filesystem::path file() const { return working_.path() / "store.db"; }

  /// Puts the files back as they were in the midst of use.
  void restore() const {
    std::filesystem::remove_all(working_.path());
    std::filesystem::create_directory(working_.path());
    for (const char* name : {"store.db", "store.db-wal"}) {
      std::filesystem::copy_file(kept_.path() / name, working_.path() / name);
    }
  }

 private:
  void copyInto(const std::filesystem::path& folder) const {
    for (const char* name : {"store.db", "store.db-wal"}) {
      std::filesystem::copy_file(working_.path() / name, folder / name);
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

std::ostream& operator<<(std::ostream& stream, const Fault& fault) {
  return stream << fault.name;
}

class FileFaults : public testing::TestWithParam<std::tuple<Fault, FaultSpan>> {
 protected:
  static void SetUpTestSuite() { deriveKeysQuickly(); }

  /// Opens the store and applies an action whose traces are many. Tells whether the caller was given a record, and
  /// whether there had been a fault by then.
  struct Outcome {
    bool acknowledged;
    bool faultBefore;
  };
  Outcome applyUnderFaults() const {
    try {
      AttentionDispositionStore store(store_.file(), vault());
      waitFor(store.executor(), store.apply(numberedItem(4), numberedAction(4), actionTime));
      return {true, files_.hasFailed()};
    } catch (const Error&) {
      return {false, files_.hasFailed()};
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
    AttentionDispositionStore store(store_.file(), vault());
    EXPECT_THAT(waitFor(store.executor(), store.records(numberedPerson(1))),
                ElementsAre(Record{numberedItem(1).itemKey(), numberedState(1)}));
    return !waitFor(store.executor(), store.records(numberedPerson(4))).empty();
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
    const auto outcome = applyUnderFaults();
    moveLogIntoStore();
    files_.heal();
    hadFault = files_.hasFailed();
    EXPECT_FALSE(outcome.acknowledged && outcome.faultBefore) << "a fault was kept from the caller";
    EXPECT_TRUE(outcome.acknowledged || outcome.faultBefore) << "an error without a fault";
    const bool applied = isApplied();
    EXPECT_TRUE(applied || !outcome.acknowledged) << "an acknowledged action is lost";
    expectAllOrNothing(applied);
  }
  RecordProperty("faults", ordinal - 2);
  EXPECT_GT(ordinal, 2) << "there never was a fault";
}

INSTANTIATE_TEST_SUITE_P(Every, FileFaults,
                         testing::Combine(testing::Values(Fault{FileCall::open, SQLITE_CANTOPEN, "Open"},
                                                          Fault{FileCall::read, SQLITE_IOERR_READ, "Read"},
                                                          Fault{FileCall::write, SQLITE_IOERR_WRITE, "Write"},
                                                          Fault{FileCall::write, SQLITE_FULL, "OutOfSpace"},
                                                          Fault{FileCall::sync, SQLITE_IOERR_FSYNC, "Sync"},
                                                          Fault{FileCall::truncate, SQLITE_IOERR_TRUNCATE, "Truncate"},
                                                          Fault{FileCall::remove, SQLITE_IOERR_DELETE, "Remove"}),
                                          testing::Values(FaultSpan::once, FaultSpan::fromThenOn)),
                         [](const auto& info) {
                           return std::string{std::get<0>(info.param).name} +
                                  (std::get<1>(info.param) == FaultSpan::once ? "Once" : "FromThenOn");
                         });

TEST(PowerCuts, LoseNothingThatWasAcknowledged) {
  deriveKeysQuickly();
  const StoreInUse used;
  FaultingVfs files;
  files.rememberSyncs(used.file().parent_path());
  AttentionDispositionStore store(used.file(), vault());
  for (int number = 2; number < 12; ++number) {
    waitFor(store.executor(), store.apply(numberedItem(number), numberedAction(number), actionTime));
    const ScratchFolder afterwards;
    files.copySyncedFiles(afterwards.path());
    Connection connection(afterwards.path() / "store.db", keyedConfiguration(OpenMode::readWrite));
    EXPECT_THAT(damage(connection), IsEmpty());
    EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_disposition"), number + 1);
  }
}

} // namespace
} // namespace orvan
