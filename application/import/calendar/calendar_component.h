#pragma once

#include <libical/ical.h>

#include <memory>
#include <string>

namespace orvan {

struct FreeCalendarComponent {
  void operator()(icalcomponent* component) const noexcept { icalcomponent_free(component); }
};
using CalendarComponent = std::unique_ptr<icalcomponent, FreeCalendarComponent>;

/// The component of the given kind that `text` is, or null when it is none.
CalendarComponent parseComponent(const std::string& text, icalcomponent_kind kind);

} // namespace orvan
