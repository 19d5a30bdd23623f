#include "OrvanSpineCore/secret_service/secret_service_vault.h"

#include <gtest/gtest.h>
#include <libsecret/secret.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <vector>

#include "OrvanPlatform/error.h"
#include "application/store/application_store_error.h"
#include "application/store/key_change.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

struct EndProgram {
  void operator()(GSubprocess* program) const noexcept {
    g_subprocess_send_signal(program, SIGTERM);
    g_subprocess_wait(program, nullptr, nullptr);
    g_object_unref(program);
  }
};
/// A program that runs for the length of a test; null when it is not installed.
using Program = std::unique_ptr<GSubprocess, EndProgram>;

Program start(std::vector<const char*> words) {
  words.push_back(nullptr);
  const auto pipes = static_cast<GSubprocessFlags>(G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_PIPE);
  return Program{g_subprocess_newv(words.data(), pipes, nullptr)};
}

std::string lineFrom(const Program& program) {
  std::string line;
  char c = 0;
  while (g_input_stream_read(g_subprocess_get_stdout_pipe(program.get()), &c, 1, nullptr, nullptr) == 1 && c != '\n') {
    line += c;
  }
  return line;
}

/// A session bus that nobody else is on and that starts no services by itself, with a home folder of its own.
class SecretServiceVaultTest : public testing::Test {
 protected:
  void SetUp() override {
    home_ = (std::filesystem::temp_directory_path() / "orvan-keyring-XXXXXX").string();
    ASSERT_NE(mkdtemp(home_.data()), nullptr);
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
      setenv(name, home_.c_str(), 1); // NOLINT(concurrency-mt-unsafe): no other thread reads it yet.
    }
    const auto configuration = home_ + "/bus.conf";
    std::ofstream{configuration} << "<busconfig><type>session</type><listen>unix:dir=" << home_
                                 << "</listen><auth>EXTERNAL</auth><policy context='default'>"
                                    "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/>"
                                    "<allow own='*'/></policy></busconfig>";
    const auto option = "--config-file=" + configuration;
    bus_ = start({"dbus-daemon", "--nofork", "--print-address=1", option.c_str()});
    if (bus_ == nullptr) {
      GTEST_SKIP() << "dbus-daemon is not installed";
    }
    setenv("DBUS_SESSION_BUS_ADDRESS", lineFrom(bus_).c_str(), 1); // NOLINT(concurrency-mt-unsafe)
  }

  void TearDown() override {
    keyring_.reset();
    bus_.reset();
    while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
      // What is still under way holds on to the bus that has just ended.
    }
    std::filesystem::remove_all(home_);
  }

  void endBus() { bus_.reset(); }

  /// Whether there is a keyring to test with.
  bool startKeyring() {
    keyring_ = start({"gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"});
    if (keyring_ == nullptr) {
      return false;
    }
    GOutputStream* input = g_subprocess_get_stdin_pipe(keyring_.get());
    g_output_stream_write_all(input, "password", 8, nullptr, nullptr, nullptr);
    g_output_stream_close(input, nullptr, nullptr);
    const auto wait = start({"gdbus", "wait", "--session", "--timeout", "10", "org.freedesktop.secrets"});
    return wait != nullptr && g_subprocess_wait_check(wait.get(), nullptr, nullptr) != FALSE;
  }

  static void lockKeyring() {
    SecretService* service =
        secret_service_open_sync(SECRET_TYPE_SERVICE, nullptr, SECRET_SERVICE_NONE, nullptr, nullptr);
    SecretCollection* keyring =
        secret_collection_for_alias_sync(service, "default", SECRET_COLLECTION_NONE, nullptr, nullptr);
    GList* list = g_list_append(nullptr, keyring);
    EXPECT_EQ(secret_service_lock_sync(service, list, nullptr, nullptr, nullptr), 1);
    g_list_free_full(list, g_object_unref);
    g_object_unref(service);
  }

 private:
  std::string home_;
  Program bus_;
  Program keyring_;
};

constexpr auto key = [] {
  std::array<unsigned char, SecretServiceVault::keyLength> bytes{};
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    bytes[at] = static_cast<unsigned char>(at * 37); // Zero bytes and bytes that are not text among them.
  }
  return bytes;
}();

template <typename Operation>
std::error_code errorOf(Operation operation) {
  try {
    operation();
  } catch (const Error& error) {
    return error.code();
  }
  return {};
}

TEST_F(SecretServiceVaultTest, KeepsTheKeyOfEachStoreForGoodAndTellsALockedKeyring) {
  if (!startKeyring()) {
    GTEST_SKIP() << "gnome-keyring-daemon does not run here";
  }
  const SecretServiceVault vault{"store-1"};
  const SecretServiceVault other{"store-2"};
  EXPECT_EQ(vault.loadLocalStoreKey(), std::nullopt);
  vault.storeLocalStoreKey(key);
  EXPECT_EQ(other.loadLocalStoreKey(), std::nullopt);
  constexpr std::array<unsigned char, SecretServiceVault::keyLength> another{1};
  EXPECT_EQ(errorOf([&] { vault.storeLocalStoreKey(another); }), CredentialVaultError::keyExists);
  const auto loaded = vault.loadLocalStoreKey();
  ASSERT_TRUE(loaded.has_value());
  EXPECT_TRUE(std::ranges::equal(loaded->bytes(), key));

  lockKeyring();
  EXPECT_EQ(errorOf([&] { vault.loadLocalStoreKey(); }), CredentialVaultError::vaultLocked);
  EXPECT_EQ(errorOf([&] { vault.storeLocalStoreKey(key); }), CredentialVaultError::vaultLocked);
  EXPECT_EQ(errorOf([&] { other.loadLocalStoreKey(); }), CredentialVaultError::vaultLocked) << "never 'no key'";
}

TEST_F(SecretServiceVaultTest, HoldsTheKeyThatAKeyFileNamesAndNeverLosesItOnTheWay) {
  if (!startKeyring()) {
    GTEST_SKIP() << "gnome-keyring-daemon does not run here";
  }
  const ScratchFolder folder;
  const StoreKey inUse(folder.path() / "key");
  inUse.create(KeyPlace::keyring);
  const auto bytes = inUse.loadLocalStoreKey();
  EXPECT_EQ(inUse.place(), KeyPlace::keyring);
  EXPECT_EQ(std::filesystem::file_size(inUse.file()), 59U) << "the name alone";
  for (const auto place : {KeyPlace::file, KeyPlace::keyring}) {
    moveStoreKey(folder.path() / "store.db", inUse, place);
    EXPECT_EQ(inUse.place(), place);
    EXPECT_TRUE(std::ranges::equal(inUse.loadLocalStoreKey()->bytes(), bytes->bytes()));
  }
  std::filesystem::copy(inUse.file(), folder.path() / "copy");
  StoreKey(folder.path() / "copy").discard();
  EXPECT_EQ(errorOf([&] { inUse.loadLocalStoreKey(); }), ApplicationStoreError::keyNotInKeyring) << "not 'no key'";
  lockKeyring();
  EXPECT_EQ(errorOf([&] { inUse.loadLocalStoreKey(); }), CredentialVaultError::vaultLocked);
  EXPECT_EQ(errorOf([&] { inUse.pending().create(KeyPlace::keyring); }), CredentialVaultError::vaultLocked);
  EXPECT_FALSE(inUse.pending().exists());
}

TEST_F(SecretServiceVaultTest, SaysWhenNothingKeepsSecretsAndOutlivesTheSessionBus) {
  GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  ASSERT_NE(bus, nullptr);
  const SecretServiceVault vault{"store-1"};
  EXPECT_EQ(errorOf([&] { vault.loadLocalStoreKey(); }), CredentialVaultError::vaultUnavailable);
  EXPECT_EQ(errorOf([&] { vault.storeLocalStoreKey(key); }), CredentialVaultError::vaultUnavailable);

  endBus();
  while (g_dbus_connection_is_closed(bus) == FALSE) {
    g_main_context_iteration(nullptr, TRUE);
  }
  EXPECT_EQ(errorOf([&] { vault.loadLocalStoreKey(); }), CredentialVaultError::vaultUnavailable);
  g_object_unref(bus);
}

} // namespace
} // namespace orvan
