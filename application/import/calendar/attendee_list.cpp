#include "application/import/calendar/attendee_list.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "OrvanPlatform/printable_text.h"
#include "OrvanPlatform/white_space.h"
#include "application/import/address/normal_address.h"

namespace orvan {
namespace {

const char* addressValue(icalproperty* property) {
  return icalproperty_isa(property) == ICAL_ORGANIZER_PROPERTY ? icalproperty_get_organizer(property)
                                                               : icalproperty_get_attendee(property);
}

/// The address itself, or the one in the EMAIL parameter where the value is some other kind of identifier.
std::optional<std::string> mailAddress(icalproperty* property) {
  if (auto address = normalAddress(displayText(addressValue(property)))) {
    return address;
  }
  icalparameter* email = icalproperty_get_first_parameter(property, ICAL_EMAIL_PARAMETER);
  return email == nullptr ? std::nullopt : normalAddress(displayText(icalparameter_get_email(email)));
}

/// Some calendars repeat the address where they know no name.
std::string displayName(icalproperty* property, const std::string& address) {
  icalparameter* parameter = icalproperty_get_first_parameter(property, ICAL_CN_PARAMETER);
  if (parameter == nullptr) {
    return {};
  }
  auto name = displayText(icalparameter_get_cn(parameter));
  return normalAddress(name) == address ? std::string{} : name;
}

bool isPerson(icalproperty* property) {
  icalparameter* type = icalproperty_get_first_parameter(property, ICAL_CUTYPE_PARAMETER);
  const auto kind = type == nullptr ? ICAL_CUTYPE_INDIVIDUAL : icalparameter_get_cutype(type);
  return kind != ICAL_CUTYPE_ROOM && kind != ICAL_CUTYPE_RESOURCE && kind != ICAL_CUTYPE_GROUP;
}

bool hasDeclined(icalproperty* property) {
  icalparameter* status = icalproperty_get_first_parameter(property, ICAL_PARTSTAT_PARAMETER);
  return status != nullptr && icalparameter_get_partstat(status) == ICAL_PARTSTAT_DECLINED;
}

} // namespace

void AttendeeList::add(icalproperty* organizerOrAttendee) {
  const auto address = mailAddress(organizerOrAttendee);
  if (!address || !isPerson(organizerOrAttendee)) {
    return;
  }
  if (hasDeclined(organizerOrAttendee)) {
    const bool isUser = ownAddresses_.contains(*address);
    declinedByUser_ |= isUser;
    if (!isUser) {
      declined_.insert(*address);
    }
  }
  merge({.displayName = displayName(organizerOrAttendee, *address), .address = *address});
}

void AttendeeList::merge(CalendarAttendee attendee) {
  const auto known = std::ranges::find(listed_, attendee.address, &CalendarAttendee::address);
  if (known == listed_.end()) {
    listed_.push_back(std::move(attendee));
  } else if (known->displayName.empty()) {
    known->displayName = std::move(attendee.displayName);
  }
}

std::vector<CalendarAttendee> AttendeeList::people() const {
  auto people = listed_;
  std::erase_if(people, [this](const CalendarAttendee& attendee) { return declined_.contains(attendee.address); });
  return people;
}

std::string displayText(const char* text) {
  if (text == nullptr) {
    return {};
  }
  return std::string{trimmed(printableText(text))};
}

} // namespace orvan
