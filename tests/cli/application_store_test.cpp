#include "application/store/application_store.h"

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

#include "OrvanPlatform/error.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

class OwnStore : public testing::Test {
 protected:
  OwnStore() { deriveKeysQuickly(); }

  template <typename Attempt>
  static std::error_code faultOf(Attempt attempt) {
    try {
      attempt();
    } catch (const Error& error) {
      return error.code();
    }
    return {};
  }
  std::error_code create() const {
    return faultOf([this] { ApplicationStore::create(file, vault); });
  }
  auto open(ApplicationStore::Access access) const { return ApplicationStore::open(file, vault, access); }
  std::error_code openingFault() const {
    return faultOf([this] { open(ApplicationStore::Access::read); });
  }

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
  EXPECT_EQ(openingFault(), std::error_code{}) << "the loser left it alone";
  EXPECT_EQ(ApplicationStore::logSize(file), 0U);
}

TEST_F(OwnStore, SaysWhyItDoesNotOpen) {
  EXPECT_EQ(openingFault(), ApplicationStoreError::storeMissing);
  std::filesystem::create_directory(file);
  std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  EXPECT_EQ(openingFault(), ApplicationStoreError::cannotReachStore) << "a folder, not a wrong key";
  std::filesystem::remove(file);
  ASSERT_EQ(create(), std::error_code{});

  std::ofstream(file.native() + "-wal").close();
  std::filesystem::permissions(file.native() + "-wal", std::filesystem::perms{0640});
  EXPECT_EQ(openingFault(), ApplicationStoreError::storeNotPrivate) << "what was decided last is in the log";
  std::filesystem::remove(file.native() + "-wal");
  std::fstream(file).seekp(100) << "damage";
  EXPECT_EQ(openingFault(), ApplicationStoreError::cannotDecrypt);
}

TEST_F(OwnStore, KeepsItsLogWhileAnotherProgramReads) {
  ASSERT_EQ(create(), std::error_code{});
  const auto writer = open(ApplicationStore::Access::write);
  const auto reader = open(ApplicationStore::Access::read);
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

} // namespace
} // namespace orvan
