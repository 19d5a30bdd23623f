#include "application/import/calendar/calendar_zones.h"

#include <libical/ical.h>
#include <unicode/basictz.h>
#include <unicode/timezone.h>

#include <string_view>
#include <utility>

#include "OrvanPlatform/local_time.h"
#include "application/import/calendar/calendar_component.h"
#include "application/import/calendar/calendar_event.h"

namespace orvan {
namespace {

/// A zone of the zone database.
class KnownZone final : public CalendarZone {
 public:
  explicit KnownZone(std::unique_ptr<icu::BasicTimeZone> zone) : zone_(std::move(zone)) {}

  std::chrono::seconds offsetAt(std::chrono::local_seconds wall) const override {
    std::int32_t standard = 0;
    std::int32_t saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    const auto milliseconds = static_cast<UDate>(wall.time_since_epoch().count()) * 1000.0;
    zone_->getOffsetFromLocal(milliseconds, UCAL_TZ_LOCAL_FORMER, UCAL_TZ_LOCAL_FORMER, standard, saving, status);
    return std::chrono::seconds{U_SUCCESS(status) ? (standard + saving) / 1000 : 0};
  }

 private:
  std::unique_ptr<icu::BasicTimeZone> zone_;
};

class UserZone final : public CalendarZone {
 public:
  std::chrono::seconds offsetAt(std::chrono::local_seconds wall) const override {
    return std::chrono::duration_cast<std::chrono::seconds>(wall.time_since_epoch() -
                                                            instantOfLocalTime(wall).time_since_epoch());
  }
};

struct FreeZone {
  void operator()(icaltimezone* zone) const noexcept { icaltimezone_free(zone, 1); }
};

/// A zone that the file defines.
class DefinedZone final : public CalendarZone {
 public:
  explicit DefinedZone(std::unique_ptr<icaltimezone, FreeZone> zone) : zone_(std::move(zone)) {}

  std::chrono::seconds offsetAt(std::chrono::local_seconds wall) const override {
    icaltimetype time = calendarTime(wall, false);
    return std::chrono::seconds{icaltimezone_get_utc_offset(zone_.get(), &time, nullptr)};
  }

 private:
  std::unique_ptr<icaltimezone, FreeZone> zone_;
};

std::unique_ptr<CalendarZone> zoneNamed(const std::string& name) {
  std::unique_ptr<icu::TimeZone> zone{icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(name))};
  if (zone == nullptr || *zone == icu::TimeZone::getUnknown()) {
    return nullptr;
  }
  auto* basic = dynamic_cast<icu::BasicTimeZone*>(zone.get());
  if (basic == nullptr) {
    return nullptr;
  }
  std::ignore = zone.release();
  return std::make_unique<KnownZone>(std::unique_ptr<icu::BasicTimeZone>{basic});
}

std::unique_ptr<CalendarZone> zoneOfWindowsName(const std::string& name) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString identifier;
  icu::TimeZone::getIDForWindowsID(icu::UnicodeString::fromUTF8(name), nullptr, identifier, status);
  if (U_FAILURE(status) || identifier.isEmpty()) {
    return nullptr;
  }
  std::string zone;
  identifier.toUTF8String(zone);
  return zoneNamed(zone);
}

/// Calendars prefix the database's names with vendors' paths, as in "/citadel.org/20250101_1/Europe/Lisbon".
std::unique_ptr<CalendarZone> zoneAtEndOf(std::string_view path) {
  while (path.contains('/')) {
    path.remove_prefix(path.find('/') + 1);
    if (auto zone = zoneNamed(std::string{path})) {
      return zone;
    }
  }
  return nullptr;
}

std::unique_ptr<CalendarZone> lookUp(const std::string& identifier) {
  if (auto zone = zoneNamed(identifier)) {
    return zone;
  }
  if (auto zone = zoneOfWindowsName(identifier)) {
    return zone;
  }
  return zoneAtEndOf(identifier);
}

/// The parser lists every change that a definition yields up to some later year, so one that changes every second
/// would fill the memory.
bool isSlowRule(const icalrecurrencetype& rule) {
  const bool seldom = rule.freq == ICAL_YEARLY_RECURRENCE || rule.freq == ICAL_MONTHLY_RECURRENCE;
  const auto listsSeveral = [](const short* list) {
    return list[0] != ICAL_RECURRENCE_ARRAY_MAX && list[1] != ICAL_RECURRENCE_ARRAY_MAX;
  };
  return !seldom || listsSeveral(rule.by_hour) || listsSeveral(rule.by_minute) || listsSeveral(rule.by_second);
}

bool canBeFollowed(icalcomponent* observance) {
  icalproperty* start = icalcomponent_get_first_property(observance, ICAL_DTSTART_PROPERTY);
  icalproperty* offset = icalcomponent_get_first_property(observance, ICAL_TZOFFSETTO_PROPERTY);
  icalproperty* rule = icalcomponent_get_first_property(observance, ICAL_RRULE_PROPERTY);
  return start != nullptr && offset != nullptr && wallTime(icalproperty_get_dtstart(start)).has_value() &&
         (rule == nullptr || !isSlowRule(icalproperty_get_rrule(rule)));
}

bool isUsableDefinition(icalcomponent* definition) {
  bool any = false;
  for (icalcomponent* inner = icalcomponent_get_first_component(definition, ICAL_ANY_COMPONENT); inner != nullptr;
       inner = icalcomponent_get_next_component(definition, ICAL_ANY_COMPONENT)) {
    const auto kind = icalcomponent_isa(inner);
    if (kind == ICAL_XSTANDARD_COMPONENT || kind == ICAL_XDAYLIGHT_COMPONENT) {
      any = true;
      if (!canBeFollowed(inner)) {
        return false;
      }
    }
  }
  return any;
}

} // namespace

const CalendarZone& CalendarZones::userZone() noexcept {
  static const UserZone zone;
  return zone;
}

void CalendarZones::define(const std::string& definition) {
  auto component = parseComponent(definition, ICAL_VTIMEZONE_COMPONENT);
  if (component == nullptr || !isUsableDefinition(component.get())) {
    return;
  }
  icalproperty* name = icalcomponent_get_first_property(component.get(), ICAL_TZID_PROPERTY);
  if (name == nullptr || icalproperty_get_tzid(name) == nullptr) {
    return;
  }
  const std::string identifier = icalproperty_get_tzid(name);
  std::unique_ptr<icaltimezone, FreeZone> zone{icaltimezone_new()};
  if (icaltimezone_set_component(zone.get(), component.get()) != 0) {
    std::ignore = component.release(); // The zone owns it now.
    zones_.try_emplace(identifier, std::make_unique<DefinedZone>(std::move(zone)));
  }
}

const CalendarZone* CalendarZones::find(const std::string& identifier) {
  auto known = zones_.find(identifier);
  if (known == zones_.end()) {
    known = zones_.emplace(identifier, lookUp(identifier)).first;
  }
  return known->second.get();
}

} // namespace orvan
