#include "application/import/ledger/history_rows.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

#include "OrvanStore/repeated_statement.h"

namespace orvan {
namespace {

constexpr const char* insertThread = R"sql(
INSERT INTO thread (id, source_type)
VALUES (?, ?)
ON CONFLICT(id) DO NOTHING
)sql";

constexpr const char* insertThreadText = R"sql(
INSERT INTO thread_text (thread_id, subject)
VALUES (?, ?)
ON CONFLICT(thread_id) DO NOTHING
)sql";

constexpr const char* updateCalendarTitle = R"sql(
UPDATE thread_text SET subject = ?2
WHERE thread_id = ?1 AND subject <> ?2
)sql";

constexpr const char* insertSourceObject = R"sql(
INSERT INTO source_object (id, kind, created_at)
VALUES (?, 'thread', ?)
ON CONFLICT(id) DO NOTHING
)sql";

constexpr const char* upsertSourceEvent = R"sql(
INSERT INTO source_event (id, source_account_id, conversation_kind)
VALUES (?, ?, ?)
ON CONFLICT(id) DO UPDATE SET conversation_kind = excluded.conversation_kind
)sql";

constexpr const char* upsertInteraction = R"sql(
INSERT INTO interaction (id, thread_id, source_event_id, source_identity_id, direction, kind, occurred_at)
VALUES (?1, ?2, ?1, ?3, ?4, ?5, ?6)
ON CONFLICT(id) DO UPDATE SET occurred_at = excluded.occurred_at
)sql";

constexpr const char* insertInteractionParticipant = R"sql(
INSERT INTO interaction_participant (source_identity_id, interaction_id)
VALUES (?, ?)
ON CONFLICT DO NOTHING
)sql";

constexpr const char* insertThreadParticipant = R"sql(
INSERT INTO thread_participant (source_identity_id, thread_id)
VALUES (?, ?)
ON CONFLICT DO NOTHING
)sql";

constexpr const char* insertMessageText = R"sql(
INSERT INTO message_text (interaction_id, message_id)
VALUES (?, ?)
ON CONFLICT DO NOTHING
)sql";

constexpr const char* upsertMeetingText = R"sql(
INSERT INTO meeting_text (interaction_id, location, is_all_day)
VALUES (?, ?, ?)
ON CONFLICT DO UPDATE SET location = excluded.location, is_all_day = excluded.is_all_day
)sql";

constexpr const char* deleteMeetingText = R"sql(
DELETE FROM meeting_text
WHERE interaction_id = ?
)sql";

using Pair = std::pair<std::string_view, std::string_view>;

void writePairs(std::vector<Pair> pairs, const char* statement, Connection& connection) {
  std::ranges::sort(pairs);
  const auto duplicates = std::ranges::unique(pairs);
  pairs.erase(duplicates.begin(), duplicates.end());
  RepeatedStatement insert(connection, statement);
  for (const auto& [identityID, id] : pairs) {
    insert.execute(identityID, id);
  }
}

} // namespace

void HistoryRows::reserve(std::size_t count) {
  interactions_.reserve(count);
  threads_.reserve(count);
}

void HistoryRows::addThread(std::string threadID, std::string_view sourceType, std::string subject) {
  const auto order = threads_.size();
  threads_.push_back({std::move(threadID), order, sourceType, std::move(subject)});
}

void HistoryRows::write(const std::string& sourceAccountID, std::string_view now, Connection& connection) {
  sort();
  writeThreads(now, connection);
  writeInteractions(sourceAccountID, connection);
  writeParticipants(connection);
  writeMessageTexts(connection);
  writeMeetingTexts(connection);
  sorted_.clear();
  interactions_.clear();
  threads_.clear();
}

/// Rows are large: it is cheaper to move pointers to them about.
void HistoryRows::sort() {
  for (const auto& row : interactions_) {
    sorted_.push_back(&row);
  }
  std::ranges::sort(sorted_, {}, [](const InteractionRow* row) -> const std::string& { return row->id; });
}

void HistoryRows::writeThreads(std::string_view now, Connection& connection) {
  std::ranges::sort(threads_, {}, [](const Thread& thread) { return std::tie(thread.id, thread.order); });
  const auto duplicates = std::ranges::unique(threads_, {}, &Thread::id);
  threads_.erase(duplicates.begin(), duplicates.end());
  RepeatedStatement thread(connection, insertThread);
  RepeatedStatement text(connection, insertThreadText);
  RepeatedStatement title(connection, updateCalendarTitle);
  RepeatedStatement object(connection, insertSourceObject);
  for (const auto& row : threads_) {
    thread.execute(row.id, row.sourceType);
    if (connection.changes() > 0) {
      text.execute(row.id, row.subject);
      object.execute(row.id, now);
    } else if (row.sourceType == "calendar") {
      title.execute(row.id, row.subject);
    }
  }
}

void HistoryRows::writeInteractions(const std::string& sourceAccountID, Connection& connection) {
  RepeatedStatement event(connection, upsertSourceEvent);
  for (const auto* row : sorted_) {
    event.execute(row->id, sourceAccountID, row->conversationKind);
  }
  RepeatedStatement interaction(connection, upsertInteraction);
  for (const auto* row : sorted_) {
    interaction.execute(row->id, row->threadID, row->senderIdentityID, row->direction, row->kind, row->occurredAt);
  }
}

void HistoryRows::writeParticipants(Connection& connection) {
  std::vector<Pair> ofInteractions;
  std::vector<Pair> ofThreads;
  for (const auto& row : interactions_) {
    for (const auto& identityID : row.participantIdentityIDs) {
      ofInteractions.emplace_back(identityID, row.id);
      ofThreads.emplace_back(identityID, row.threadID);
    }
  }
  writePairs(std::move(ofInteractions), insertInteractionParticipant, connection);
  writePairs(std::move(ofThreads), insertThreadParticipant, connection);
}

void HistoryRows::writeMessageTexts(Connection& connection) {
  RepeatedStatement insert(connection, insertMessageText);
  for (const auto* row : sorted_) {
    if (!row->messageID.empty()) {
      insert.execute(row->id, row->messageID);
    }
  }
}

void HistoryRows::writeMeetingTexts(Connection& connection) {
  RepeatedStatement upsert(connection, upsertMeetingText);
  RepeatedStatement remove(connection, deleteMeetingText);
  for (const auto* row : sorted_) {
    if (!row->location.empty() || row->isAllDay) {
      upsert.execute(row->id, row->location, row->isAllDay ? 1 : 0);
    } else if (row->kind == "meeting") {
      remove.execute(row->id);
    }
  }
}

} // namespace orvan
