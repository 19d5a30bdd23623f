#pragma once

#include <QString>
#include <optional>
#include <string>
#include <variant>

#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"
#include "application/session/session.h"

namespace orvan {

/// A follow-up that is done or given up as what it is, whether or not it has a row on the list.
struct FollowUpToEnd {
  enum class End { completed, cancelled };

  std::string id;
  End end;
};

/// What the user decided in the window.
struct DecisionToSave {
  QString personKey;
  QString displayName;
  /// What the row goes by that leaves the list; the follow-up's id where it can have none.
  std::string itemKey;
  std::variant<AttentionItemAction, FollowUpToEnd> action;
};

enum class SavingEnd {
  saved,
  /// The reason no longer stands, so there was nothing to decide about any more; nothing was changed.
  lapsed,
  /// The store is as it was, and saving can be tried again.
  failed,
};

struct SavingOutcome {
  SavingEnd end;
  /// The follow-up that ended with it, whose reminder is to go.
  std::optional<std::string> endedFollowUp = {};
};

/// For the store's thread. The decision is on disk when it is saved.
SavingOutcome save(const DecisionToSave& decision, Session& session, Instant asOf) noexcept;

} // namespace orvan
