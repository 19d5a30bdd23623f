#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanSpineCore/key_file.h"
#include "application/cli/command_line.h"
#include "application/store/application_store.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using nlohmann::json;
using Access = ApplicationStore::Access;

/// Two homes in one folder, and what lies beside them.
class Backups : public testing::Test {
 protected:
  Backups() {
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    deriveKeysQuickly();
    EXPECT_EQ(run("home", {"init"}), 0);
  }

  int run(const std::string& home, std::vector<std::string> words) {
    words.insert(words.begin(), {"orvan", "--store", path(home + "/store.db"), "--key-file", path(home + "/key"),
                                 "--as-of", "2026-03-10T12:00:00Z"});
    std::vector<const char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments), &std::string::c_str);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(static_cast<int>(arguments.size()), arguments.data());
    output_ = testing::internal::GetCapturedStdout();
    errors_ = testing::internal::GetCapturedStderr();
    return status;
  }

  std::shared_ptr<DatabaseQueue> open(const std::string& store, const std::string& key = "home/key") const {
    return ApplicationStore::open(path(store), CredentialVault(std::make_shared<KeyFile>(path(key))), Access::write);
  }
  void execute(const std::string& store, const char* statement) const {
    open(store)->write([&](Connection& connection) { connection.executeScript(statement); });
  }
  void addPerson(const std::string& name) const {
    execute("home/store.db", ("INSERT INTO person VALUES ('p-" + name + "', '" + name + "', '')").c_str());
  }
  static std::int64_t countPeople(DatabaseQueue& store) {
    return store.read([](Connection& connection) {
      return connection.fetchOptionalInteger("SELECT count(*) FROM person").value_or(-1);
    });
  }

  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }
  bool exists(const std::string& name) const { return std::filesystem::exists(path(name)); }
  bool says(const std::string& words) const { return errors_.find(words) != std::string::npos; }
  std::string output_;
  std::string errors_;

 private:
  ScratchFolder folder_;
};

TEST_F(Backups, ComeBackIntoAStoreInUseAndIntoAHomeWithoutOne) {
  addPerson("Ada");
  ASSERT_EQ(run("home", {"backup", path("backup"), "--key", path("kept-key")}), 0) << errors_;
  EXPECT_EQ(std::filesystem::status(path("backup")).permissions(), std::filesystem::perms{0600});
  addPerson("Kofi");

  const auto elsewhere = open("home/store.db");
  EXPECT_EQ(run("home", {"restore", path("backup")}), 2) << "nobody to ask";
  EXPECT_EQ(countPeople(*elsewhere), 2);
  ASSERT_EQ(run("home", {"restore", path("backup"), "--yes", "--json"}), 0) << errors_;
  EXPECT_EQ(countPeople(*elsewhere), 1) << "a program that has it open sees a commit";
  const std::filesystem::path former = json::parse(output_)["former"].get<std::string>();
  EXPECT_EQ(countPeople(*open("home/" + former.filename().string())), 2);

  EXPECT_EQ(run("second", {"restore", path("backup")}), 3) << "no key";
  ASSERT_EQ(run("second", {"restore", path("backup"), "--key", path("kept-key")}), 0) << errors_;
  EXPECT_EQ(countPeople(*open("second/store.db", "second/key")), 1);
  ASSERT_EQ(run("third", {"init"}), 0);
  ASSERT_EQ(run("third", {"restore", path("backup"), "--key", path("kept-key"), "--yes"}), 0) << errors_;
  EXPECT_EQ(countPeople(*open("third/store.db", "third/key")), 1) << "with the key that it had";
}

TEST_F(Backups, AreNeverWrittenOverAnythingNorRestoredFromAnythingElse) {
  ASSERT_EQ(run("home", {"backup", path("backup")}), 0);
  for (const char* taken : {"backup", "home/store.db-wal", "home/key.pending", "nowhere/backup", "home"}) {
    EXPECT_EQ(run("home", {"backup", path(taken)}), 1) << taken;
  }
  EXPECT_EQ(run("home", {"backup", path("other"), "--key", path("home/key")}), 1);
  EXPECT_FALSE(exists("other"));

  addPerson("Ada");
  const auto refuses = [this](const char* file, const char* words) {
    EXPECT_NE(run("home", {"restore", path(file), "--yes"}), 0) << file;
    EXPECT_TRUE(says(words)) << file << ": " << errors_;
  };
  refuses("nothing", "no such file");
  refuses("home", "a folder");
  refuses("home/store.db", "the store itself");
  std::filesystem::copy(path("backup"), path("newer"));
  execute("newer", "PRAGMA user_version = 1000");
  refuses("newer", "newer orvan");
  std::filesystem::copy(path("backup"), path("foreign"));
  execute("foreign", "PRAGMA application_id = 1");
  refuses("foreign", "no backup of orvan's");
  std::filesystem::copy(path("backup"), path("damaged"));
  std::fstream(path("damaged"), std::ios::in | std::ios::out).seekp(300000) << "damage";
  refuses("damaged", "Parts of the backup");
  std::ofstream(path("plain")) << "SQLite format 3" << std::string(5000, '\0');
  refuses("plain", "without encryption");
  ASSERT_EQ(run("home", {"rekey", "--yes"}), 0) << errors_;
  refuses("backup", "cannot be opened with this key");
  EXPECT_EQ(countPeople(*open("home/store.db")), 1);
}

TEST_F(Backups, TakeThePlaceOfADamagedStoreWhoseLogNeverMeetsTheNewOne) {
  ASSERT_EQ(run("home", {"backup", path("backup")}), 0);
  std::fstream(path("home/store.db"), std::ios::in | std::ios::out).seekp(20) << "damage";
  std::ofstream(path("home/store.db-wal")) << "a log";
  std::filesystem::permissions(path("home/store.db-wal"), std::filesystem::perms{0600});
  EXPECT_EQ(run("home", {"restore", path("backup")}), 2);
  ASSERT_EQ(run("home", {"restore", path("backup"), "--yes", "--json"}), 0) << errors_;
  const std::string aside = json::parse(output_)["former"];
  EXPECT_TRUE(std::filesystem::exists(aside));
  EXPECT_TRUE(std::filesystem::exists(aside + "-wal"));
  EXPECT_EQ(run("home", {"doctor"}), 0) << output_;
  EXPECT_NE(output_.find(aside), std::string::npos);
}

TEST_F(Backups, KeepTheirKeyWhileTheStoreGetsANewOneThatEveryPageHas) {
  addPerson("Ada");
  {
    const auto elsewhere = open("home/store.db");
    EXPECT_EQ(run("home", {"rekey", "--yes"}), 1);
    EXPECT_TRUE(says("close the others")) << errors_;
  }
  EXPECT_EQ(run("home", {"rekey"}), 2);
  ASSERT_EQ(run("home", {"rekey", "--keep-old-key", path("old-key")}), 0) << errors_;
  EXPECT_EQ(countPeople(*open("home/store.db")), 1);
  ConnectionConfiguration bare;
  bare.mode = OpenMode::readOnly;
  bare.pageCacheCeilingKiB = 0;
  Connection withOldKey(path("home/store.db"), bare);
  withOldKey.key(KeyFile(path("old-key")).loadLocalStoreKey()->bytes());
  auto faults = withOldKey.query("PRAGMA cipher_integrity_check");
  std::uintmax_t count = 0;
  while (faults.next()) {
    ++count;
  }
  EXPECT_EQ(count, std::filesystem::file_size(path("home/store.db")) / 4096);
}

TEST_F(Backups, FindTheKeyThatOpensTheStoreAfterAnInterruptedChange) {
  KeyFile(path("home/key.pending")).create();
  EXPECT_EQ(run("home", {"people"}), 0) << errors_;
  EXPECT_FALSE(exists("home/key.pending")) << "the change had not come to the store";
  std::filesystem::rename(path("home/key"), path("home/key.pending"));
  KeyFile(path("home/key")).create();
  EXPECT_EQ(run("home", {"people"}), 0) << errors_;
  EXPECT_FALSE(exists("home/key.pending")) << "it had";
  KeyFile(path("other-key")).create();
  std::filesystem::copy(path("other-key"), path("home/key.pending"));
  std::filesystem::copy(path("other-key"), path("home/key"), std::filesystem::copy_options::overwrite_existing);
  EXPECT_EQ(run("home", {"people"}), 3);
  EXPECT_TRUE(exists("home/key") && exists("home/key.pending")) << "neither opens it: both stay";
}

} // namespace
} // namespace orvan
