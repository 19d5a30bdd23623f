#include "bench/selection_costs.h"

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_selector.h"
#include "bench/seeded_store.h"

namespace orvan::bench {
namespace {

using Microseconds = std::chrono::duration<double, std::micro>;

/// The open thread is the latest of all, so the item has one date.
AttentionEvidenceBundle bundleOf(const std::string& key, Instant lastMessageAt) {
  const auto at = formatInternetDateTime(lastMessageAt);
  return {key,
          formatInternetDateTime(seededNow()),
          30,
          {{key + "-thread", "mail", key + "-interaction", key + "-event", at}},
          {},
          ChangedContextEvidence{21, "2024-01-01T10:00:00Z", "2024-03-01T10:00:00Z", {key + "-a", key + "-b"}, 2},
          {{key + "-loop", "promise", "2024-02-01T10:00:00Z", key + "-evidence"}},
          {{"account-mail-home", "sync", "current", "2026-03-05T11:00:00Z"}},
          std::nullopt,
          0};
}

/// This thread's own time, which other programs on the machine lengthen less than the time on the wall.
double threadMicroseconds() {
  timespec now{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return Microseconds{std::chrono::seconds{now.tv_sec} + std::chrono::nanoseconds{now.tv_nsec}}.count();
}

/// The least of several runs: what disturbs a run only lengthens it.
template <typename Work>
double leastMicroseconds(Work work) {
  double least = 0;
  for (int run = 0; run < 7; ++run) {
    const double start = threadMicroseconds();
    work();
    const double took = threadMicroseconds() - start;
    least = run == 0 ? took : std::min(least, took);
  }
  return least;
}

} // namespace

SelectionCosts selectionCosts(std::size_t people) {
  std::vector<AttentionCatchUpPerson> persons;
  std::vector<Instant> dates;
  for (std::size_t number = 0; number < people; ++number) {
    const auto key = "person-" + std::to_string(100000 + number);
    dates.push_back(seededNow() - std::chrono::minutes{static_cast<int>(number % 500000)});
    persons.emplace_back(key, "Person " + std::to_string(number), bundleOf(key, dates.back()));
  }
  std::size_t selected = 0;
  std::size_t written = 0;
  const double whole =
      leastMicroseconds([&] { selected = AttentionCatchUpSelector::select(persons, {}, seededNow()).size(); });
  const double ofDates = leastMicroseconds([&] {
    for (const Instant date : dates) {
      written += humanDateText(date).size();
    }
  });
  if (selected != people || written == 0) {
    std::fputs("The selection left people out.\n", stderr);
    std::exit(1); // NOLINT(concurrency-mt-unsafe): no other thread runs here.
  }
  const auto count = static_cast<double>(people);
  return {whole / count, ofDates / count};
}

} // namespace orvan::bench
