#include "application/import/calendar/calendar_component.h"

namespace orvan {

CalendarComponent parseComponent(const std::string& text, icalcomponent_kind kind) {
  icalerror_set_errors_are_fatal(0); // Some builds of the parser abort on bad input unless told otherwise.
  CalendarComponent component{icalparser_parse_string(text.c_str())};
  if (component != nullptr && icalcomponent_isa(component.get()) != kind) {
    component.reset();
  }
  return component;
}

} // namespace orvan
