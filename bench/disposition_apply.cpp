/// What one recorded action costs, beside the same statements hand-written on SQLite's C interface.
///
///     disposition_apply counts [FOLDER]             syncs and log bytes of each; fails beyond the limits
///     disposition_apply time [FOLDER]               wall time of each, taking turns
///     disposition_apply run ours|by-hand N FOLDER   N actions and nothing else, for instruction counts
///
/// FOLDER is where the stores are made: /dev/shm leaves the disk out of it.

#include <algorithm>
#include <array>
#include <boost/asio/io_context.hpp>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "hand_written_apply.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/faulting_vfs.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

constexpr int actions = 400;
constexpr double mostLogBytesRatio = 1.05;

CredentialVault vault() {
  return CredentialVault{std::make_shared<KeyInMemory>()};
}

/// A store of its own with the disposition store on it, which works on a thread of its own.
class Ours {
 public:
  explicit Ours(const std::filesystem::path& folder) : folder_(folder) {
    createStore(folder_.path() / "store.db");
    store_ = std::make_unique<AttentionDispositionStore>(folder_.path() / "store.db", vault());
  }

  void dismiss(const AttentionCatchUpItem& item) {
    waitFor(store_->executor(), store_->apply(item, AttentionItemAction::dismiss(), actionTime));
  }

 private:
  ScratchFolder folder_;
  std::unique_ptr<AttentionDispositionStore> store_;
};

/// The same on an event loop of the caller's thread: no handing over between threads.
class OursOnOneThread {
 public:
  explicit OursOnOneThread(const std::filesystem::path& folder) : folder_(folder) {
    createStore(folder_.path() / "store.db");
    store_ = std::make_unique<AttentionDispositionStore>(folder_.path() / "store.db", vault(), loop_.get_executor());
  }

  void dismiss(const AttentionCatchUpItem& item) {
    auto task = resultInOptional(store_->apply(item, AttentionItemAction::dismiss(), actionTime));
    auto result = boost::asio::co_spawn(loop_, std::move(task), boost::asio::use_future);
    loop_.restart();
    loop_.run();
    result.get();
  }

 private:
  ScratchFolder folder_;
  boost::asio::io_context loop_;
  std::unique_ptr<AttentionDispositionStore> store_;
};

/// Another store with the hand-written statements.
class ByHand {
 public:
  explicit ByHand(const std::filesystem::path& folder) : folder_(folder) {
    createStore(folder_.path() / "store.db");
    statements_ = std::make_unique<HandWrittenApply>(folder_.path() / "store.db");
  }

  void dismiss(const AttentionCatchUpItem& item) {
    const auto& references = item.whyNow().evidenceReferences();
    const auto reference = [&references](std::size_t index) {
      return HandWrittenApply::Reference{references.at(index).storedReferenceKind(), references.at(index).identifier()};
    };
    statements_->dismiss({item.itemKey(), item.personKey(), {reference(0), reference(1), reference(2)}});
  }

 private:
  ScratchFolder folder_;
  std::unique_ptr<HandWrittenApply> statements_;
};

std::vector<AttentionCatchUpItem> items(int count) {
  std::vector<AttentionCatchUpItem> items;
  items.reserve(static_cast<std::size_t>(count));
  for (int number = 0; number < count; ++number) {
    items.push_back(numberedItem(number));
  }
  return items;
}

struct Counts {
  double syncs;
  double logBytes;
};

template <typename Subject>
Counts count(FaultingVfs& files, const std::filesystem::path& folder) {
  const auto all = items(actions + 1);
  Subject subject(folder);
  // The first action also writes and syncs the log's header.
  subject.dismiss(all.front());
  files.resetCounts();
  for (std::size_t number = 1; number < all.size(); ++number) {
    subject.dismiss(all[number]);
  }
  return {static_cast<double>(files.count(FileCall::sync)) / actions,
          static_cast<double>(files.walBytesWritten()) / actions};
}

int reportCounts(const std::filesystem::path& folder) {
  FaultingVfs files;
  const Counts ours = count<Ours>(files, folder);
  const Counts byHand = count<ByHand>(files, folder);
  const double ratio = ours.logBytes / byHand.logBytes;
  std::cout << "syncs per action: ours " << ours.syncs << ", by hand " << byHand.syncs << '\n'
            << "log bytes per action: ours " << ours.logBytes << ", by hand " << byHand.logBytes << ", ratio " << ratio
            << '\n';
  return ours.syncs == 1 && ratio <= mostLogBytesRatio ? EXIT_SUCCESS : EXIT_FAILURE;
}

template <typename Subject>
double microseconds(Subject& subject, const AttentionCatchUpItem& item) {
  const auto start = std::chrono::steady_clock::now();
  subject.dismiss(item);
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

int reportTimes(const std::filesystem::path& folder) {
  Ours ours(folder);
  OursOnOneThread oursOnOneThread(folder);
  ByHand byHand(folder);
  std::array<std::vector<double>, 3> took;
  for (const auto& item : items(actions)) {
    took[0].push_back(microseconds(ours, item));
    took[1].push_back(microseconds(oursOnOneThread, item));
    took[2].push_back(microseconds(byHand, item));
  }
  const double byHandMedian = median(took[2]);
  std::cout << "median microseconds per action: by hand " << byHandMedian << '\n';
  for (const auto& [name, times] : {std::pair{"ours", took[0]}, {"ours on the caller's thread", took[1]}}) {
    std::cout << "  " << name << ' ' << median(times) << ", ratio " << median(times) / byHandMedian << '\n';
  }
  return EXIT_SUCCESS;
}

template <typename Subject>
int runOnly(int count, const std::filesystem::path& folder) {
  const auto all = items(count);
  Subject subject(folder);
  for (const auto& item : all) {
    subject.dismiss(item);
  }
  return EXIT_SUCCESS;
}

int runCommand(const std::vector<std::string>& words) {
  const auto folder = [&words](std::size_t position) {
    return words.size() > position ? std::filesystem::path{words[position]} : std::filesystem::temp_directory_path();
  };
  const std::string command = words.empty() ? "" : words[0];
  if (command == "counts") {
    return reportCounts(folder(1));
  }
  if (command == "time") {
    return reportTimes(folder(1));
  }
  if (command == "run" && words.size() >= 3) {
    const int count = std::stoi(words[2]);
    return words[1] == "ours" ? runOnly<Ours>(count, folder(3)) : runOnly<ByHand>(count, folder(3));
  }
  std::cerr << "disposition_apply counts|time [FOLDER], or run ours|by-hand N FOLDER\n";
  return 2;
}

} // namespace
} // namespace orvan

int main(int count, char** arguments) {
  try {
    orvan::deriveKeysQuickly();
    return orvan::runCommand({arguments + 1, arguments + count});
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
