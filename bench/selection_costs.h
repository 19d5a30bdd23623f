#pragma once

#include <cstddef>

namespace orvan::bench {

struct SelectionCosts {
  double microsecondsPerPerson;
  /// The part of that which goes into writing dates for people.
  double microsecondsOfDates;
};

/// What selecting the catch-up list costs with `people` bundles in memory, each of which has a reason with one date.
SelectionCosts selectionCosts(std::size_t people);

} // namespace orvan::bench
