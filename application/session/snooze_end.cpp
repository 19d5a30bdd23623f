#include "application/session/snooze_end.h"

#include "application/session/said_moment.h"

namespace orvan {

std::optional<Instant> parseSnoozeEnd(std::string_view text, Instant asOf) {
  return parseSaidMoment(text, asOf, UnsaidTime::beginning);
}

} // namespace orvan
