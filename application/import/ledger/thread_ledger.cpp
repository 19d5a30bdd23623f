#include "application/import/ledger/thread_ledger.h"

#include <algorithm>
#include <array>

#include "OrvanStore/repeated_statement.h"

namespace orvan {
namespace {

constexpr const char* selectReference = R"sql(
SELECT COALESCE(merged.merged_into, reference.thread_id) AS thread_id, reference.state AS state,
       reference.is_answered AS is_answered
FROM mail_reference reference
LEFT JOIN merged_thread merged ON merged.thread_id = reference.thread_id
WHERE reference.message_key = ?
)sql";

constexpr const char* upsertReference = R"sql(
INSERT INTO mail_reference (message_key, thread_id, state, is_answered)
VALUES (?, ?, ?, ?)
ON CONFLICT(message_key) DO UPDATE SET
  thread_id = excluded.thread_id, state = excluded.state, is_answered = excluded.is_answered
)sql";

/// Everything that names the thread `from` names `into` afterwards: what the user excluded or deleted of a conversation
/// stays so. Follow-ups keep the object they were made for.
void mergeStoredThreads(std::string_view from, std::string_view into, Connection& connection) {
  for (const char* statement : {
           "UPDATE interaction SET thread_id = ?2 WHERE thread_id = ?1",
           "INSERT OR IGNORE INTO thread_participant (source_identity_id, thread_id) "
           "SELECT source_identity_id, ?2 FROM thread_participant WHERE thread_id = ?1",
           "UPDATE pending_question SET thread_id = ?2 WHERE thread_id = ?1",
           "UPDATE exclusion_rule SET target_id = ?2 WHERE scope = 'thread' AND target_id = ?1 AND ended_at IS NULL",
           "INSERT OR IGNORE INTO deletion_tombstone (object_id, object_type, deleted_at) "
           "SELECT ?2, object_type, deleted_at FROM deletion_tombstone WHERE object_id = ?1 AND object_type = 'thread'",
           "UPDATE merged_thread SET merged_into = ?2 WHERE merged_into = ?1",
           "INSERT INTO merged_thread (thread_id, merged_into) VALUES (?1, ?2)",
       }) {
    connection.execute(statement, from, into);
  }
  for (const char* statement : {
           "DELETE FROM waiting_thread WHERE thread_id = ?",
           "DELETE FROM thread_participant WHERE thread_id = ?",
           "DELETE FROM thread_text WHERE thread_id = ?",
           "DELETE FROM thread WHERE id = ?",
       }) {
    connection.execute(statement, from);
  }
}

/// How the store writes a standing, in the order of the cases.
constexpr std::array<std::string_view, 7> standingTexts{"referenced", "passed_over", "outdated", "outdated_own",
                                                        "group",      "direct",      "own"};

std::string_view textOf(MailStanding standing) noexcept {
  return standingTexts.at(static_cast<std::size_t>(standing));
}

MailStanding standingOf(std::string_view text) noexcept {
  const auto* found = std::ranges::find(standingTexts, text);
  return found == standingTexts.end() ? MailStanding::referenced
                                      : static_cast<MailStanding>(found - standingTexts.begin());
}

} // namespace

void ThreadLedger::load(std::span<const MailKey> keys, Connection& connection) {
  RepeatedStatement select(connection, selectReference);
  for (const auto key : keys) {
    auto& rows = select.query(std::to_underlying(key));
    if (!rows.next()) {
      continue;
    }
    Mail mail;
    if (const auto threadID = rows.optionalText(Column{0})) {
      mail.thread = threadNumber(*threadID, true);
    }
    mail.standing = orvan::standingOf(rows.text(Column{1}));
    mail.isAnswered = rows.integer(Column{2}) != 0;
    if (mail.isAnswered) {
      answered_.push_back(key);
    }
    mails_.emplace(key, mail);
  }
  answeredBefore_ = answered_.size();
}

MailStanding ThreadLedger::standingOf(MailKey key) const {
  const auto found = mails_.find(key);
  return found == mails_.end() ? MailStanding::referenced : found->second.standing;
}

std::optional<std::size_t> ThreadLedger::threadOf(MailKey key) const {
  const auto found = mails_.find(key);
  return found == mails_.end() ? std::nullopt : found->second.thread;
}

std::vector<std::string> ThreadLedger::endingsOfAnswered() const {
  std::vector<std::string> endings;
  endings.reserve(answered_.size());
  for (const auto key : answered_) {
    endings.push_back(endingOfMailID(key));
  }
  std::ranges::sort(endings);
  return endings;
}

std::vector<MailKey> ThreadLedger::newlyAnswered() const {
  std::vector<MailKey> keys;
  for (const auto key : std::span{answered_}.subspan(answeredBefore_)) {
    const auto standing = standingOf(key);
    if (standing == MailStanding::direct || standing == MailStanding::outdated) {
      keys.push_back(key);
    }
  }
  std::ranges::sort(keys);
  return keys;
}

std::size_t ThreadLedger::placeMail(MailKey key, std::span<const MailKey> references, const std::string& newThreadID,
                                    MailStanding standing) {
  std::optional<std::size_t> known = mails_[key].thread;
  for (const auto reference : references) {
    if (const auto& other = mails_[reference].thread) {
      known = known ? merge(*known, *other) : *other;
    }
  }
  const std::size_t thread = known ? *known : threadNumber(newThreadID, false);
  for (const auto reference : references) {
    auto& referenced = mails_[reference];
    if (!referenced.thread) {
      referenced.thread = thread;
      referenced.isChanged = true;
    }
    if (standing == MailStanding::own && !referenced.isAnswered) {
      referenced.isAnswered = true;
      answered_.push_back(reference);
      referenced.isChanged = true;
    }
  }
  auto& mail = mails_[key];
  mail.thread = thread;
  mail.standing = standing;
  mail.isChanged = true;
  return thread;
}

void ThreadLedger::passOver(MailKey key) {
  auto& mail = mails_[key];
  mail.standing = MailStanding::passedOver;
  mail.isChanged = true;
}

void ThreadLedger::write(Connection& connection) {
  for (std::size_t number = 0; number < threads_.size(); ++number) {
    const auto last = finalThread(number);
    if (last != number && threads_[number].isStored) {
      mergeStoredThreads(threads_[number].id, threads_[last].id, connection);
    }
  }
  writeMails(connection);
}

void ThreadLedger::writeMails(Connection& connection) {
  std::vector<std::pair<MailKey, const Mail*>> changed;
  for (const auto& [key, mail] : mails_) {
    if (mail.isChanged) {
      changed.emplace_back(key, &mail);
    }
  }
  std::ranges::sort(changed);
  RepeatedStatement upsert(connection, upsertReference);
  for (const auto& [key, mail] : changed) {
    std::optional<std::string_view> threadID;
    if (mail->thread) {
      threadID = threads_[finalThread(*mail->thread)].id;
    }
    upsert.execute(std::to_underlying(key), threadID, textOf(mail->standing), mail->isAnswered ? 1 : 0);
  }
}

std::size_t ThreadLedger::threadNumber(std::string_view id, bool isStored) {
  const auto [found, isNew] = threadNumbers_.try_emplace(std::string{id}, threads_.size());
  if (isNew) {
    threads_.push_back({std::string{id}, threads_.size(), isStored});
  }
  return found->second;
}

/// Shortens the way for the next time: a long chain of merged threads is walked once.
std::size_t ThreadLedger::finalThread(std::size_t thread) {
  while (threads_[thread].mergedInto != thread) {
    auto& next = threads_[thread].mergedInto;
    next = threads_[next].mergedInto;
    thread = next;
  }
  return thread;
}

/// A thread of the store stays rather than a new one, so that as little as possible is rewritten; of two of the store
/// the lesser id stays, whichever mail came first.
std::size_t ThreadLedger::merge(std::size_t one, std::size_t other) {
  std::size_t winner = finalThread(one);
  std::size_t loser = finalThread(other);
  if (winner == loser) {
    return winner;
  }
  const auto rank = [this](std::size_t thread) {
    return std::pair{!threads_[thread].isStored, std::string_view{threads_[thread].id}};
  };
  if (rank(loser) < rank(winner)) {
    std::swap(winner, loser);
  }
  threads_[loser].mergedInto = winner;
  return winner;
}

} // namespace orvan
