#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/import/ledger/people_ledger.h"
#include "application/import/ledger/stable_id.h"
#include "application/import/mail/mail_message.h"

namespace orvan {

/// A mail reduced to what the tables take.
struct PreparedMail {
  enum class Use {
    /// Part of the history of the people it is from and to.
    history,
    /// List mail: part of its thread, and of nobody's history.
    listOnly,
    automated,
    /// From the user to the user.
    note,
  };

  MailKey key{};
  /// The mails it answers, oldest first.
  std::vector<MailKey> references;
  Use use = Use::history;
  bool isFromUser = false;
  bool isGroup = false;
  /// Beside whose rows the mail's rows lie: those of who wrote it or, of the user's own mail, of its first reader.
  std::string principalIdentityID;
  std::vector<std::string> participantIdentityIDs;
  Instant sentAt;
  std::string subject;
  std::optional<std::string> question;

  std::string interactionID() const { return clusteredID(principalIdentityID, sentAt, key); }
};

/// What is read and prepared before it is written in one transaction.
class MailBatch {
 public:
  /// Takes one mail over; `ownAddresses` are the user's. Of very many people on a mail only some are kept.
  void add(MailMessage message, const std::set<std::string>& ownAddresses);
  void addSkip(MailSkipReason reason) { skips_.push_back(reason); }

  /// How many mails and skips it holds, and about how much memory they take.
  std::size_t size() const noexcept { return mails_.size() + skips_.size(); }
  std::size_t bytes() const noexcept { return bytes_; }

  std::vector<PreparedMail>& mails() noexcept { return mails_; }
  const std::vector<PreparedMail>& mails() const noexcept { return mails_; }
  const std::vector<MailSkipReason>& skips() const noexcept { return skips_; }
  PeopleLedger& people() noexcept { return people_; }

 private:
  std::vector<PreparedMail> mails_;
  std::vector<MailSkipReason> skips_;
  PeopleLedger people_;
  std::size_t bytes_ = 0;
};

} // namespace orvan
