#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"

namespace orvan::bench {

/// How much is in a generated store.
struct StoreSize {
  std::size_t interactions;
  /// The longest history of one person. Three people have this many interactions, a tenth and a hundredth of it; one in
  /// four hundred of the others has as many, and the rest have 50 to 500 (or as many as fit).
  std::size_t longestHistory;
};

struct SeededPerson {
  std::string key;
  std::size_t interactions;
};

struct SeededStore {
  std::filesystem::path file;
  std::size_t interactions;
  /// In the order in which they were made. The first three have the longest history, a tenth and a hundredth of it.
  std::vector<SeededPerson> people;
};

/// The moment that the generated history leads up to.
Instant seededNow();

/// Writes an encrypted store of invented people: threads of three to eight messages, meetings past and to come, open
/// loops with their claims and evidence, corrections, tombstones, exclusion rules and freshness. The rows of one person
/// lie together, because their identifiers begin with the person's, as those of an importer do.
///
/// The same size gives the same store, and a store with more interactions holds the people of a smaller one with the
/// same history, among others.
SeededStore makeSeededStore(const std::filesystem::path& file, const StoreSize& size);

} // namespace orvan::bench
