#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "OrvanStore/connection.h"
#include "application/import/ledger/mail_standing.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {

/// Decides which thread each mail of a batch belongs to. Mails name each other by Message-ID and arrive in any order: a
/// mail may be referred to long before it is read, and one mail can show that two threads are one.
///
/// For one batch: load() what the store knows of all the keys that the batch mentions, then placeMail() or passOver()
/// each mail that tells more than is known of it, then write(). Runs within the caller's write transaction.
class ThreadLedger {
 public:
  /// Looks up `keys` in the store, in their order; sorted keys read neighbouring pages.
  void load(std::span<const MailKey> keys, Connection& connection);

  /// What is known of a mail from the copies that were read, in this batch or an earlier one.
  MailStanding standingOf(MailKey key) const;
  /// The number of its thread in this batch; nothing when it belongs to none.
  std::optional<std::size_t> threadOf(MailKey key) const;
  /// How the identifiers end of the mails that one of the user's answers, of all that the batch mentions; sorted.
  std::vector<std::string> endingsOfAnswered() const;
  /// The mails to the user alone that nothing had answered before this batch, and something in it does.
  std::vector<MailKey> newlyAnswered() const;

  /// Places a mail with the mails it refers to and gives the number of its thread in this batch. `newThreadID` becomes
  /// its thread if none of them has one. From now on the mail has that standing; what an own mail refers to is
  /// answered.
  std::size_t placeMail(MailKey key, std::span<const MailKey> references, const std::string& newThreadID,
                        MailStanding standing);

  /// Remembers a mail that is not kept, and belongs to no thread, so that it is known from now on.
  void passOver(MailKey key);

  /// The id of the thread that a placed mail was given. Final once every mail of the batch is placed.
  const std::string& threadID(std::size_t thread) { return threads_[finalThread(thread)].id; }
  /// Whether the store held that thread before the batch.
  bool isStored(std::size_t thread) { return threads_[finalThread(thread)].isStored; }

  /// Joins the threads of the store that turned out to be one, and writes what was learned of the keys.
  void write(Connection& connection);

 private:
  struct Mail {
    std::optional<std::size_t> thread;
    MailStanding standing = MailStanding::referenced;
    bool isAnswered = false;
    bool isChanged = false;
  };

  struct Thread {
    std::string id;
    /// Itself, or the thread it was merged into.
    std::size_t mergedInto;
    bool isStored;
  };

  std::size_t threadNumber(std::string_view id, bool isStored);
  std::size_t finalThread(std::size_t thread);
  void writeMails(Connection& connection);
  std::size_t merge(std::size_t one, std::size_t other);

  std::unordered_map<MailKey, Mail> mails_;
  /// Those of them that one of the user's answers: what the store knew first, then what the batch added.
  std::vector<MailKey> answered_;
  std::size_t answeredBefore_ = 0;
  std::vector<Thread> threads_;
  std::unordered_map<std::string, std::size_t> threadNumbers_;
};

} // namespace orvan
