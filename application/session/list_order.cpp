#include "application/session/list_order.h"

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

using Days = std::chrono::duration<double, std::chrono::days::period>;
using Kind = AttentionWhyNowItem::Kind;

constexpr Days questionIsNear{14};
constexpr Days meetingIsNear{7};

/// A promise or a follow-up of the user's own does not go stale.
bool isWaiting(const AttentionCatchUpItem& item, const AttentionEvidenceBundle& bundle) {
  const bool isQuestion = item.whyNow().kind() == Kind::commitment && !bundle.commitments().empty() &&
                          bundle.commitments().front().kind() == "unanswered_question";
  return isQuestion || item.whyNow().kind() == Kind::openThread;
}

bool isNear(const AttentionCatchUpItem& item, Days age) {
  switch (item.whyNow().kind()) {
    case Kind::commitment:
      return age <= questionIsNear;
    case Kind::upcomingInteraction:
      return -age <= meetingIsNear;
    case Kind::openThread:
    case Kind::changedContext:
      return false;
  }
  return false;
}

} // namespace

bool ListPlace::isBefore(const ListPlace& other) const noexcept {
  if (part != other.part) {
    return part < other.part;
  }
  return worthOf(exchange, age) > worthOf(other.exchange, other.age);
}

ListPlace placeOf(const AttentionCatchUpItem& item, const AttentionEvidenceBundle& bundle,
                  const ContactOutlook& outlook, Instant asOf) {
  const auto event = parseInternetDateTime(item.whyNow().definingEventTimestamp()).value_or(asOf);
  const std::chrono::duration<double> age = asOf - event;
  const auto part = [&] {
    if (isWaiting(item, bundle) && Days{age} > Days{olderAfterDays}) {
      return ListPart::older;
    }
    if (!outlook.isAcquainted && item.whyNow().kind() != Kind::upcomingInteraction) {
      return ListPart::strangers;
    }
    return isNear(item, Days{age}) ? ListPart::near : ListPart::current;
  }();
  return {part, outlook.exchange, age};
}

ListPlace placeOfFollowUp(Instant dueAt, double exchange, Instant asOf) {
  return {ListPart::followUp, exchange, asOf - dueAt};
}

std::string_view caseName(ListPart part) noexcept {
  switch (part) {
    case ListPart::followUp:
      return "followUp";
    case ListPart::near:
      return "near";
    case ListPart::current:
      return "current";
    case ListPart::strangers:
      return "strangers";
    case ListPart::older:
      return "older";
  }
  return "unknown";
}

} // namespace orvan
