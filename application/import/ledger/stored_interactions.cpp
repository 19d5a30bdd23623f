#include "application/import/ledger/stored_interactions.h"

#include <array>
#include <string>

namespace orvan {
namespace {

/// Of the words that the schema has for a column, the one that stands there: rows are told with words that live as long
/// as the program.
template <std::size_t Count>
std::string_view wordOf(std::string_view stored, const std::array<std::string_view, Count>& words) {
  for (const auto word : words) {
    if (word == stored) {
      return word;
    }
  }
  return words.front();
}

InteractionRow rowOf(const Query& rows) {
  constexpr std::array<std::string_view, 3> directions{"inbound", "outbound", "mutual"};
  constexpr std::array<std::string_view, 2> kinds{"message", "meeting"};
  constexpr std::array<std::string_view, 2> conversationKinds{"group", "direct"};
  const auto sender = rows.optionalText(Column{2});
  return {std::string{rows.text(Column{0})},
          std::string{rows.optionalText(Column{1}).value_or("")},
          sender ? std::optional{std::string{*sender}} : std::nullopt,
          wordOf(rows.text(Column{3}), directions),
          wordOf(rows.text(Column{4}), kinds),
          wordOf(rows.optionalText(Column{5}).value_or(""), conversationKinds),
          std::string{rows.text(Column{6})},
          {}};
}

/// Participants are looked for among those of the thread: they are not kept by interaction.
std::vector<std::string> participantsOf(const InteractionRow& row, Connection& connection) {
  std::vector<std::string> identityIDs;
  auto rows = connection.query(R"sql(
SELECT present.source_identity_id
FROM thread_participant known
JOIN interaction_participant present
  ON present.source_identity_id = known.source_identity_id AND present.interaction_id = ?
WHERE known.thread_id = ?
)sql",
                               row.id, row.threadID);
  while (rows.next()) {
    identityIDs.emplace_back(rows.text(Column{0}));
  }
  return identityIDs;
}

template <typename... Arguments>
std::optional<InteractionRow> firstOf(Connection& connection, std::string_view sql, const Arguments&... arguments) {
  std::optional<InteractionRow> found;
  {
    auto rows = connection.query(sql, arguments...);
    if (rows.next()) {
      found = rowOf(rows);
    }
  }
  if (found) {
    found->participantIdentityIDs = participantsOf(*found, connection);
  }
  return found;
}

} // namespace

std::optional<InteractionRow> storedInteraction(std::string_view interactionID, Connection& connection) {
  return firstOf(connection, R"sql(
SELECT i.id, i.thread_id, i.source_identity_id, i.direction, i.kind, event.conversation_kind, i.occurred_at
FROM interaction i
LEFT JOIN source_event event ON event.id = i.source_event_id
WHERE i.id = ?
)sql",
                 interactionID);
}

std::optional<InteractionRow> storedMail(MailKey mail, std::string_view threadID, Connection& connection) {
  const auto ending = endingOfMailID(mail);
  return firstOf(connection, R"sql(
SELECT i.id, i.thread_id, i.source_identity_id, i.direction, i.kind, event.conversation_kind, i.occurred_at
FROM interaction i
LEFT JOIN source_event event ON event.id = i.source_event_id
WHERE i.thread_id = ? AND i.kind = 'message' AND substr(i.id, -length(?2)) = ?2
)sql",
                 threadID, ending);
}

void deleteParticipants(const InteractionRow& row, Connection& connection) {
  for (const auto& identityID : row.participantIdentityIDs) {
    connection.execute("DELETE FROM interaction_participant WHERE source_identity_id = ? AND interaction_id = ?",
                       identityID, row.id);
  }
}

void deleteInteraction(const InteractionRow& row, Connection& connection) {
  deleteParticipants(row, connection);
  for (const char* statement : {
           "DELETE FROM pending_question WHERE interaction_id = ?",
           "DELETE FROM message_text WHERE interaction_id = ?",
           "DELETE FROM outdated_mail WHERE interaction_id = ?",
           "DELETE FROM meeting_text WHERE interaction_id = ?",
           "DELETE FROM interaction WHERE id = ?",
           "DELETE FROM source_event WHERE id = ?",
       }) {
    connection.execute(statement, row.id);
  }
}

} // namespace orvan
