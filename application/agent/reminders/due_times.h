#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/agent/reminders/reminder_file.h"

namespace orvan {

/// In which order pending requests come due, of each application, in the time zone as it was when they were told. Holds
/// numbers and instants alone.
class DueTimes {
 public:
  /// One whose date the calendar does not know any more is due at once: better that than lost.
  void add(const PendingTime& time);
  /// Passes over what is not there.
  void remove(std::int64_t number);
  /// Begins anew with these.
  void replace(const std::vector<PendingTime>& times);

  bool contains(std::int64_t number) const { return byNumber_.contains(number); }
  std::size_t count(std::int64_t application) const;

  /// Those of the application that are due by `now`, the oldest first.
  std::vector<std::int64_t> due(std::int64_t application, Instant now) const;
  /// The earliest after `now` of the applications that `counts` takes.
  std::optional<Instant> nextAfter(Instant now, const std::function<bool(std::int64_t application)>& counts) const;
  /// The earliest of all, whether it has passed or not.
  std::optional<Instant> earliest() const;

 private:
  using Order = std::set<std::pair<Instant, std::int64_t>>;
  struct Place {
    std::int64_t application;
    Instant instant;
  };

  std::map<std::int64_t, Order> byApplication_;
  std::unordered_map<std::int64_t, Place> byNumber_;
};

} // namespace orvan
