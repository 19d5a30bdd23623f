#pragma once

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanStore/connection.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {

/// A question put to the user in a mail to them alone.
struct AskedQuestion {
  std::string interactionID;
  MailKey mail;
  std::string threadID;
  std::string sourceIdentityID;
  std::string askedAt;
  std::string question;
};

/// Keeps the questions of a batch of mail, and weighs those on which the batch has a bearing. One is answered by a mail
/// of the user's that refers to it, or by a later one to that person in the thread; it is forgotten then, and its open
/// loop set to "done". One that waits becomes a claim with evidence and an open loop, once, if the user had written to
/// the person, met them, or written in the thread before: what strangers ask is no commitment. A loop that the user
/// closed stays closed.
///
/// Runs within the caller's transaction, after the rows of the batch are written.
class QuestionLedger {
 public:
  void note(AskedQuestion asked) { noted_.push_back(std::move(asked)); }

  /// The user wrote in the thread, or something else changed what is known of it.
  void reconsiderThread(std::string threadID) { threadIDs_.insert(std::move(threadID)); }
  /// Mails of the user's refer to these.
  void reconsiderMails(std::vector<MailKey> mails) { mails_ = std::move(mails); }
  /// The user is now known to have written to, or met, these before others thought.
  void reconsiderPeople(const std::vector<std::string>& identityIDs);

  /// Weighs, and forgets what was gathered.
  void settle(std::string_view now, Connection& connection);

 private:
  void settleStored(std::string_view now, Connection& connection);
  void settleNoted(std::string_view now, Connection& connection);

  std::vector<AskedQuestion> noted_;
  std::set<std::string> threadIDs_;
  std::set<std::string> identityIDs_;
  std::vector<MailKey> mails_;
};

/// Forgets which questions were answered, because it is no longer known which mails are the user's: those that are read
/// again are weighed as if they were new. Within the caller's transaction.
void forgetAnswers(Connection& connection);

} // namespace orvan
