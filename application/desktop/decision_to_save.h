#pragma once

#include <QString>
#include <string>

#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"
#include "application/session/session.h"

namespace orvan {

/// What the user decided in the window.
struct DecisionToSave {
  QString personKey;
  QString displayName;
  std::string itemKey;
  AttentionItemAction action;
};

enum class SavingEnd {
  saved,
  /// The reason no longer stands, so there was nothing to decide about any more; nothing was changed.
  lapsed,
  /// The store is as it was, and saving can be tried again.
  failed,
};

/// For the store's thread. The decision is on disk when it is saved.
SavingEnd save(const DecisionToSave& decision, Session& session, Instant asOf) noexcept;

} // namespace orvan
