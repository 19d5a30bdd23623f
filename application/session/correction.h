#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "application/corrections/hiding.h"
#include "application/session/hiding_lookup.h"
#include "application/session/item_lookup.h"
#include "application/session/session.h"

namespace orvan {

// Each of these does what the user says in one transaction with its entry in the journal, whose number is the action,
// and throws what the session throws; the store is as it was then.

/// Whether something was as asked for already.
enum class Outcome { done, wasSo };

struct Hiding {
  Outcome outcome;
  HiddenThing thing;
  /// Nothing when it was so already.
  std::optional<std::int64_t> action;
};

/// Keeps it from being shown.
Hiding hide(Session& session, const HidingTarget& target, Instant now);

/// Shows it again.
std::int64_t unhide(Session& session, const HiddenThing& thing, Instant now);

/// What was wrong about an item.
enum class WrongReason { noQuestion, notWaiting };

/// The name of the case.
std::string_view caseName(WrongReason reason) noexcept;

/// What can be wrong about an item; nothing when its reason stands whatever the user says.
std::optional<WrongReason> wrongReasonIn(const FoundItem& found);

struct Correction {
  WrongReason reason;
  AttentionCatchUpItem item;
  std::int64_t action;
};

/// The user says that the reason of the item that itemCalled() finds at `asOf` is none: what was taken for a question,
/// or a conversation that waits for nothing. Throws Error with SessionError::reasonStands for any other reason, and
/// what itemCalled() throws.
Correction sayWrong(Session& session, const std::string& item, Instant asOf);

} // namespace orvan
