#include "OrvanSpineCore/key_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>

#include "tests/support/test_store.h"

namespace orvan {
namespace {

using std::filesystem::perms;

class KeyFileTest : public testing::Test {
 protected:
  std::error_code loadFault() const {
    return faultOf([this] { return keyFile.loadLocalStoreKey(); });
  }

  std::ptrdiff_t filesInFolder() const {
    return std::distance(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator());
  }

  ScratchFolder folder;
  std::filesystem::path path = folder.path() / "store.key";
  KeyFile keyFile{path};
};

TEST_F(KeyFileTest, GivesBackTheKeyItMadeAndNothingBefore) {
  EXPECT_FALSE(keyFile.loadLocalStoreKey());
  std::ofstream(path.string() + ".being-made") << "what a killed program left";
  keyFile.create();
  const auto key = keyFile.loadLocalStoreKey();
  ASSERT_TRUE(key);
  EXPECT_EQ(key->size(), KeyFile::keyLength);
  EXPECT_TRUE(std::ranges::any_of(key->bytes(), [](unsigned char byte) { return byte != 0; }));
  EXPECT_TRUE(std::ranges::equal(key->bytes(), keyFile.loadLocalStoreKey()->bytes()));
  EXPECT_EQ(std::filesystem::status(path).permissions(), perms::owner_read | perms::owner_write);
  EXPECT_EQ(filesInFolder(), 1) << "nothing of the way it was made stays behind";
}

TEST_F(KeyFileTest, NeverOverwritesAKey) {
  std::ofstream(path) << "short";
  std::filesystem::permissions(path, perms::owner_read | perms::owner_write);
  EXPECT_EQ(faultOf([this] { keyFile.create(); }), CredentialVaultError::keyExists);
  EXPECT_EQ(keyFile.loadLocalStoreKey()->size(), 5U);
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(KeyFileTest, RefusesAFileThatOthersCanReachAndAPathThatIsNoFile) {
  keyFile.create();
  for (const perms permission : {perms::group_read, perms::others_read, perms::group_write, perms::others_exec}) {
    std::filesystem::permissions(path, perms::owner_read | perms::owner_write | permission);
    EXPECT_EQ(loadFault(), CredentialVaultError::keyFileNotPrivate) << static_cast<unsigned>(permission);
  }
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_EQ(loadFault(), CredentialVaultError::keyFileNotRegular);
  std::filesystem::remove(path);
  mkfifo(path.c_str(), 0600);
  EXPECT_EQ(loadFault(), CredentialVaultError::keyFileNotRegular) << "nor does it wait for a writer";
}

} // namespace
} // namespace orvan
