#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <array>
#include <fstream>

#include "OrvanStore/connection.h"
#include "OrvanStore/store_error.h"
#include "tests/support/encrypted_store.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

mode_t modeOf(const std::filesystem::path& file) {
  struct stat status{};
  EXPECT_EQ(stat(file.c_str(), &status), 0) << file;
  return status.st_mode & 07777U;
}

int exitCodeOfOpener(const std::filesystem::path& file, std::string environment) {
  std::string program = STORE_OPENER;
  std::string path = file;
  const std::array<char*, 3> arguments{program.data(), path.data(), nullptr};
  const std::array<char*, 2> variables{environment.data(), nullptr};
  pid_t child = 0;
  EXPECT_EQ(posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments.data(), variables.data()), 0);
  int status = 0;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class StoreFiles : public testing::Test {
 protected:
  const ScratchFolder folder;
  const std::filesystem::path file = folder.path() / "store.db";
};

TEST_F(StoreFiles, AreReadableByTheirOwnerAloneWhateverTheProcessAllows) {
  const mode_t previous = umask(0);
  Connection connection(file, {});
  connection.executeScript("PRAGMA journal_mode = WAL; CREATE TABLE note (text)");
  umask(previous);
  for (const char* end : {"", "-wal", "-shm"}) {
    EXPECT_EQ(modeOf(file.string() + end), 0600U) << end;
  }
}

TEST_F(StoreFiles, AreNotTouchedByAnEngineThatCannotEncrypt) {
  EXPECT_EQ(exitCodeOfOpener(file, "LD_PRELOAD=libsqlite3.so.0"), 3);
  EXPECT_FALSE(std::filesystem::exists(file));
  EXPECT_EQ(exitCodeOfOpener(file, "LD_PRELOAD="), 0) << "the same program works with the engine it was linked to";
}

TEST_F(StoreFiles, ThatDoNotDecryptAreReportedToTheCallerAlone) {
  std::ofstream(file) << std::string(8192, 'x');
  testing::internal::CaptureStderr();
  EXPECT_THROW(Connection(file, keyedConfiguration()), StoreError);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace orvan
