// What the window costs on a store of invented mail: its first frame, the list, scrolling, and going from person to
// person, in software on no screen. Holds them against bounds; the exit code tells whether they are met.
//
//   window_benchmark [--mails N] [--people N] [--runs N] [--folder FOLDER] [--quick]
//
// Of several runs the best of each number is judged: what else the machine does makes them larger, never smaller. It
// fails where a number is beyond its bound by half as much again, and that of memory, which noise hardly changes, by a
// tenth; with --quick, which is for machines that do much else, beyond five times the bound, and memory is not judged.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <map>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanSpineCore/key_file.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/mail/mbox_source.h"
#include "application/store/application_store.h"
#include "generated_mailbox.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

constexpr Instant importedAt = std::chrono::sys_days{std::chrono::year{2026} / 3 / 5};
constexpr std::size_t mailsPerBatch = 48'000;

struct Settings {
  std::size_t mails = 100'000;
  std::size_t people = 0;
  int runs = 5;
  bool isQuick = false;
  std::filesystem::path folder = std::filesystem::temp_directory_path();
};

using Numbers = std::map<std::string, double>;

struct Bound {
  const char* number;
  const char* meaning;
  double most;
};

/// Makes the store and returns the moment a second after its newest mail.
std::string makeStore(const Settings& settings, const std::filesystem::path& folder) {
  const auto mbox = folder / "mailbox.mbox";
  const CredentialVault vault{std::make_shared<KeyFile>(folder / "key")};
  KeyFile(folder / "key").create();
  writeGeneratedMailbox(settings.mails, settings.people, mbox);
  ApplicationStore::create(folder / "store.db", vault);
  const auto queue = ApplicationStore::open(folder / "store.db", vault, ApplicationStore::Access::write);
  MailImporter importer(*queue, {{std::string{GeneratedMailbox::ownAddress}}, importedAt}, mailsPerBatch);
  MboxSource source{mbox, {std::string{GeneratedMailbox::ownAddress}}};
  importer.import(source);
  ApplicationStore::checkpoint(*queue);
  std::filesystem::remove(mbox);
  const auto newest = queue->read(
      [](Connection& connection) { return connection.fetchOptionalText("SELECT max(occurred_at) FROM interaction"); });
  return formatInternetDateTime(*parseInternetDateTime(newest.value()) + std::chrono::seconds{1});
}

/// In a process of its own, whose memory is not the window's.
std::string makeStoreElsewhere(const Settings& settings, const std::filesystem::path& folder) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) {
    throw std::runtime_error("no pipe");
  }
  const auto child = fork();
  if (child == 0) {
    deriveKeysQuickly();
    const auto moment = makeStore(settings, folder);
    const auto written = write(ends[1], moment.data(), moment.size());
    _exit(written == static_cast<ssize_t>(moment.size()) ? 0 : 1);
  }
  close(ends[1]);
  std::array<char, 64> moment{};
  const auto length = read(ends[0], moment.data(), moment.size());
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0 || length <= 0) {
    throw std::runtime_error("the store could not be made");
  }
  return {moment.data(), static_cast<std::size_t>(length)};
}

void setSurroundings(const std::filesystem::path& folder) {
  for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME"}) {
    setenv(name, folder.c_str(), 1);
  }
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("QT_QUICK_BACKEND", "software", 1);
  setenv("LC_ALL", "C.UTF-8", 1);
}

Numbers runWindow(const std::filesystem::path& folder, const std::string& moment) {
  const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "window_probe";
  const auto command = program.string() + " --as-of " + moment + " --store '" + (folder / "store.db").string() +
                       "' --key-file '" + (folder / "key").string() + "'";
  Numbers numbers;
  auto* output = popen(command.c_str(), "r"); // NOLINT(cert-env33-c): a program of ours, in a folder of ours.
  if (output == nullptr) {
    throw std::runtime_error("the window could not be started");
  }
  std::array<char, 64> name{};
  double value = 0;
  while (std::fscanf(output, "%63s %lf", name.data(), &value) == 2) {
    numbers[name.data()] = value;
  }
  if (pclose(output) != 0 || !numbers.contains("resident")) {
    throw std::runtime_error("the window did not get to its end");
  }
  return numbers;
}

Numbers bestOf(const Settings& settings, const std::filesystem::path& folder, const std::string& moment) {
  auto best = runWindow(folder, moment);
  for (int run = 1; run < settings.runs; ++run) {
    for (const auto& [name, value] : runWindow(folder, moment)) {
      best[name] = std::min(best[name], value);
    }
  }
  return best;
}

bool judge(const Bound& bound, const Numbers& numbers, double margin) {
  const double value = numbers.at(bound.number);
  const bool holds = value <= bound.most * margin;
  std::printf("%-44s %9.2f  bound %7.0f  ratio %5.2f%s\n", bound.meaning, value, bound.most, value / bound.most,
              holds ? "" : "  BEYOND");
  return holds;
}

bool run(const Settings& settings) {
  const ScratchFolder folder(settings.folder);
  setSurroundings(folder.path());
  const auto moment = makeStoreElsewhere(settings, folder.path());
  const auto numbers = bestOf(settings, folder.path(), moment);
  for (const auto& [name, value] : numbers) {
    std::printf("%-44s %9.2f\n", name.c_str(), value);
  }
  constexpr std::size_t large = 500'000;
  const std::array timed{Bound{"first.processor", "first frame after main, ms", 150},
                         Bound{"list.processor", "list drawn after main, ms", settings.mails < large ? 1000.0 : 1500.0},
                         Bound{"scroll.p99", "a frame while scrolling, p99, ms", 5},
                         Bound{"expand.p99", "a frame while evidence opens, p99, ms", 5},
                         Bound{"person.p99", "a frame while a person opens, p99, ms", 5}};
  bool allHold = true;
  for (const auto& bound : timed) {
    allHold = judge(bound, numbers, settings.isQuick ? 5 : 1.5) && allHold;
  }
  const auto limitless = 1e9;
  return judge({"resident", "resident memory at the end, MB", 90}, numbers, settings.isQuick ? limitless : 1.1) &&
         allHold;
}

Settings settingsOf(std::span<char* const> words) {
  Settings settings;
  for (std::size_t at = 1; at < words.size(); ++at) {
    const std::string_view word = words[at];
    if (word == "--quick") {
      settings.isQuick = true;
      settings.mails = 20'000;
      settings.runs = 1;
    } else if (at + 1 < words.size()) {
      const char* value = words[++at];
      if (word == "--mails") {
        settings.mails = std::strtoull(value, nullptr, 10);
      } else if (word == "--people") {
        settings.people = std::strtoull(value, nullptr, 10);
      } else if (word == "--runs") {
        settings.runs = std::atoi(value);
      } else if (word == "--folder") {
        settings.folder = value;
      }
    }
  }
  return settings;
}

} // namespace
} // namespace orvan

int main(int count, char** arguments) {
  try {
    return orvan::run(orvan::settingsOf({arguments, static_cast<std::size_t>(count)})) ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
