#include "application/agent/reminders/due_times.h"

#include <algorithm>
#include <limits>

#include "OrvanPlatform/user_calendar.h"

namespace orvan {

void DueTimes::add(const PendingTime& time) {
  const auto instant = userCalendarInstant(time.components).value_or(earliestInstant);
  byNumber_.insert_or_assign(time.number, Place{.application = time.application, .instant = instant});
  byApplication_[time.application].emplace(instant, time.number);
}

void DueTimes::remove(std::int64_t number) {
  const auto place = byNumber_.find(number);
  if (place != byNumber_.end()) {
    byApplication_[place->second.application].erase({place->second.instant, number});
    byNumber_.erase(place);
  }
}

void DueTimes::replace(const std::vector<PendingTime>& times) {
  byApplication_.clear();
  byNumber_.clear();
  for (const auto& time : times) {
    add(time);
  }
}

std::size_t DueTimes::count(std::int64_t application) const {
  const auto found = byApplication_.find(application);
  return found == byApplication_.end() ? 0 : found->second.size();
}

std::vector<std::int64_t> DueTimes::due(std::int64_t application, Instant now) const {
  std::vector<std::int64_t> numbers;
  const auto found = byApplication_.find(application);
  if (found == byApplication_.end()) {
    return numbers;
  }
  for (const auto& [instant, number] : found->second) {
    if (instant > now) {
      break;
    }
    numbers.push_back(number);
  }
  return numbers;
}

std::optional<Instant> DueTimes::nextAfter(Instant now,
                                           const std::function<bool(std::int64_t application)>& counts) const {
  std::optional<Instant> next;
  for (const auto& [application, order] : byApplication_) {
    const auto first = order.upper_bound({now, std::numeric_limits<std::int64_t>::max()});
    if (first != order.end() && counts(application)) {
      next = std::min(next.value_or(first->first), first->first);
    }
  }
  return next;
}

std::optional<Instant> DueTimes::earliest() const {
  std::optional<Instant> first;
  for (const auto& [application, order] : byApplication_) {
    if (!order.empty()) {
      first = std::min(first.value_or(order.begin()->first), order.begin()->first);
    }
  }
  return first;
}

} // namespace orvan
