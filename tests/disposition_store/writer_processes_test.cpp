#include <fcntl.h>
#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <list>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

/// A process of its own that applies numbered actions to a store and acknowledges each on a pipe once it has returned.
class WriterProcess {
 public:
  /// Items `first` to `first` + `count` - 1; `rival` is "none", "dismiss" or "resolve".
  WriterProcess(const std::filesystem::path& store, int first, int count, const char* rival) {
    const auto firstText = std::to_string(first);
    const auto countText = std::to_string(count);
    std::array<int, 2> ends{};
    const bool hasPipe = pipe2(ends.data(), O_CLOEXEC) == 0;
    process_ = hasPipe ? fork() : -1;
    if (process_ < 0) {
      throw std::system_error(errno, std::generic_category(), "starting a writer");
    }
    if (process_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      execl(DISPOSITION_WRITER, DISPOSITION_WRITER, store.c_str(), firstText.c_str(), countText.c_str(), rival,
            nullptr);
      _exit(EXIT_FAILURE);
    }
    close(ends[1]);
    acknowledgements_ = fdopen(ends[0], "r");
  }
  /// Kills it if it still runs.
  ~WriterProcess() {
    if (process_ > 0) {
      kill();
      succeeded();
    }
    std::fclose(acknowledgements_);
  }
  WriterProcess(const WriterProcess&) = delete;
  WriterProcess& operator=(const WriterProcess&) = delete;

  /// Waits for the next acknowledgement; nothing once the process has ended and all were read.
  std::optional<std::string> nextAcknowledgement() {
    std::array<char, 128> line{};
    if (std::fgets(line.data(), static_cast<int>(line.size()), acknowledgements_) == nullptr) {
      return std::nullopt;
    }
    const std::string text = line.data();
    return text.substr(0, text.find('\n'));
  }

  void kill() noexcept { ::kill(process_, SIGKILL); }

  /// Waits for its end; tells whether it ended by itself without a fault.
  bool succeeded() {
    int status = 0;
    waitpid(std::exchange(process_, -1), &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
  }

 private:
  pid_t process_ = -1;
  std::FILE* acknowledgements_ = nullptr;
};

/// Whether the long run was asked for.
bool isNightly() {
  const char* const value = std::getenv("ORVAN_NIGHTLY");
  return value != nullptr && std::string_view{value} == "1";
}

class WriterProcesses : public testing::Test {
 protected:
  explicit WriterProcesses(const std::filesystem::path& parent = std::filesystem::temp_directory_path())
      : folder(parent) {
    deriveKeysQuickly();
    createStore(file);
  }

  static std::int64_t countOf(Connection& connection, const std::string& rows) {
    return connection.fetchOptionalInteger("SELECT count(*) FROM relationship_attention_" + rows).value_or(-1);
  }

  const ScratchFolder folder;
  const std::filesystem::path file = folder.path() / "store.db";
  const CredentialVault vault{std::make_shared<KeyInMemory>()};
};

class KilledWriters : public WriterProcesses {
 protected:
  /// Lets a writer go on from item `first` until a random moment. Returns how many items it acknowledged.
  int writeUntilKilled(int first) {
    constexpr int moreThanItCanReach = 100000;
    WriterProcess writer(file, first, moreThanItCanReach, "none");
    int acknowledged = 0;
    const auto awaited = static_cast<int>(random() % 25);
    while (acknowledged < awaited && writer.nextAcknowledgement()) {
      ++acknowledged;
    }
    // Anywhere within the next actions, or within the opening when nothing was awaited.
    std::this_thread::sleep_for(std::chrono::microseconds{random() % 5000});
    writer.kill();
    while (const auto late = writer.nextAcknowledgement()) {
      EXPECT_EQ(*late, std::to_string(first + acknowledged));
      ++acknowledged;
    }
    EXPECT_FALSE(writer.succeeded()) << "it was to be killed";
    return acknowledged;
  }

  /// Looks for damage and halves of actions. Returns the number of items in the store.
  int countInSoundStore() const {
    Connection connection(file, keyedConfiguration(OpenMode::readWrite));
    const auto items = countOf(connection, "disposition");
    EXPECT_THAT(damage(connection), testing::IsEmpty());
    EXPECT_EQ(countOf(connection, "candidate"), items);
    EXPECT_EQ(countOf(connection, "candidate JOIN relationship_attention_disposition USING (candidate_key, person_id)"),
              items);
    EXPECT_EQ(countOf(connection, "candidate_evidence"), 3 * items);
    return static_cast<int>(items);
  }

  void expectStates(int count) const {
    AttentionDispositionStore store(file, vault);
    for (int person = 0; person < 7; ++person) {
      std::vector<AttentionItemDispositionRecord> expected;
      for (int number = person; number < count; number += 7) {
        expected.emplace_back(numberedItem(number).itemKey(), numberedState(number));
      }
      EXPECT_THAT(waitFor(store.executor(), store.records(numberedPerson(person))),
                  testing::UnorderedElementsAreArray(expected));
    }
  }

  const unsigned seed = std::random_device{}();
  std::mt19937 random{seed};
};

TEST_F(KilledWriters, LoseNothingTheyAcknowledgedAndLeaveASoundStore) {
  SCOPED_TRACE("seed " + std::to_string(seed));
  int present = 0;
  for (int kills = isNightly() ? 400 : 30; kills > 0 && !HasFailure(); --kills) {
    const int expected = present + writeUntilKilled(present);
    present = countInSoundStore();
    EXPECT_GE(present, expected);
    EXPECT_LE(present, expected + 1) << "one action may have been under way";
    expectStates(present);
  }
  EXPECT_GT(present, 30) << "the writers wrote too little to prove anything";
}

/// A shared disk may keep a single sync waiting for seconds, and with it everyone else's turn: by day the store lies
/// in memory, where nothing but the other processes is waited for.
std::filesystem::path folderForManyWriters() {
  const std::filesystem::path memory = "/dev/shm";
  const bool isUsed = !isNightly() && std::filesystem::exists(memory);
  return isUsed ? memory : std::filesystem::temp_directory_path();
}

class TenProcesses : public WriterProcesses {
 protected:
  TenProcesses() : WriterProcesses(folderForManyWriters()) {}

  static constexpr int processes = 10;
  static constexpr int actionsEach = 40;

  /// Has the processes work at the same time on items of their own and on the contested ones, in opposite directions.
  /// Gives what they were told about each contested item.
  std::map<std::string, std::set<std::string>> runRound(int round) {
    std::list<WriterProcess> writers;
    for (int process = 0; process < processes; ++process) {
      const int first = (round * processes + process) * actionsEach;
      writers.emplace_back(file, first, actionsEach, process % 2 == 0 ? "dismiss" : "resolve");
    }
    std::map<std::string, std::set<std::string>> told;
    for (auto& writer : writers) {
      for (int place = 0; const auto acknowledgement = writer.nextAcknowledgement(); ++place) {
        told[contestedItem(place).itemKey()].insert(acknowledgement->substr(acknowledgement->find(' ') + 1));
        waitFor(reader.executor(), reader.records(numberedPerson(place)));
      }
      EXPECT_TRUE(writer.succeeded()) << "no writer may meet a lock that outlasts its patience";
    }
    return told;
  }

  AttentionDispositionStore reader{file, vault};
};

TEST_F(TenProcesses, LoseNoActionAndAgreeOnContestedItemsWhileAnotherReads) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes{isNightly() ? 1 : 0};
  int rounds = 0;
  do {
    const auto told = runRound(rounds);
    const auto records = waitFor(reader.executor(), reader.records(contestedItem(0).personKey()));
    EXPECT_EQ(records.size(), static_cast<std::size_t>(actionsEach));
    for (const auto& record : records) {
      EXPECT_THAT(told.at(record.itemKey()), testing::ElementsAre(caseName(record.state().kind())));
    }
    ++rounds;
  } while (std::chrono::steady_clock::now() < end && !HasFailure());
  Connection connection(file, keyedConfiguration());
  EXPECT_THAT(damage(connection), testing::IsEmpty());
  EXPECT_EQ(countOf(connection, "disposition"), rounds * processes * actionsEach + actionsEach);
}

} // namespace
} // namespace orvan
