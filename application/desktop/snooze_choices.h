#pragma once

#include <QString>
#include <vector>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// One of the ends that a snooze is offered with.
struct SnoozeChoice {
  QString label;
  /// The day on which it ends, as the user writes dates.
  QString date;
  /// The same day in the form 2026-03-04.
  QString day;
};

/// Tomorrow, next week (its Monday) and next month (this day of it, or its last), reckoned from `asOf` in the user's
/// time zone.
std::vector<SnoozeChoice> snoozeChoices(Instant asOf);

/// The day of `asOf` in the user's time zone, in the form 2026-03-04.
QString dayOf(Instant asOf);

} // namespace orvan
