#pragma once

#include <chrono>
#include <optional>
#include <utility>

#include "OrvanPlatform/clock.h"

namespace orvan {

/// What the user did last and may still think better of. It is not saved before it leaves here: what is dismissed or
/// resolved is final in the store, so the store must not know of it while it can be undone.
///
/// Each function that gives a decision back gives it away: exactly one caller gets it, to save it or to drop it. Times
/// are those of the monotonic clock and never go back.
template <typename Decision>
class UndoPeriod {
 public:
  static constexpr std::chrono::seconds length{10};

  /// Takes in a decision, and gives back the one before it, which is to be saved at once.
  std::optional<Decision> begin(Decision decision, MonotonicInstant now) {
    endsAt_ = now + length;
    return std::exchange(decision_, std::move(decision));
  }

  /// The decision once its time is over.
  std::optional<Decision> takeDue(MonotonicInstant now) { return now >= endsAt_ ? take() : std::nullopt; }

  /// The decision whatever the time: to save it because there will be no later, or to undo it.
  std::optional<Decision> take() { return std::exchange(decision_, std::nullopt); }

  const std::optional<Decision>& decision() const noexcept { return decision_; }

  /// In whole seconds, the last of which is 1; 0 without a decision.
  std::chrono::seconds left(MonotonicInstant now) const {
    return decision_ && now < endsAt_ ? std::chrono::ceil<std::chrono::seconds>(endsAt_ - now)
                                      : std::chrono::seconds{0};
  }

 private:
  std::optional<Decision> decision_;
  MonotonicInstant endsAt_;
};

} // namespace orvan
