#include "OrvanSpineCore/secret_service/secret_service_vault.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <libsecret/secret.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <vector>

#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

/// A program that runs for the length of a test, with what it prints and what it reads in our hands.
class Program {
 public:
  explicit Program(std::vector<std::string> words) {
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    if (pipe2(input.data(), O_CLOEXEC) != 0 || pipe2(output.data(), O_CLOEXEC) != 0) {
      return;
    }
    std::vector<char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments), [](std::string& word) { return word.data(); });
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    if (posix_spawnp(&process_, arguments[0], &actions, nullptr, arguments.data(), environ) != 0) {
      process_ = 0;
    }
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    input_ = input[1];
    output_ = output[0];
  }
  ~Program() {
    close(input_);
    close(output_);
    if (process_ != 0) {
      kill(process_, SIGTERM);
      waitpid(process_, nullptr, 0);
    }
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  bool started() const { return process_ != 0; }

  void writeAndClose(std::string_view text) {
    EXPECT_EQ(write(input_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(std::exchange(input_, -1));
  }

  std::string readLine() {
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) {
      line += c;
    }
    return line;
  }

 private:
  pid_t process_ = 0;
  int input_ = -1;
  int output_ = -1;
};

/// Whether the Secret Service appears on the bus before the timeout.
bool secretServiceAppears() {
  struct Wait {
    GMainLoop* loop = g_main_loop_new(nullptr, FALSE);
    bool appeared = false;
  } wait;
  const auto onAppear = [](GDBusConnection*, const gchar*, const gchar*, gpointer data) {
    static_cast<Wait*>(data)->appeared = true;
    g_main_loop_quit(static_cast<Wait*>(data)->loop);
  };
  const auto onTimeout = [](gpointer data) -> gboolean {
    g_main_loop_quit(static_cast<Wait*>(data)->loop);
    return G_SOURCE_CONTINUE;
  };
  const auto watch = g_bus_watch_name(G_BUS_TYPE_SESSION, "org.freedesktop.secrets", G_BUS_NAME_WATCHER_FLAGS_NONE,
                                      onAppear, nullptr, &wait, nullptr);
  const auto timeout = g_timeout_add_seconds(10, onTimeout, &wait);
  g_main_loop_run(wait.loop);
  g_source_remove(timeout);
  g_bus_unwatch_name(watch);
  g_main_loop_unref(wait.loop);
  return wait.appeared;
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
    startBus();
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

  void startKeyring() {
    keyring_.emplace(
        std::vector<std::string>{"gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"});
    if (!keyring_->started()) {
      GTEST_SKIP() << "gnome-keyring-daemon is not installed";
    }
    keyring_->writeAndClose("password");
    if (!secretServiceAppears()) {
      GTEST_SKIP() << "gnome-keyring-daemon does not run here";
    }
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
  void startBus() {
    const auto configuration = home_ + "/bus.conf";
    std::ofstream{configuration} << "<busconfig><type>session</type><listen>unix:dir=" << home_
                                 << "</listen><auth>EXTERNAL</auth><policy context='default'>"
                                    "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/><allow "
                                    "own='*'/></policy></busconfig>";
    bus_.emplace(
        std::vector<std::string>{"dbus-daemon", "--nofork", "--print-address=1", "--config-file=" + configuration});
    if (!bus_->started()) {
      GTEST_SKIP() << "dbus-daemon is not installed";
    }
    setenv("DBUS_SESSION_BUS_ADDRESS", bus_->readLine().c_str(), 1); // NOLINT(concurrency-mt-unsafe)
  }

  std::string home_;
  std::optional<Program> bus_;
  std::optional<Program> keyring_;
};

constexpr auto key = [] {
  std::array<unsigned char, SecretServiceVault::keyLength> bytes{};
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    bytes[at] = static_cast<unsigned char>(at * 37); // Zero bytes and bytes that are not text among them.
  }
  return bytes;
}();

bool isKey(const std::optional<SecretBytes>& loaded) {
  return loaded.has_value() && std::ranges::equal(loaded->bytes(), key);
}

template <typename Operation>
std::error_code errorOf(Operation operation) {
  try {
    operation();
  } catch (const Error& error) {
    return error.code();
  }
  return {};
}

TEST_F(SecretServiceVaultTest, GivesBackTheKeyOfEachStoreAndNeverReplacesIt) {
  ASSERT_NO_FATAL_FAILURE(startKeyring());
  if (IsSkipped()) {
    return;
  }
  const SecretServiceVault vault{"store-1"};
  EXPECT_EQ(vault.loadLocalStoreKey(), std::nullopt);
  vault.storeLocalStoreKey(key);
  EXPECT_TRUE(isKey(vault.loadLocalStoreKey()));
  EXPECT_FALSE(SecretServiceVault{"store-2"}.loadLocalStoreKey().has_value());

  constexpr std::array<unsigned char, SecretServiceVault::keyLength> another{1};
  EXPECT_EQ(errorOf([&] { vault.storeLocalStoreKey(another); }), CredentialVaultError::keyExists);
  EXPECT_TRUE(isKey(vault.loadLocalStoreKey()));
}

TEST_F(SecretServiceVaultTest, TellsALockedKeyringFromOneWithoutAKey) {
  ASSERT_NO_FATAL_FAILURE(startKeyring());
  if (IsSkipped()) {
    return;
  }
  const SecretServiceVault vault{"store-1"};
  vault.storeLocalStoreKey(key);
  lockKeyring();
  EXPECT_EQ(errorOf([&] { vault.loadLocalStoreKey(); }), CredentialVaultError::vaultLocked);
  EXPECT_EQ(errorOf([&] { vault.storeLocalStoreKey(key); }), CredentialVaultError::vaultLocked);
  EXPECT_EQ(errorOf([] { SecretServiceVault{"store-2"}.loadLocalStoreKey(); }), CredentialVaultError::vaultLocked);
}

TEST_F(SecretServiceVaultTest, SaysWhenNothingKeepsSecrets) {
  const SecretServiceVault vault{"store-1"};
  EXPECT_EQ(errorOf([&] { vault.loadLocalStoreKey(); }), CredentialVaultError::vaultUnavailable);
  EXPECT_EQ(errorOf([&] { vault.storeLocalStoreKey(key); }), CredentialVaultError::vaultUnavailable);
}

TEST_F(SecretServiceVaultTest, OutlivesTheSessionBus) {
  GDBusConnection* bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  ASSERT_NE(bus, nullptr);
  const SecretServiceVault vault{"store-1"};
  EXPECT_EQ(errorOf([&] { vault.loadLocalStoreKey(); }), CredentialVaultError::vaultUnavailable);

  bool closed = false;
  const auto onClosed = +[](GDBusConnection*, gboolean, GError*, gpointer data) { *static_cast<bool*>(data) = true; };
  g_signal_connect(bus, "closed", G_CALLBACK(onClosed), &closed);
  endBus();
  while (!closed) {
    g_main_context_iteration(nullptr, TRUE);
  }
  EXPECT_EQ(errorOf([&] { vault.loadLocalStoreKey(); }), CredentialVaultError::vaultUnavailable);
  g_object_unref(bus);
}

} // namespace
} // namespace orvan
