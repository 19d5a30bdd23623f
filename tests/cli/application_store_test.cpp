#include "application/store/application_store.h"

#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <thread>

#include "OrvanSpineCore/canonical_schema.h"
#include "tests/support/faulting_vfs.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using std::filesystem::perms;
using testing::IsEmpty;
using Access = ApplicationStore::Access;

class OwnStore : public testing::Test {
 protected:
  explicit OwnStore(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) : folder(parent) {
    deriveKeysQuickly();
  }

  std::error_code create() const {
    return faultOf([this] { ApplicationStore::create(file, vault); });
  }
  auto open(Access access) const { return ApplicationStore::open(file, vault, access); }

  ScratchFolder folder;
  std::filesystem::path file = folder.path() / "store.db";
  CredentialVault vault{std::make_shared<KeyInMemory>()};
};

TEST_F(OwnStore, IsMadeByOneOfTwoProgramsThatMakeItAtOnce) {
  std::error_code faults[2];
  {
    const std::jthread other([&] { faults[0] = create(); });
    faults[1] = create();
  }
  EXPECT_NE(faults[0] == std::error_code{}, faults[1] == std::error_code{});
  EXPECT_EQ(faults[0] ? faults[0] : faults[1], ApplicationStoreError::storeExists);
  EXPECT_NO_THROW(open(Access::read)) << "the loser left it alone";
  EXPECT_EQ(ApplicationStore::logSize(file), 0U);
}

TEST_F(OwnStore, KeepsItsLogWhileAnotherProgramReads) {
  ASSERT_EQ(create(), std::error_code{});
  const auto writer = open(Access::write);
  const auto reader = open(Access::read);
  reader->read([&](Connection& connection) {
    EXPECT_EQ(connection.fetchOptionalInteger("SELECT count(*) FROM person"), 0);
    writer->write([](Connection& other) { other.execute("INSERT INTO person VALUES ('p', 'Ada', '')"); });
    ApplicationStore::checkpointWithoutWaiting(*writer);
    EXPECT_FALSE(ApplicationStore::checkpoint(*writer));
    EXPECT_GT(ApplicationStore::logSize(file), 0U);
  });
  EXPECT_TRUE(ApplicationStore::checkpoint(*writer));
  EXPECT_EQ(ApplicationStore::logSize(file), 0U);
}

TEST_F(OwnStore, AppearsWholeWhateverAnInterruptedCreationOrAStoreThatIsGoneLeft) {
  for (const char* left : {"store.db.being-made", "store.db.being-made-wal", "store.db-wal"}) {
    std::ofstream(folder.path() / left) << "left";
  }
  ASSERT_EQ(create(), std::error_code{});
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
  EXPECT_EQ(faultOf([&] { return open(Access::write); }), std::error_code{});
}

TEST_F(OwnStore, IsLookedAtWhereItLiesAndNotWhereALinkToItDoes) {
  ASSERT_EQ(create(), std::error_code{});
  const auto link = folder.path() / "link.db";
  std::filesystem::create_symlink(file, link);
  const auto writer = ApplicationStore::open(link, vault, Access::write);
  writer->write([](Connection& store) { store.execute("INSERT INTO person VALUES ('p', 'Ada', '')"); });
  EXPECT_GT(ApplicationStore::logSize(link), 0U);
  const auto log = file.string() + "-wal";
  std::filesystem::permissions(log, perms{0400});
  EXPECT_NO_THROW(ApplicationStore::requireUsableFile(link));
  EXPECT_EQ(std::filesystem::status(log).permissions(), perms{0600}) << "the owner may do with it as with the store";
  std::filesystem::permissions(log, perms{0640});
  EXPECT_EQ(faultOf([&] { ApplicationStore::requireUsableFile(link); }), ApplicationStoreError::storeNotPrivate);
  std::filesystem::remove(log);
  mkfifo(log.c_str(), 0600);
  EXPECT_EQ(faultOf([&] { return open(Access::read); }), ApplicationStoreError::storeNotRegular);
}

/// The sanitizers' check of virtual tables is left out of our builds: it opens a pipe, and takes the lack of one for a
/// fault.
TEST_F(OwnStore, SaysThatTheSystemIsExhaustedWhereverTheOpeningFindsOut) {
  ASSERT_EQ(create(), std::error_code{});
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const int firstFree = dup(0);
  close(firstFree);
  int failures = 0;
  for (bool fails = true; fails; failures += fails ? 1 : 0) {
    const rlimit tight{static_cast<rlim_t>(firstFree + failures), before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &tight);
    const auto fault = faultOf([&] { return open(Access::write); });
    setrlimit(RLIMIT_NOFILE, &before);
    fails = fault != std::error_code{};
    EXPECT_TRUE(!fails || fault == ApplicationStoreError::systemExhausted) << failures << ": " << fault.message();
  }
  EXPECT_GT(failures, 2) << "for the first look, the store and its log";
}

/// A store as the first version left it, with a person and an address of the user's.
class OlderStore : public OwnStore {
 protected:
  OlderStore() : OwnStore("/dev/shm") {} // Where a sync, of which there are thousands here, costs nothing.

  void makeOlderStore() const {
    for (const char* end : {"", "-wal", "-shm"}) {
      std::filesystem::remove(file.string() + end);
    }
    std::ostringstream script;
    script << std::ifstream(VERSION_1_STORE).rdbuf();
    look([&](Connection& store) { store.executeScript("BEGIN;" + script.str() + "COMMIT"); });
  }

  /// On a connection that asks nothing of the store.
  template <typename Look>
  void look(Look look) const {
    Connection store(file, keyedConfiguration());
    look(store);
  }

  /// All of the newest version's tables, or as few as before.
  void expectWhole(std::int64_t version, std::size_t partsMissingBefore = 0) const {
    look([&](Connection& store) {
      EXPECT_EQ(SchemaIdentity::of(store), (SchemaIdentity{SchemaIdentity::orvan, version}));
      EXPECT_THAT(damage(store), IsEmpty());
      EXPECT_EQ(store.fetchOptionalText("SELECT display_name FROM person"), "Ada Marsh");
      EXPECT_EQ(ApplicationStore::missingSchemaParts(store).size(),
                version == SchemaIdentity::newest().version ? 0U : partsMissingBefore);
    });
  }

  static constexpr const char* removeImportTables =
      "DROP TABLE own_address; DROP TABLE mail_reference; DROP TABLE merged_thread; DROP TABLE pending_question;"
      "DROP TABLE calendar_entry";
};

TEST_F(OlderStore, GoesAllTheWayWhenItIsOpenedToReadWhicheverTablesItsImportersMade) {
  for (const char* removed : {"SELECT 1", removeImportTables}) {
    makeOlderStore();
    look([&](Connection& store) { store.executeScript(removed); });
    EXPECT_EQ(faultOf([&] { return open(Access::read); }), std::error_code{}) << removed;
    expectWhole(SchemaIdentity::newest().version);
    EXPECT_THAT(ApplicationStore::copiesLeft(file), IsEmpty());
  }
}

TEST_F(OlderStore, IsOldOrNewAfterAnInterruptionAtAnyMoment) {
  for (const auto& [call, code] : {std::pair{FileCall::open, SQLITE_CANTOPEN},
                                   {FileCall::write, SQLITE_FULL},
                                   {FileCall::sync, SQLITE_IOERR_FSYNC},
                                   {FileCall::remove, SQLITE_IOERR_DELETE}}) {
    bool isInterrupted = true;
    for (int ordinal = 1; isInterrupted && !HasFailure(); ++ordinal) {
      SCOPED_TRACE("at call " + std::to_string(ordinal) + " of kind " + std::to_string(static_cast<int>(call)));
      makeOlderStore();
      std::size_t missing = 0;
      look([&](Connection& store) {
        store.executeScript(removeImportTables);
        missing = ApplicationStore::missingSchemaParts(store).size();
      });
      FaultingVfs files;
      files.failAt(call, ordinal, FaultSpan::fromThenOn, code);
      const auto fault = faultOf([&] { return open(Access::write); });
      isInterrupted = files.hasFailed();
      files.heal();
      std::int64_t version = 0;
      look([&](Connection& store) { version = SchemaIdentity::of(store).version; });
      EXPECT_TRUE(version == 1 || version == SchemaIdentity::newest().version) << version;
      EXPECT_TRUE(fault || version == SchemaIdentity::newest().version);
      expectWhole(version, missing);
      EXPECT_THAT(ApplicationStore::copiesLeft(file), IsEmpty());
      EXPECT_EQ(faultOf([&] { return open(Access::read); }), std::error_code{}) << "the next one completes it";
    }
  }
}

TEST_F(OlderStore, IsRefusedWhenItIsNewerOrSomebodyElsesOrEmpty) {
  const auto faultWith = [&](const std::string& script) {
    makeOlderStore();
    look([&](Connection& store) { store.executeScript(script); });
    return faultOf([&] { return open(Access::read); });
  };
  EXPECT_EQ(faultWith("PRAGMA user_version = 1000"), ApplicationStoreError::storeNewer);
  EXPECT_EQ(faultWith("PRAGMA application_id = 1"), ApplicationStoreError::notOurStore);
  std::filesystem::resize_file(file, 0);
  EXPECT_EQ(faultOf([&] { return open(Access::write); }), ApplicationStoreError::storeEmpty);
}

} // namespace
} // namespace orvan
