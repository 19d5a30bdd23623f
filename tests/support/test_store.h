#pragma once

#include <atomic>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// A folder of its own, removed with everything in it at the end.
class ScratchFolder {
 public:
  explicit ScratchFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const noexcept { return path_; }

 private:
  std::filesystem::path path_;
};

/// The code of the Error that `attempt` throws; none when it throws no Error.
template <typename Attempt>
std::error_code faultOf(Attempt attempt) {
  try {
    static_cast<void>(attempt());
  } catch (const Error& error) {
    return error.code();
  }
  return {};
}

/// A store key in memory that counts how often it was asked for.
class KeyInMemory final : public CredentialSource {
 public:
  explicit KeyInMemory(std::size_t length = 32, unsigned char everyByte = 7) : length_(length), everyByte_(everyByte) {}

  std::optional<SecretBytes> loadLocalStoreKey() const override;
  /// The key for those who are not tested: not counted.
  SecretBytes bytes() const;
  int timesAsked() const noexcept { return timesAsked_; }

 private:
  std::size_t length_;
  unsigned char everyByte_;
  mutable std::atomic<int> timesAsked_ = 0;
};

/// From now on this process derives keys with few rounds: tests that open a store hundreds of times would spend all
/// their time there. Stores made before cannot be opened any more.
void deriveKeysQuickly();

/// A connection with the key that KeyInMemory holds by default, in write-ahead-log mode, which leaves
/// checkpoints to its caller.
ConnectionConfiguration keyedConfiguration(OpenMode mode = OpenMode::readWriteCreate);

/// Makes an encrypted store with the canonical schema.
void createStore(const std::filesystem::path& file);

/// What SQLite and SQLCipher find wrong with the store; empty when it is sound.
std::vector<std::string> damage(Connection& connection);

/// One interaction with a person and all that belongs to it: its source event ("event-<id>"), its thread, and the
/// person's part in both. The person wrote it when it is inbound; nobody the store knows did otherwise.
struct TestInteraction {
  std::string_view id;
  std::string_view at;
  std::string_view person = "ana";
  std::string_view thread = "thread";
  std::string_view direction = "inbound";
  std::string_view kind = "message";
  std::string_view conversation = "direct";
  std::string_view account = "mail";
};

/// A promise about "ana" that rests on evidence ("evidence-<id>") of a claim ("claim-<id>") about her.
struct TestOpenLoop {
  std::string_view id;
  std::string_view at;
  std::string_view state = "open";
  /// The source event behind the evidence.
  std::string_view event = "event-of-evidence";
};

/// An encrypted store with the canonical tables in a folder of its own, open for writing so that other connections read
/// beside it. Rows may refer to rows that are not there.
class TestStore {
 public:
  TestStore();

  std::filesystem::path file() const { return folder_.path() / "store.db"; }
  Connection& connection() noexcept { return connection_; }

  /// A person with one identity ("<key>-identity") under a confirmed membership ("<key>-membership").
  void addPerson(std::string_view key);
  void add(const TestInteraction& interaction);
  void add(const TestOpenLoop& loop);

  template <typename... Arguments>
  void run(std::string_view sql, const Arguments&... arguments) {
    connection_.execute(sql, arguments...);
  }

 private:
  ScratchFolder folder_;
  Connection connection_;
};

} // namespace orvan
