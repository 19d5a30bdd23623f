#pragma once

#include <string_view>
#include <vector>

#include "OrvanObservatory/contact_outlook.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"

namespace orvan {

/// The parts of the list, in their order.
enum class ListPart {
  /// What the user asked to be reminded of, from its due time on.
  followUp,
  /// Questions of the last two weeks, and meetings of the coming one.
  near,
  /// Mail that waits, contacts renewed, and what else is open with people the user has written to or met.
  current,
  /// The same with people the user never wrote to nor met.
  strangers,
  /// Mail and questions that have waited for more than 90 days.
  older,
};

/// Why a row stands where it stands: within a part, the more worthwhile first.
struct ListPlace {
  ListPart part;
  /// See ContactOutlook::exchange.
  double exchange;
  /// From the event behind the reason, or a follow-up's due time, to the moment of the list; negative for what is to
  /// come.
  std::chrono::duration<double> age;

  /// Whether a row with this place comes before one with `other`.
  bool isBefore(const ListPlace& other) const noexcept;
};

/// A pure function of what is told of the item's person.
ListPlace placeOf(const AttentionCatchUpItem& item, const AttentionEvidenceBundle& bundle,
                  const ContactOutlook& outlook, Instant asOf);

/// The place of a follow-up that was due at `dueAt`; `exchange` is told of its person.
ListPlace placeOfFollowUp(Instant dueAt, double exchange, Instant asOf);

/// The name of the case.
std::string_view caseName(ListPart part) noexcept;

} // namespace orvan
