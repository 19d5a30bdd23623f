#include "application/session/catch_up_list.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/white_space.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"
#include "application/session/shared_names.h"

namespace orvan {
namespace {

using Records = std::vector<AttentionItemDispositionRecord>;
using BundleOfPerson = std::unordered_map<std::string_view, const AttentionEvidenceBundle*>;

/// `bundles` must outlive the result.
BundleOfPerson byPerson(const std::vector<AttentionEvidenceBundle>& bundles) {
  BundleOfPerson bundleOf;
  for (const auto& bundle : bundles) {
    bundleOf.emplace(bundle.personKey(), &bundle);
  }
  return bundleOf;
}

/// What hides an item of that state; nothing hides an active one.
std::optional<NotShownReason> reasonFor(AttentionItemState::Kind state) {
  switch (state) {
    case AttentionItemState::Kind::snoozed:
      return NotShownReason::snoozed;
    case AttentionItemState::Kind::dismissed:
      return NotShownReason::dismissed;
    case AttentionItemState::Kind::resolved:
      return NotShownReason::resolved;
    case AttentionItemState::Kind::active:
      break;
  }
  return std::nullopt;
}

/// Why there is no item for the person, whatever was decided; nothing when there is one.
std::optional<NotShownReason> reasonWithoutItem(const ProjectedPerson& person, const AttentionEvidenceBundle* bundle,
                                                const std::optional<AttentionCatchUpItem>& item) {
  if (item) {
    return std::nullopt;
  }
  if (bundle == nullptr) {
    return NotShownReason::noEvidence;
  }
  if (!AttentionWhyNowSelector::select(*bundle)) {
    return NotShownReason::noValidReason;
  }
  return trimmed(person.displayName()).empty() ? NotShownReason::noName : NotShownReason::noItemKey;
}

/// What the records say of the item.
AttentionItemState stateOf(const AttentionCatchUpItem& item, const Records& records, Instant asOf) {
  const auto record = std::ranges::find(records, item.itemKey(), &AttentionItemDispositionRecord::itemKey);
  return AttentionItemDispositionTransition::state(
      item.itemKey(), record == records.end() ? std::nullopt : std::optional{*record}, asOf);
}

/// Explains a person who was looked at and has no item on the list.
std::optional<NotShown> explain(const ProjectedPerson& person, const AttentionEvidenceBundle* bundle,
                                const Records& records, Instant asOf) {
  const auto item = bundle == nullptr ? std::nullopt : itemOf(person, *bundle, asOf);
  if (const auto reason = reasonWithoutItem(person, bundle, item)) {
    return NotShown{person.personKey(), person.displayName(), *reason, std::nullopt, std::nullopt};
  }
  const auto state = stateOf(*item, records, asOf);
  const auto reason = reasonFor(state.kind());
  return reason ? std::optional{NotShown{person.personKey(), person.displayName(), *reason, item->itemKey(),
                                         state.until()}}
                : std::nullopt;
}

NotShown withoutItem(const ContactOutlook& outlook, NotShownReason reason) {
  return {outlook.personKey, outlook.displayName, reason, std::nullopt, std::nullopt};
}

/// Why the person was not looked at.
NotShownReason reasonWithoutALook(const ContactOutlook& outlook) {
  if (outlook.isHidden) {
    return NotShownReason::hidden;
  }
  return outlook.canHaveReason() ? NotShownReason::beyondTheCap : NotShownReason::nothingToTell;
}

using PersonKeys = std::unordered_set<std::string_view>;

PersonKeys shownIn(const std::vector<CatchUpRow>& rows) {
  PersonKeys shown;
  for (const auto& row : rows) {
    shown.insert(row.item.personKey());
  }
  return shown;
}

/// Explains everyone who is not `shown`; of `outlooks` the first `lookedAt` were looked at.
std::vector<NotShown> explainOthers(const PersonKeys& shown, std::span<const ContactOutlook> outlooks,
                                    std::size_t lookedAt, const BundleOfPerson& bundleOf, const Records& records,
                                    Instant asOf) {
  std::vector<NotShown> others;
  for (const auto& outlook : outlooks.first(lookedAt)) {
    if (shown.contains(outlook.personKey)) {
      continue;
    }
    const auto found = bundleOf.find(outlook.personKey);
    const ProjectedPerson person{outlook.personKey, outlook.displayName};
    if (auto other = explain(person, found == bundleOf.end() ? nullptr : found->second, records, asOf)) {
      others.push_back(*std::move(other));
    }
  }
  for (const auto& outlook : outlooks.subspan(lookedAt)) {
    if (!shown.contains(outlook.personKey)) {
      others.push_back(withoutItem(outlook, reasonWithoutALook(outlook)));
    }
  }
  return others;
}

/// The due follow-ups, and how the user's decisions about them stand.
struct DueFollowUps {
  /// In the order of their due times.
  std::vector<ListedFollowUp> shown;
  /// Why others are not shown.
  std::vector<NotShown> hidden;
};

DueFollowUps readDueFollowUps(Instant asOf, Connection& connection) {
  DueFollowUps due;
  for (auto& followUp : dueFollowUps(asOf, connection)) {
    if (!followUp.item) {
      continue;
    }
    const auto state =
        stateOf(*followUp.item, AttentionDispositionStore::records(followUp.personKey, connection), asOf);
    if (const auto reason = reasonFor(state.kind())) {
      due.hidden.push_back(
          {followUp.personKey, followUp.displayName, *reason, followUp.item->itemKey(), state.until()});
    } else {
      due.shown.push_back(std::move(followUp));
    }
  }
  return due;
}

/// Somebody of whom there is nothing else to tell is told to have a follow-up that was hidden.
void tellOfHidden(const std::vector<NotShown>& hiddenFollowUps, std::vector<NotShown>& notShown) {
  std::unordered_map<std::string_view, const NotShown*> hiddenOf;
  for (const auto& hidden : hiddenFollowUps) {
    hiddenOf.emplace(hidden.personKey, &hidden);
  }
  for (auto& person : notShown) {
    const bool isEmpty = person.reason == NotShownReason::nothingToTell || person.reason == NotShownReason::noEvidence;
    if (const auto found = hiddenOf.find(person.personKey); isEmpty && found != hiddenOf.end()) {
      person = *found->second;
    }
  }
}

/// Adds what the rows themselves do not tell.
void complete(CatchUpList& list, std::span<const ContactOutlook> outlooks, Connection& connection) {
  const SharedNames shared(outlooks);
  for (auto& person : list.notShown) {
    person.address = shared.addressToTell(person.displayName, person.personKey, connection);
  }
  for (auto& row : list.rows) {
    row.about = row.followUp ? aboutOf(*row.followUp, connection)
                             : aboutOf(row.item.personKey(), row.item.whyNow().evidenceReferences(), connection);
    row.address = shared.addressToTell(row.item.displayName(), row.item.personKey(), connection);
  }
}

using OutlookOfPerson = std::unordered_map<std::string_view, const ContactOutlook*>;

/// `outlooks` must outlive the result.
OutlookOfPerson byPerson(std::span<const ContactOutlook> outlooks) {
  OutlookOfPerson outlookOf;
  for (const auto& outlook : outlooks) {
    outlookOf.emplace(outlook.personKey, &outlook);
  }
  return outlookOf;
}

/// One row for each person who has any: the follow-up that has been due for longest, with the others in it.
std::vector<CatchUpRow> rowsOf(std::vector<ListedFollowUp> followUps, const OutlookOfPerson& outlookOf, Instant asOf) {
  std::vector<CatchUpRow> rows;
  std::unordered_map<std::string, std::size_t> rowOf;
  for (auto& followUp : followUps) {
    const auto [place, isFirst] = rowOf.emplace(followUp.personKey, rows.size());
    if (!isFirst) {
      rows[place->second].furtherFollowUps.push_back(std::move(followUp));
      continue;
    }
    const auto outlook = outlookOf.find(followUp.personKey);
    const double exchange = outlook == outlookOf.end() ? 0 : outlook->second->exchange;
    auto item = followUp.item.value();
    rows.push_back({.item = std::move(item),
                    .place = placeOfFollowUp(followUp.dueAt, exchange, asOf),
                    .followUp = std::move(followUp)});
  }
  return rows;
}

/// A row for each item, unless the person has one of `rows` already, which then says of the item's reason too.
void addItems(std::vector<AttentionCatchUpItem> items, const OutlookOfPerson& outlookOf, const BundleOfPerson& bundleOf,
              Instant asOf, std::vector<CatchUpRow>& rows) {
  std::unordered_map<std::string, std::size_t> rowOf;
  for (std::size_t index = 0; index < rows.size(); ++index) {
    rowOf.emplace(rows[index].item.personKey(), index);
  }
  for (auto& item : items) {
    if (const auto found = rowOf.find(item.personKey()); found != rowOf.end()) {
      rows[found->second].otherReason = item.whyNow();
      continue;
    }
    const auto place = placeOf(item, *bundleOf.at(item.personKey()), *outlookOf.at(item.personKey()), asOf);
    rows.push_back({std::move(item), place});
  }
}

void sortRows(std::vector<CatchUpRow>& rows) {
  std::ranges::sort(rows, [](const CatchUpRow& row, const CatchUpRow& other) {
    if (row.place.isBefore(other.place) || other.place.isBefore(row.place)) {
      return row.place.isBefore(other.place);
    }
    return row.item.personKey() < other.item.personKey();
  });
}

} // namespace

AttentionEvidenceBundle asKnownAt(Instant asOf, const AttentionEvidenceBundle& bundle) {
  auto commitments = bundle.commitments();
  std::erase_if(commitments, [asOf](const CommitmentEvidence& commitment) {
    const auto detectedAt = parseInternetDateTime(commitment.detectedAt());
    return detectedAt && *detectedAt > asOf;
  });
  return {bundle.personKey(),
          bundle.generatedAt(),
          bundle.windowDays(),
          bundle.openThreads(),
          bundle.upcomingInteractions(),
          bundle.changedContext(),
          std::move(commitments),
          bundle.sourceFreshness(),
          bundle.lastUserCorrectionAt(),
          bundle.userCorrectionCountInWindow()};
}

std::optional<AttentionCatchUpItem> itemOf(const ProjectedPerson& person, const AttentionEvidenceBundle& bundle,
                                           Instant asOf) {
  const std::vector people{AttentionCatchUpPerson{person.personKey(), person.displayName(), bundle}};
  auto items = AttentionCatchUpSelector::select(people, {}, asOf);
  return items.empty() ? std::nullopt : std::optional{std::move(items.front())};
}

CatchUpList makeCatchUpList(Session& session, Instant asOf, Explanation explanation) {
  auto bundles = session.bundles(asOf);
  for (auto& bundle : bundles) {
    bundle = asKnownAt(asOf, bundle);
  }
  const auto bundleOf = byPerson(bundles);
  const auto& outlooks = session.outlooks(asOf);
  const auto lookedAt = session.countLookedAt(asOf);

  std::vector<AttentionCatchUpPerson> people;
  Records records;
  for (const auto& outlook : std::span{outlooks}.first(lookedAt)) {
    if (const auto found = bundleOf.find(outlook.personKey); found != bundleOf.end()) {
      people.emplace_back(outlook.personKey, outlook.displayName, *found->second);
      std::ranges::move(session.records(outlook.personKey), std::back_inserter(records));
    }
  }

  auto due = session.readableStore().read([asOf](Connection& store) { return readDueFollowUps(asOf, store); });
  const auto outlookOf = byPerson(outlooks);
  CatchUpList list;
  list.rows = rowsOf(std::move(due.shown), outlookOf, asOf);
  addItems(AttentionCatchUpSelector::select(people, records, asOf), outlookOf, bundleOf, asOf, list.rows);
  sortRows(list.rows);
  const auto shown = shownIn(list.rows);
  if (explanation == Explanation::everyone) {
    list.notShown = explainOthers(shown, outlooks, lookedAt, bundleOf, records, asOf);
    tellOfHidden(due.hidden, list.notShown);
  }
  session.readableStore().read([&](Connection& connection) { complete(list, outlooks, connection); });
  list.older = static_cast<std::size_t>(
      std::ranges::count(list.rows, ListPart::older, [](const CatchUpRow& row) { return row.place.part; }));
  list.notLookedAt = static_cast<std::size_t>(std::ranges::count_if(
      std::span{outlooks}.subspan(lookedAt),
      [&](const ContactOutlook& outlook) { return outlook.canHaveReason() && !shown.contains(outlook.personKey); }));
  return list;
}

} // namespace orvan
