#include "application/agent/reminders/reminder_file.h"

#include <filesystem>
#include <fstream>
#include <string>

#include "OrvanSpineCore/encrypted_store.h"
#include "application/store/application_store.h"
#include "reminder_world.h"

namespace orvan {
namespace {

using std::filesystem::perms;
using testing::IsEmpty;

class RemindersFile : public testing::Test, public ReminderWorld {
 protected:
  std::error_code openingFault() const {
    return faultOf([this] { return ReminderFile(paths(), KeyPlace::file, clock->now()).origin(); });
  }
  void overwrite(std::streamoff from, std::size_t length) const {
    std::fstream file(paths().file, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(from);
    file << std::string(length, 'x');
  }
  std::size_t setAsideCount() const { return ApplicationStore::filesBeside(paths().file, ".damaged-").size(); }
};

TEST_F(RemindersFile, KeepsEverythingFromOthersAndFromOneProgramToTheNext) {
  start();
  EXPECT_EQ(agent->file->origin(), ReminderFileOrigin::made);
  allow();
  agent->center->setTitles(TitleDisclosure::general);
  agent->center->setRefreshing(false);
  addDueIn("Call Ana", std::chrono::hours{1});
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    EXPECT_EQ(entry.status().permissions(), perms::owner_read | perms::owner_write) << entry.path();
  }
  EXPECT_EQ(openingFault(), ReminderFileError::inUse);
  end();

  std::ifstream content(paths().file, std::ios::binary);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(content), {}).find("Ana"), std::string::npos);
  start();
  EXPECT_EQ(agent->file->origin(), ReminderFileOrigin::opened);
  EXPECT_EQ(agent->center->titles(), TitleDisclosure::general);
  EXPECT_FALSE(agent->center->refreshing());
  EXPECT_THAT(pending(), testing::ElementsAre("Call Ana"));
}

TEST_F(RemindersFile, IsSetAsideWhenDamagedAndBegunAnew) {
  constexpr std::streamoff firstPage = 0;
  constexpr std::streamoff laterPage = 5 * 4096 + 100;
  for (const auto damagedAt : {firstPage, laterPage, firstPage}) {
    start();
    addDueIn("Lost", std::chrono::hours{1});
    end();
    overwrite(damagedAt, 200);
    clock->advance(std::chrono::seconds{1});
    start();
    EXPECT_EQ(agent->file->origin(), ReminderFileOrigin::madeAfterDamage);
    EXPECT_THAT(pending(), IsEmpty());
    end();
  }
  EXPECT_EQ(setAsideCount(), 2U);
}

TEST_F(RemindersFile, IsLeftAloneWhenItIsNewerOrItsKeyIsMissing) {
  start();
  end();
  const auto& file = paths().file;
  const auto key = paths().keyFile;
  EncryptedStore(file, CredentialVault(std::make_shared<StoreKey>(key)))
      .openQueue(StoreRole::programWriter)
      ->write([](Connection& connection) { connection.executeScript("PRAGMA user_version = 1000"); });
  EXPECT_EQ(openingFault(), ReminderFileError::newer);

  std::filesystem::rename(key, key.native() + ".away");
  EXPECT_EQ(openingFault(), ReminderFileError::keyMissing);
  EXPECT_FALSE(std::filesystem::exists(key));
  std::filesystem::rename(key.native() + ".away", key);

  std::filesystem::permissions(file, perms::group_read, std::filesystem::perm_options::add);
  EXPECT_EQ(openingFault(), ReminderFileError::notPrivate);
  EXPECT_EQ(setAsideCount(), 0U);
}

} // namespace
} // namespace orvan
