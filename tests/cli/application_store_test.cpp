#include "application/store/application_store.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/support/test_store.h"

namespace orvan {
namespace {

class OwnStore : public testing::Test {
 protected:
  OwnStore() { deriveKeysQuickly(); }

  std::error_code create() const {
    return faultOf([this] { ApplicationStore::create(file, vault); });
  }
  auto open(ApplicationStore::Access access) const { return ApplicationStore::open(file, vault, access); }

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
  EXPECT_NO_THROW(open(ApplicationStore::Access::read)) << "the loser left it alone";
  EXPECT_EQ(ApplicationStore::logSize(file), 0U);
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
