// What compiling evidence costs the library, against the least it can cost. Prints one table; ends with 1 when
// something that is counted, and so repeats exactly, costs more than it may. Times are reported only.
//
//   evidence_benchmark [--interactions N]   in the smaller of the two stores; the other has ten times as many

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "bench/evidence_costs.h"
#include "bench/instruction_count.h"
#include "bench/seeded_store.h"
#include "bench/selection_costs.h"
#include "tests/support/test_store.h"

namespace orvan::bench {
namespace {

constexpr std::size_t peopleCompared = 200;

/// One line of the table: what was measured, against what, and how many times as much it may be.
class Report {
 public:
  void counted(const std::string& what, double reference, double measured, double limit) {
    const bool holds = measured <= reference * limit;
    everythingHolds_ = everythingHolds_ && holds;
    print(what, reference, measured, limit, holds ? "holds" : "MISSED");
  }

  void timed(const std::string& what, double reference, double measured, double limit) {
    print(what, reference, measured, limit, measured <= reference * limit ? "holds (time)" : "over (time)");
  }

  void notCounted(const std::string& what) {
    everythingHolds_ = false;
    std::printf("| %-72s | could not be counted\n", what.c_str());
  }

  bool everythingHolds() const noexcept { return everythingHolds_; }

 private:
  static void print(const std::string& what, double reference, double measured, double limit, const char* verdict) {
    std::printf("| %-72s | %16.1f | %16.1f | %6.3f | %5.2f | %-12s |\n", what.c_str(), reference, measured,
                measured / reference, limit, verdict);
    std::fflush(stdout);
  }

  bool everythingHolds_ = true;
};

void printHead() {
  std::printf("| %-72s | %16s | %16s | %6s | %5s | %-12s |\n", "what", "reference", "measured", "ratio", "limit", "");
  std::printf("|%s|%s:|%s:|%s:|%s:|%s|\n", std::string(74, '-').c_str(), std::string(17, '-').c_str(),
              std::string(17, '-').c_str(), std::string(7, '-').c_str(), std::string(6, '-').c_str(),
              std::string(14, '-').c_str());
}

/// The first people, who have the same history in both stores. The last one made may have been cut short.
std::vector<std::string> comparedKeys(const SeededStore& store) {
  std::vector<std::string> keys;
  for (std::size_t number = 0; number < std::min(peopleCompared, store.people.size() - 1); ++number) {
    keys.push_back(store.people[number].key);
  }
  return keys;
}

template <typename Side>
std::chrono::duration<double> timeOf(Side& side) {
  const auto start = std::chrono::steady_clock::now();
  static_cast<void>(side.compileAll());
  return std::chrono::steady_clock::now() - start;
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

class Comparison {
 public:
  Comparison(const SeededStore& store, Report& report)
      : store_(store),
        inStore_(" in the store of " + std::to_string(store.interactions)),
        keys_(comparedKeys(store)),
        statements_(firstStatements()),
        report_(report) {}

  /// The floor proves nothing unless it does the same work.
  bool isFair() const {
    LibrarySide library(store_.file, keys_);
    FloorSide floor(store_.file, keys_, statements_);
    const StatementLog ofLibrary(library.handle());
    const StatementLog ofFloor(floor.handle());
    return library.compileAll() == floor.compileAll() && ofLibrary.texts() == ofFloor.texts();
  }

  void pageMisses() const {
    FloorSide floor(store_.file, keys_, statements_);
    LibrarySide library(store_.file, keys_);
    static_cast<void>(floor.compileAll());
    static_cast<void>(library.compileAll());
    report_.counted("page misses, cold" + inStore_ + ": library against floor",
                    static_cast<double>(bench::pageMisses(floor.handle())),
                    static_cast<double>(bench::pageMisses(library.handle())), 1.02);
  }

  void instructions(const std::filesystem::path& folder) const {
    std::ofstream keys(folder / "people");
    for (const auto& key : keys_) {
      keys << key << '\n';
    }
    keys.close();
    const auto count = [&](const char* side) {
      return instructionsOf({"--count", side, store_.file.string(), (folder / "people").string()}, folder);
    };
    const auto floor = count("floor");
    const auto library = count("library");
    if (!floor || !library) {
      report_.notCounted("instructions, warm" + inStore_ + ": Valgrind is missing or failed");
      return;
    }
    report_.counted("instructions, warm" + inStore_ + ": library against floor", static_cast<double>(*floor),
                    static_cast<double>(*library), 1.12);
  }

  /// Turn about, so that both sides meet the same disturbances; the medians of several rounds.
  void times() const {
    std::vector<double> floorCold;
    std::vector<double> libraryCold;
    std::vector<double> floorWarm;
    std::vector<double> libraryWarm;
    for (int round = 0; round < 5; ++round) {
      FloorSide floor(store_.file, keys_, statements_);
      LibrarySide library(store_.file, keys_);
      floorCold.push_back(timeOf(floor).count());
      libraryCold.push_back(timeOf(library).count());
      libraryWarm.push_back(timeOf(library).count());
      floorWarm.push_back(timeOf(floor).count());
    }
    const double cold = median(floorCold);
    report_.timed("time, cold" + inStore_ + ", floor = 100: library", 100, 100 * median(libraryCold) / cold, 1.10);
    report_.timed("time, warm" + inStore_ + ", floor = 100: library", 100,
                  100 * median(libraryWarm) / median(floorWarm), 1.10);
  }

 private:
  EvidenceFloor::Statements firstStatements() const {
    LibrarySide library(store_.file, keys_);
    return statementsOf(library, keys_.front());
  }

  const SeededStore& store_;
  std::string inStore_;
  std::vector<std::string> keys_;
  EvidenceFloor::Statements statements_;
  Report& report_;
};

struct PersonCost {
  double misses;
  double steps;
};

/// What each of the people costs with nothing in the cache.
std::vector<PersonCost> costsByPerson(const SeededStore& store, const std::vector<std::string>& keys) {
  LibrarySide library(store.file, keys);
  std::vector<PersonCost> costs;
  costs.reserve(keys.size());
  library.compile(keys.front());
  for (const auto& key : keys) {
    sqlite3_db_release_memory(library.handle());
    takeMachineSteps(library.handle());
    const auto before = pageMisses(library.handle());
    library.compile(key);
    costs.push_back({static_cast<double>(pageMisses(library.handle()) - before),
                     static_cast<double>(takeMachineSteps(library.handle()))});
  }
  return costs;
}

void reportGrowthOfTheStore(const std::vector<PersonCost>& small, const std::vector<PersonCost>& large,
                            Report& report) {
  std::size_t worst = 0;
  double smallSum = 0;
  double largeSum = 0;
  for (std::size_t person = 0; person < small.size(); ++person) {
    smallSum += small[person].misses;
    largeSum += large[person].misses;
    if (large[person].misses * small[worst].misses > large[worst].misses * small[person].misses) {
      worst = person;
    }
  }
  report.counted("page misses, the same people: ten times the store", smallSum, largeSum, 1.6);
  report.counted("page misses, the person it costs most: ten times the store", small[worst].misses, large[worst].misses,
                 1.6);
}

/// The first three people have the longest history, a tenth and a hundredth of it.
void reportGrowthOfAHistory(const SeededStore& store, const std::vector<PersonCost>& costs, Report& report) {
  const auto perInteraction = [&](std::size_t person, double cost) {
    return cost / static_cast<double>(store.people[person].interactions);
  };
  for (const auto& [longer, shorter] : {std::pair{1, 2}, std::pair{0, 1}}) {
    const auto from = static_cast<std::size_t>(shorter);
    const auto to = static_cast<std::size_t>(longer);
    const auto sizes =
        std::to_string(store.people[from].interactions) + " to " + std::to_string(store.people[to].interactions);
    report.counted("machine steps for an interaction, history of " + sizes, perInteraction(from, costs[from].steps),
                   perInteraction(to, costs[to].steps), 1.25);
    report.counted("page misses for an interaction, history of " + sizes, perInteraction(from, costs[from].misses),
                   perInteraction(to, costs[to].misses), 1.25);
  }
}

/// Says of nothing that it may not be shown, but for so many people, who are not among those compared, and so many
/// mails.
void restrict(const SeededStore& store, int people, int mails) {
  Connection connection(store.file, keyedConfiguration(OpenMode::readWrite));
  connection.executeScript("DELETE FROM deletion_tombstone; DELETE FROM exclusion_rule");
  connection.execute(R"sql(
WITH RECURSIVE hidden(number) AS (SELECT 1 UNION ALL SELECT number + 1 FROM hidden)
INSERT INTO exclusion_rule (id, scope, target_id, created_at)
SELECT 'p-' || number, 'person', 'somebody-' || number, '' FROM hidden LIMIT ?
)sql",
                     people);
  connection.execute(R"sql(
INSERT INTO exclusion_rule (id, scope, target_id, created_at)
SELECT 'm-' || id, 'interaction', id, '' FROM interaction WHERE direction = 'inbound' ORDER BY substr(id, -5) LIMIT ?
)sql",
                     mails);
}

PersonCost sumOf(const std::vector<PersonCost>& costs) {
  PersonCost sum{0, 0};
  for (const auto& cost : costs) {
    sum.misses += cost.misses;
    sum.steps += cost.steps;
  }
  return sum;
}

/// What it costs everybody else that some are hidden, and that the user settled some mails.
void reportRestrictions(const SeededStore& store, const std::vector<std::string>& keys, Report& report) {
  restrict(store, 0, 0);
  const auto free = sumOf(costsByPerson(store, keys));
  for (const auto& [people, mails] : {std::pair{20, 0}, std::pair{0, 50}, std::pair{20, 50}}) {
    restrict(store, people, mails);
    const auto restricted = sumOf(costsByPerson(store, keys));
    const auto what = std::to_string(people) + " people hidden, " + std::to_string(mails) + " mails settled: ";
    report.counted(what + "machine steps", free.steps, restricted.steps, 1.5);
    report.counted(what + "page misses", free.misses, restricted.misses, 1.05);
  }
}

void reportSelection(Report& report) {
  const auto thousand = selectionCosts(1000);
  const auto tenThousand = selectionCosts(10000);
  report.timed("time of selection for a person, 1 thousand = 100: 10 thousand", 100,
               100 * tenThousand.microsecondsPerPerson / thousand.microsecondsPerPerson, 1.25);
  report.timed("time of selection for a person besides dates, 3 microseconds = 100", 100,
               100 * (tenThousand.microsecondsPerPerson - tenThousand.microsecondsOfDates) / 3, 1.0);
}

int compare(std::size_t interactions) {
  const ScratchFolder folder;
  const std::size_t longestHistory = interactions / 5;
  const auto small = makeSeededStore(folder.path() / "small.db", {interactions, longestHistory});
  const auto large = makeSeededStore(folder.path() / "large.db", {interactions * 10, longestHistory});
  const auto keys = comparedKeys(small);
  std::printf("%zu people in a store of %zu interactions and in one of %zu.\n\n", keys.size(), interactions,
              interactions * 10);
  printHead();
  Report report;
  for (const auto* store : {&small, &large}) {
    const Comparison comparison(*store, report);
    if (!comparison.isFair()) {
      std::puts("The floor and the library do not agree on statements or results.");
      return 1;
    }
    comparison.pageMisses();
    comparison.times();
    if (store == &small) {
      comparison.instructions(folder.path());
    }
  }
  const auto costs = costsByPerson(small, keys);
  reportGrowthOfTheStore(costs, costsByPerson(large, keys), report);
  reportGrowthOfAHistory(small, costs, report);
  reportSelection(report);
  reportRestrictions(small, keys, report);
  return report.everythingHolds() ? 0 : 1;
}

std::vector<std::string> linesOf(const char* file) {
  std::ifstream input(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(input, line);) {
    lines.push_back(line);
  }
  return lines;
}

/// Everyone twice: the first time fills the page cache, the second is counted.
template <typename Side>
int countWarm(Side& side) {
  static_cast<void>(side.compileAll());
  countedWork([&side] { static_cast<void>(side.compileAll()); });
  return 0;
}

int count(std::string_view side, const char* store, const char* people) {
  const auto keys = linesOf(people);
  LibrarySide library(store, keys);
  if (side == "library") {
    return countWarm(library);
  }
  FloorSide floor(store, keys, statementsOf(library, keys.front()));
  return countWarm(floor);
}

} // namespace
} // namespace orvan::bench

int main(int argumentCount, char** arguments) {
  const std::vector<std::string> given(arguments + 1, arguments + argumentCount);
  if (given.empty()) {
    return orvan::bench::compare(100000);
  }
  if (given.size() == 2 && given[0] == "--interactions") {
    return orvan::bench::compare(std::stoul(given[1]));
  }
  if (given.size() == 4 && given[0] == "--count") {
    return orvan::bench::count(given[1], given[2].c_str(), given[3].c_str());
  }
  std::cerr << "usage: evidence_benchmark [--interactions N]\n";
  return 2;
}
