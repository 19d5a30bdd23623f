#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"

#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

namespace orvan {
namespace {

using internal::AttentionWhyNowItemMaker;
using Kind = AttentionWhyNowItem::Kind;
using Reference = AttentionWhyNowEvidenceReference;

const std::string& definingTimestamp(const OpenThreadEvidence& evidence) noexcept {
  return evidence.lastInboundOccurredAt();
}

const std::string& definingTimestamp(const ChangedContextEvidence& evidence) noexcept {
  return evidence.resumedAt();
}

const std::string& definingTimestamp(const CommitmentEvidence& evidence) noexcept {
  return evidence.detectedAt();
}

const std::string& definingTimestamp(const UpcomingInteractionEvidence& evidence) noexcept {
  return evidence.occurredAt();
}

std::vector<Reference> references(const OpenThreadEvidence& evidence) {
  return {Reference::sourceEvent(evidence.lastInboundSourceEventID()),
          Reference::interaction(evidence.lastInboundInteractionID()), Reference::thread(evidence.threadID())};
}

std::vector<Reference> references(const ChangedContextEvidence& evidence) {
  std::vector<Reference> references;
  references.reserve(evidence.resumedInteractionIDs().size());
  for (const auto& id : evidence.resumedInteractionIDs()) {
    references.push_back(Reference::interaction(id));
  }
  return references;
}

std::vector<Reference> references(const CommitmentEvidence& evidence) {
  std::vector<Reference> references{Reference::openLoop(evidence.openLoopID())};
  if (const auto& evidenceRef = evidence.evidenceRef()) {
    references.push_back(Reference::claimEvidence(*evidenceRef));
  }
  return references;
}

std::vector<Reference> references(const UpcomingInteractionEvidence& evidence) {
  return {Reference::sourceEvent(evidence.sourceEventID()), Reference::interaction(evidence.interactionID()),
          Reference::thread(evidence.threadID())};
}

std::string_view headlineOfCommitment(std::string_view openLoopKind) noexcept {
  if (openLoopKind == "unanswered_question") {
    return "There's a question still waiting on an answer.";
  }
  if (openLoopKind == "promise") {
    return "You have something you said you'd follow up on.";
  }
  if (openLoopKind == "scheduled_followup") {
    return "A follow-up with them is coming due.";
  }
  return "There's something still open with them.";
}

std::string datedLine(std::string_view words, std::string_view timestamp) {
  std::string line{words};
  line += internal::humanDate(timestamp);
  line += '.';
  return line;
}

std::string messageCountLine(std::int64_t count) {
  return count == 1 ? "1 message since." : std::to_string(count) + " messages since.";
}

template <typename Evidence>
AttentionWhyNowItem itemOf(const Evidence& evidence, Kind kind, std::string_view headline,
                           std::vector<std::string> lines) {
  return AttentionWhyNowItemMaker::make(kind, definingTimestamp(evidence), std::string{headline}, std::move(lines),
                                        references(evidence));
}

struct MakeItem {
  AttentionWhyNowItem operator()(const OpenThreadEvidence* evidence) const {
    return internal::makeOpenThreadItem(*evidence);
  }
  AttentionWhyNowItem operator()(const ChangedContextEvidence* evidence) const {
    return internal::makeChangedContextItem(*evidence);
  }
  AttentionWhyNowItem operator()(const CommitmentEvidence* evidence) const {
    return internal::makeCommitmentItem(*evidence);
  }
  AttentionWhyNowItem operator()(const UpcomingInteractionEvidence* evidence) const {
    return internal::makeUpcomingInteractionItem(*evidence);
  }
};

/// The evidence with the latest event among those offered. Wording a reason costs far more than comparing it, because
/// of its dates, so only the winner is made into an item.
class LatestEvidence {
 public:
  /// Kinds are offered in the order of their priority, so on an equal timestamp the one already held stays.
  template <typename Evidence>
  void offer(const Evidence& evidence) {
    const std::string& eventAt = definingTimestamp(evidence);
    if (eventAt_ < eventAt && internal::isValidDefiningTimestamp(eventAt) &&
        internal::haveValidIdentifiers(references(evidence))) {
      evidence_ = &evidence;
      eventAt_ = eventAt;
    }
  }

  std::optional<AttentionWhyNowItem> item() const {
    if (eventAt_.empty()) {
      return std::nullopt;
    }
    return std::visit(MakeItem{}, evidence_);
  }

 private:
  std::variant<const OpenThreadEvidence*, const ChangedContextEvidence*, const CommitmentEvidence*,
               const UpcomingInteractionEvidence*>
      evidence_;
  /// Empty until there is evidence: every valid timestamp comes after the empty text.
  std::string_view eventAt_;
};

} // namespace

namespace internal {

std::string humanDate(std::string_view timestamp) {
  const auto instant = parseInternetDateTime(timestamp);
  return instant ? humanDateText(*instant) : std::string{timestamp};
}

AttentionWhyNowItem makeOpenThreadItem(const OpenThreadEvidence& evidence) {
  return itemOf(evidence, Kind::openThread, "A conversation with them is waiting on your reply.",
                {datedLine("Last message received ", evidence.lastInboundOccurredAt())});
}

AttentionWhyNowItem makeChangedContextItem(const ChangedContextEvidence& evidence) {
  return itemOf(
      evidence, Kind::changedContext, "You reconnected after a quiet stretch.",
      {datedLine("Quiet since ", evidence.quietSinceAt()), datedLine("Back in touch since ", evidence.resumedAt()),
       messageCountLine(evidence.resumedInteractionCount())});
}

AttentionWhyNowItem makeCommitmentItem(const CommitmentEvidence& evidence) {
  return itemOf(evidence, Kind::commitment, headlineOfCommitment(evidence.kind()),
                {datedLine("Noticed ", evidence.detectedAt())});
}

AttentionWhyNowItem makeUpcomingInteractionItem(const UpcomingInteractionEvidence& evidence) {
  return itemOf(evidence, Kind::upcomingInteraction, "You have an upcoming meeting with them.",
                {datedLine("Scheduled for ", evidence.occurredAt())});
}

} // namespace internal

std::optional<AttentionWhyNowItem> AttentionWhyNowSelector::select(const AttentionEvidenceBundle& bundle) {
  LatestEvidence latest;
  if (!bundle.openThreads().empty()) {
    latest.offer(bundle.openThreads().front());
  }
  if (const auto& changedContext = bundle.changedContext()) {
    latest.offer(*changedContext);
  }
  if (!bundle.commitments().empty()) {
    latest.offer(bundle.commitments().front());
  }
  if (!bundle.upcomingInteractions().empty()) {
    latest.offer(bundle.upcomingInteractions().front());
  }
  return latest.item();
}

} // namespace orvan
