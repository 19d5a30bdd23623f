#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <fstream>

#include "OrvanStore/connection.h"
#include "OrvanStore/store_error.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

class StoreFiles : public testing::Test {
 protected:
  int exitCodeOfOpener(const std::string& environment) const {
    const int status = std::system((environment + " " STORE_OPENER " '" + file.string() + "'").c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  const ScratchFolder folder;
  const std::filesystem::path file = folder.path() / "store.db";
};

TEST_F(StoreFiles, AreReadableByTheirOwnerAloneWhateverTheProcessAllows) {
  const mode_t previous = umask(0);
  Connection connection(file, {});
  connection.executeScript("PRAGMA journal_mode = WAL; CREATE TABLE note (text)");
  umask(previous);
  for (const char* end : {"", "-wal", "-shm"}) {
    const auto mode = std::filesystem::status(file.string() + end).permissions();
    EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write) << end;
  }
}

TEST_F(StoreFiles, AreNotTouchedByAnEngineThatCannotEncrypt) {
  EXPECT_EQ(exitCodeOfOpener("LD_PRELOAD=libsqlite3.so.0"), 3);
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_EQ(exitCodeOfOpener("LD_PRELOAD="), 0) << "the same program works with the engine it was linked to";
}

TEST_F(StoreFiles, ThatDoNotDecryptAreReportedToTheCallerAlone) {
  std::ofstream(file) << std::string(8192, 'x');
  testing::internal::CaptureStderr();
  EXPECT_THROW(Connection(file, keyedConfiguration()), StoreError);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace orvan
