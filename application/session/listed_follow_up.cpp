#include "application/session/listed_follow_up.h"

#include <algorithm>
#include <array>
#include <utility>

#include "OrvanPlatform/white_space.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanSpineCore/action_effect_store.h"
#include "OrvanSpineCore/source_eligibility.h"

namespace orvan {
namespace {

constexpr std::string_view ownPrefix = "follow-up:";
constexpr std::size_t shortIDLength = 8;

constexpr std::array states{FollowUpState::scheduled, FollowUpState::completed, FollowUpState::cancelled};

// Only the first thing that was captured of an object is a follow-up's text, as it is its reminder's. The follow-ups
// come first in the plan, whatever the planner thinks: there are few of them among many people and objects.
constexpr std::string_view selectFollowUps = R"sql(
SELECT f.id, f.person_id, whom.display_name, f.due_at, f.state, f.completed_at, f.open_loop_id, loop.detected_at,
       CASE json_type(said.user_context, '$.user_follow_up') WHEN 'text'
         THEN json_extract(said.user_context, '$.user_follow_up') END AS said,
       about.id AS interaction_id
FROM follow_up f
CROSS JOIN source_object object ON object.id = f.source_object_id
CROSS JOIN person whom ON whom.id = f.person_id
LEFT JOIN open_loop loop ON loop.id = coalesce(f.open_loop_id, 'open-loop:follow-up:' || f.id)
LEFT JOIN capture_artifact said ON json_valid(said.user_context) AND said.rowid = (
  SELECT min(first.rowid) FROM capture_artifact first WHERE first.source_object_id = f.source_object_id)
LEFT JOIN interaction about ON about.id = json_extract(said.user_context, '$.interaction_id')
)sql";

constexpr std::string_view inOrder = "\nORDER BY f.due_at, f.id";

std::optional<std::string> copied(std::optional<std::string_view> text) {
  return text ? std::optional<std::string>{*text} : std::nullopt;
}

/// A name of blanks alone would be no row.
std::string nameToShow(std::string_view displayName, std::string_view personKey) {
  return std::string{trimmed(displayName).empty() ? personKey : displayName};
}

/// Nothing when the row's times or its state are none.
std::optional<ListedFollowUp> followUpIn(const Query& row) {
  const auto dueAt = ActionEffectStore::parse(row.text(row.column("due_at")));
  const auto state =
      std::ranges::find(states, row.text(row.column("state")), [](FollowUpState each) { return caseName(each); });
  if (!dueAt || state == states.end()) {
    return std::nullopt;
  }
  const auto completedAt = row.optionalText(row.column("completed_at"));
  const auto detectedAt = row.optionalText(row.column("detected_at"));
  ListedFollowUp followUp{.id = std::string{row.text(row.column("id"))},
                          .personKey = std::string{row.text(row.column("person_id"))},
                          .displayName = {},
                          .dueAt = *dueAt,
                          .state = *state,
                          .completedAt = completedAt ? ActionEffectStore::parse(*completedAt) : std::nullopt,
                          .said = copied(row.optionalText(row.column("said"))),
                          .interactionID = copied(row.optionalText(row.column("interaction_id"))),
                          .item = std::nullopt};
  followUp.displayName = nameToShow(row.text(row.column("display_name")), followUp.personKey);
  if (detectedAt) {
    const auto openLoopID = copied(row.optionalText(row.column("open_loop_id")));
    followUp.item = FollowUpScheduler::attentionItem(followUp.personKey, followUp.displayName,
                                                     openLoopID.value_or(FollowUpScheduler::openLoopID(followUp.id)),
                                                     std::string{*detectedAt});
  }
  return followUp;
}

template <typename... Arguments>
std::vector<ListedFollowUp> followUpsWhere(Connection& connection, std::string_view condition,
                                           const Arguments&... arguments) {
  std::string sql{selectFollowUps};
  sql += condition;
  sql += inOrder;
  std::vector<ListedFollowUp> found;
  auto rows = connection.query(sql, arguments...);
  while (rows.next()) {
    if (auto followUp = followUpIn(rows)) {
      found.push_back(*std::move(followUp));
    }
  }
  return found;
}

std::string chosen(FollowUpChoice choice) {
  return choice == FollowUpChoice::all ? "TRUE" : "f.state = 'scheduled'";
}

std::string isTombstoned(Connection& connection) {
  return SourceEligibility::sourceObjectTombstonedSQL("object", connection);
}

/// Nothing that it is about is hidden or deleted: its person, its conversation, the source. A single mail that waits
/// for nothing is no reason to withhold a follow-up about it.
std::string mayBeShown(Connection& connection) {
  return SourceEligibility::interactionPredicateSQL(SourceEligibility::Policy::showable, "NULL", "about.thread_id",
                                                    "about.source_event_id", "f.person_id", connection);
}

std::string isDue(Connection& connection) {
  return "WHERE f.state = 'scheduled' AND f.due_at <= ? AND NOT (" + isTombstoned(connection) + ") AND " +
         mayBeShown(connection);
}

} // namespace

std::string_view caseName(FollowUpState state) noexcept {
  switch (state) {
    case FollowUpState::scheduled:
      return "scheduled";
    case FollowUpState::completed:
      return "completed";
    case FollowUpState::cancelled:
      return "cancelled";
  }
  return "unknown";
}

std::string ListedFollowUp::shortID() const {
  return id.starts_with(ownPrefix) ? id.substr(ownPrefix.size(), shortIDLength) : id;
}

std::vector<ListedFollowUp> followUps(FollowUpChoice choice, Connection& connection) {
  return followUpsWhere(connection, "WHERE " + chosen(choice));
}

std::vector<ListedFollowUp> followUpsOf(std::string_view personKey, FollowUpChoice choice, Connection& connection) {
  return followUpsWhere(connection, "WHERE f.person_id = ? AND " + chosen(choice), personKey);
}

std::vector<ListedFollowUp> dueFollowUps(Instant asOf, Connection& connection) {
  return followUpsWhere(connection, isDue(connection), ActionEffectStore::stamp(asOf));
}

std::vector<ListedFollowUp> dueFollowUpsOf(std::string_view personKey, Instant asOf, Connection& connection) {
  return followUpsWhere(connection, isDue(connection) + " AND f.person_id = ?", ActionEffectStore::stamp(asOf),
                        personKey);
}

std::vector<ListedFollowUp> hiddenFollowUps(Connection& connection) {
  return followUpsWhere(connection, "WHERE f.state = 'scheduled' AND NOT (" + mayBeShown(connection) + ")");
}

std::optional<ListedFollowUp> followUpWithID(std::string_view id, Connection& connection) {
  auto found = followUpsWhere(connection, "WHERE f.id = ?", id);
  return found.empty() ? std::nullopt : std::optional{std::move(found.front())};
}

} // namespace orvan
