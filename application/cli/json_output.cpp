#include "application/cli/json_output.h"

#include <algorithm>
#include <chrono>
#include <iostream>
#include <span>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

template <typename Value>
Json nullable(const std::optional<Value>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json nullable(const std::optional<Instant>& instant) {
  return instant ? Json(formatInternetDateTime(*instant)) : Json(nullptr);
}

Json toJson(const OpenThreadEvidence& thread) {
  return {{"threadID", thread.threadID()},
          {"sourceType", thread.sourceType()},
          {"lastInboundInteractionID", thread.lastInboundInteractionID()},
          {"lastInboundSourceEventID", thread.lastInboundSourceEventID()},
          {"lastInboundOccurredAt", thread.lastInboundOccurredAt()}};
}

Json toJson(const UpcomingInteractionEvidence& meeting) {
  return {{"interactionID", meeting.interactionID()},
          {"threadID", meeting.threadID()},
          {"sourceEventID", meeting.sourceEventID()},
          {"sourceType", meeting.sourceType()},
          {"occurredAt", meeting.occurredAt()}};
}

Json toJson(const ChangedContextEvidence& context) {
  return {{"quietPeriodDays", context.quietPeriodDays()},
          {"quietSinceAt", context.quietSinceAt()},
          {"resumedAt", context.resumedAt()},
          {"resumedInteractionIDs", context.resumedInteractionIDs()},
          {"resumedInteractionCount", context.resumedInteractionCount()}};
}

Json toJson(const CommitmentEvidence& commitment) {
  return {{"openLoopID", commitment.openLoopID()},
          {"kind", commitment.kind()},
          {"detectedAt", commitment.detectedAt()},
          {"evidenceRef", nullable(commitment.evidenceRef())}};
}

Json toJson(const SourceFreshnessEvidence& freshness) {
  return {{"sourceAccountID", freshness.sourceAccountID()},
          {"operation", freshness.operation()},
          {"freshnessState", freshness.freshnessState()},
          {"lastSuccessfulSyncAt", nullable(freshness.lastSuccessfulSyncAt())}};
}

Json toJson(const AttentionWhyNowEvidenceReference& reference) {
  return {{"kind", reference.keyName()}, {"id", reference.identifier()}};
}

Json toJson(const NotShown& person) {
  return {{"personKey", person.personKey},     {"displayName", person.displayName},
          {"reason", caseName(person.reason)}, {"itemKey", nullable(person.itemKey)},
          {"until", nullable(person.until)},   {"address", nullable(person.address)}};
}

Json toJson(const About& about) {
  return {{"threadID", nullable(about.threadID)},
          {"subject", nullable(about.subject)},
          {"messageID", nullable(about.messageID)},
          {"question", nullable(about.question)},
          {"title", nullable(about.title)},
          {"startsAt", nullable(about.startsAt)},
          {"isAllDay", about.isAllDay},
          {"place", nullable(about.place)}};
}

Json toJson(const Matter& matter) {
  return {{"kind", caseName(kindOf(matter))},
          {"evidence", std::visit([](const auto& evidence) { return toJson(evidence); }, matter.evidence)},
          {"about", toJson(matter.about)}};
}

Json toJson(const Exchange& exchange) {
  return {{"interactionID", exchange.interactionID},
          {"kind", caseName(exchange.kind)},
          {"occurredAt", exchange.occurredAt},
          {"from", nullable(exchange.from)}};
}

/// Stands behind the conversions above, so that it finds them.
template <typename Values>
Json arrayOf(const Values& values) {
  auto array = Json::array();
  for (const auto& value : values) {
    array.push_back(toJson(value));
  }
  return array;
}

Json toJson(const AttentionRouteRequest& request) {
  return {{"itemKey", request.itemKey()},
          {"personKey", request.personKey()},
          {"evidenceReferences", arrayOf(request.evidenceReferences())},
          {"kind", caseName(request.kind())}};
}

template <typename Counts>
Json countsByName(const Counts& counts) {
  auto object = Json::object();
  for (const auto& [reason, count] : counts) {
    object[std::string{caseName(reason)}] = count;
  }
  return object;
}

} // namespace

Json toJson(const AttentionEvidenceBundle& bundle) {
  const auto& changedContext = bundle.changedContext();
  return {{"personKey", bundle.personKey()},
          {"generatedAt", bundle.generatedAt()},
          {"windowDays", bundle.windowDays()},
          {"openThreads", arrayOf(bundle.openThreads())},
          {"upcomingInteractions", arrayOf(bundle.upcomingInteractions())},
          {"changedContext", changedContext ? toJson(*changedContext) : Json(nullptr)},
          {"commitments", arrayOf(bundle.commitments())},
          {"sourceFreshness", arrayOf(bundle.sourceFreshness())},
          {"lastUserCorrectionAt", nullable(bundle.lastUserCorrectionAt())},
          {"userCorrectionCountInWindow", bundle.userCorrectionCountInWindow()}};
}

Json toJson(const std::vector<AttentionEvidenceBundle>& bundles) {
  return arrayOf(bundles);
}

Json toJson(const AttentionWhyNowItem& item) {
  return {{"kind", caseName(item.kind())},
          {"definingEventTimestamp", item.definingEventTimestamp()},
          {"headline", item.headline()},
          {"evidenceLines", item.evidenceLines()},
          {"evidenceReferences", arrayOf(item.evidenceReferences())}};
}

Json toJson(const AttentionCatchUpItem& item) {
  return {{"itemKey", item.itemKey()},
          {"personKey", item.personKey()},
          {"displayName", item.displayName()},
          {"whyNow", toJson(item.whyNow())},
          {"routeRequest", toJson(item.routeRequest())}};
}

Json toJson(const AttentionItemDispositionRecord& record) {
  Json json{{"itemKey", record.itemKey()}, {"state", caseName(record.state().kind())}};
  if (const auto until = record.state().until()) {
    json["until"] = formatInternetDateTime(*until);
  }
  return json;
}

Json toJson(const std::vector<AttentionItemDispositionRecord>& records) {
  return arrayOf(records);
}

Json toJson(const ListedPerson& person) {
  return {{"personKey", person.personKey},
          {"displayName", person.displayName},
          {"addresses", person.addresses},
          {"mailsTo", person.mailsTo},
          {"mailsFrom", person.mailsFrom},
          {"lastContactAt", nullable(person.lastContactAt)},
          {"isHidden", person.visibility == Visibility::hidden}};
}

Json toJson(const std::vector<ListedPerson>& people) {
  return arrayOf(people);
}

Json toJson(const AttentionCatchUpItem& item, const About& about, const std::optional<std::string>& address) {
  auto json = toJson(item);
  json["address"] = nullable(address);
  json["about"] = toJson(about);
  return json;
}

Json toJson(const ListedFollowUp& followUp) {
  return {{"id", followUp.id},
          {"personKey", followUp.personKey},
          {"displayName", followUp.displayName},
          {"dueAt", formatInternetDateTime(followUp.dueAt)},
          {"state", caseName(followUp.state)},
          {"completedAt", nullable(followUp.completedAt)},
          {"said", nullable(followUp.said)},
          {"itemKey", followUp.item ? Json(followUp.item->itemKey()) : Json(nullptr)}};
}

/// Only what is about a follow-up has these fields.
void addFollowUps(const ListedFollowUp& followUp, const std::vector<ListedFollowUp>& further, Json& json) {
  json["followUp"] = toJson(followUp);
  json["furtherFollowUps"] = arrayOf(further);
}

Json toJson(const CatchUpRow& row) {
  auto json = toJson(row.item, row.about, row.address);
  if (row.followUp) {
    addFollowUps(*row.followUp, row.furtherFollowUps, json);
    json["otherReason"] = row.otherReason ? toJson(*row.otherReason) : Json(nullptr);
  }
  json["place"] = {{"part", caseName(row.place.part)},
                   {"exchange", row.place.exchange},
                   {"ageDays", std::chrono::duration<double, std::chrono::days::period>{row.place.age}.count()}};
  return json;
}

Json toJson(const ItemDetails& details) {
  auto json = toJson(details.item, details.about, details.address);
  json["conversation"] = {{"earlier", details.conversation.earlier},
                          {"exchanges", arrayOf(details.conversation.exchanges)}};
  json["others"] = arrayOf(details.others);
  json["records"] = arrayOf(details.records);
  if (details.followUp) {
    addFollowUps(*details.followUp, details.furtherFollowUps, json);
  } else if (!details.furtherFollowUps.empty()) {
    json["furtherFollowUps"] = arrayOf(details.furtherFollowUps);
  }
  return json;
}

Json toJson(const CatchUpList& list, std::optional<std::size_t> limit, Explanation explanation) {
  const auto shown = std::span{list.rows}.first(std::min(list.rows.size(), limit.value_or(list.rows.size())));
  Json json{{"items", arrayOf(shown)}, {"older", list.older}, {"notLookedAt", list.notLookedAt}};
  if (explanation == Explanation::everyone) {
    json["notShown"] = arrayOf(list.notShown);
  }
  return json;
}

Json toJson(const MailReport& report) {
  return {{"read", report.read},        {"new", report.imported},        {"completed", report.completed},
          {"known", report.known},      {"automated", report.automated}, {"elsewhere", report.elsewhere},
          {"notes", report.notes},      {"forgotten", report.forgotten}, {"skipped", countsByName(report.skipped)},
          {"stopped", report.isStopped}};
}

Json toJson(const MeetingReport& report) {
  return {{"events", report.events},
          {"read", report.meetings},
          {"new", report.imported},
          {"known", report.known},
          {"withdrawn", report.withdrawn},
          {"forgotten", report.forgotten},
          {"skipped", countsByName(report.skipped)},
          {"notices", countsByName(report.notices)},
          {"stopped", report.isStopped}};
}

Json toJson(const CardReport& report) {
  return {{"read", report.cards},
          {"new", report.imported},
          {"known", report.known},
          {"joined", report.joined},
          {"ambiguous", report.ambiguous},
          {"keptApart", report.keptApart},
          {"skipped", countsByName(report.skipped)},
          {"stopped", report.isStopped}};
}

std::string_view caseName(NotShownReason reason) noexcept {
  switch (reason) {
    case NotShownReason::nothingToTell:
      return "nothingToTell";
    case NotShownReason::noEvidence:
      return "noEvidence";
    case NotShownReason::noValidReason:
      return "noValidReason";
    case NotShownReason::noName:
      return "noName";
    case NotShownReason::noItemKey:
      return "noItemKey";
    case NotShownReason::snoozed:
      return "snoozed";
    case NotShownReason::dismissed:
      return "dismissed";
    case NotShownReason::resolved:
      return "resolved";
    case NotShownReason::beyondTheCap:
      return "beyondTheCap";
    case NotShownReason::hidden:
      return "hidden";
  }
  return "unknown";
}

std::string_view caseName(MailSkipReason reason) noexcept {
  switch (reason) {
    case MailSkipReason::undated:
      return "undated";
    case MailSkipReason::noSender:
      return "noSender";
    case MailSkipReason::notAMailbox:
      return "notAMailbox";
    case MailSkipReason::draft:
      return "draft";
    case MailSkipReason::trashed:
      return "trashed";
    case MailSkipReason::unreadable:
      return "unreadable";
  }
  return "unknown";
}

std::string_view caseName(CalendarSkip reason) noexcept {
  switch (reason) {
    case CalendarSkip::nobodyElse:
      return "nobodyElse";
    case CalendarSkip::cancelled:
      return "cancelled";
    case CalendarSkip::declined:
      return "declined";
    case CalendarSkip::outsideWindow:
      return "outsideWindow";
    case CalendarSkip::superseded:
      return "superseded";
    case CalendarSkip::missingIdentifier:
      return "missingIdentifier";
    case CalendarSkip::missingStart:
      return "missingStart";
    case CalendarSkip::repeatsTooOften:
      return "repeatsTooOften";
    case CalendarSkip::tooLarge:
      return "tooLarge";
    case CalendarSkip::unreadable:
      return "unreadable";
  }
  return "unknown";
}

std::string_view caseName(CalendarNotice notice) noexcept {
  switch (notice) {
    case CalendarNotice::unknownTimeZone:
      return "unknownTimeZone";
    case CalendarNotice::unreadableRecurrence:
      return "unreadableRecurrence";
  }
  return "unknown";
}

std::string_view caseName(CardSkip reason) noexcept {
  switch (reason) {
    case CardSkip::noAddress:
      return "noAddress";
    case CardSkip::noName:
      return "noName";
    case CardSkip::nobody:
      return "nobody";
    case CardSkip::own:
      return "own";
    case CardSkip::unreadable:
      return "unreadable";
    case CardSkip::noCardFile:
      return "noCardFile";
  }
  return "unknown";
}

void printJson(const Json& document) {
  constexpr int indentation = 2;
  std::cout << document.dump(indentation, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace orvan
