#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// One of the moments that a reminder is offered for.
struct ReminderChoice {
  QString label;
  Instant moment;
};

/// Tonight at six unless that is past, tomorrow and next week's Monday at nine, reckoned from `asOf` in the user's time
/// zone.
std::vector<ReminderChoice> reminderChoices(Instant asOf);

/// The moment that a day in the form 2026-03-04 and a time as the user writes it ("9:30", "14.00", "14", "2pm") mean;
/// nine o'clock without a time. Nothing when that is no time, or not after `asOf`.
std::optional<Instant> reminderMoment(const QString& day, const QString& time, Instant asOf);

} // namespace orvan
