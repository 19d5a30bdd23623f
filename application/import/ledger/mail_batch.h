#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/import/ledger/mail_standing.h"
#include "application/import/ledger/people_ledger.h"
#include "application/import/ledger/stable_id.h"
#include "application/import/mail/mail_message.h"

namespace orvan {

/// What is known of addresses while mail is read: the user's own, and the identities of mailing lists. More lists
/// become known on the way.
struct KnownAddresses {
  std::set<std::string> own;
  std::set<std::string> listIdentityIDs;
};

/// A mail reduced to what the tables take.
struct PreparedMail {
  /// What a report counts it as.
  enum class Use {
    history,
    /// A program wrote it, or it is a newsletter.
    automated,
    /// It does not name the user.
    elsewhere,
    /// From the user to the user.
    note,
    /// From people whom the user has had forgotten, or from the user to nobody else.
    forgotten,
  };

  MailKey key{};
  /// The mails it answers, oldest first.
  std::vector<MailKey> references;
  Use use = Use::history;
  MailStanding standing = MailStanding::passedOver;
  /// What a mail that is passed over counts as when it answers one of the user's.
  MailStanding standingAsAnswer = MailStanding::passedOver;
  /// Beside whose rows the mail's rows lie: those of who wrote it or, of the user's own mail, of its first reader.
  std::string principalIdentityID;
  /// Whom the mail is contact with: who wrote it or, of the user's own mail, whom it was sent to.
  std::vector<std::string> participantIdentityIDs;
  /// How many people the user sent it to, those included who are left out.
  std::size_t readers = 0;
  /// Everybody else's addresses on a mail that is not the user's.
  std::vector<std::string> namedIdentityIDs;
  Instant sentAt;
  std::string subject;
  std::string messageID;
  std::optional<std::string> question;
  bool isReadAgain = false;

  bool isFromUser() const noexcept { return standing == MailStanding::own; }
  std::string interactionID() const { return clusteredID(principalIdentityID, sentAt, key); }
};

/// What is read and prepared before it is written in one transaction.
class MailBatch {
 public:
  /// Takes one mail over, and adds to `known` what it shows. Of very many people on a mail only some are kept.
  void add(MailMessage message, KnownAddresses& known);
  void addSkip(MailSkipReason reason) { skips_.push_back(reason); }

  /// How many mails and skips it holds, and about how much memory they take.
  std::size_t size() const noexcept { return mails_.size() + skips_.size(); }
  std::size_t bytes() const noexcept { return bytes_ + people_.bytes(); }

  std::vector<PreparedMail>& mails() noexcept { return mails_; }
  const std::vector<PreparedMail>& mails() const noexcept { return mails_; }
  const std::vector<MailSkipReason>& skips() const noexcept { return skips_; }
  PeopleLedger& people() noexcept { return people_; }
  /// The user's addresses that stand on its mails.
  const std::set<std::string>& ownAddresses() const noexcept { return ownAddresses_; }

 private:
  std::vector<PreparedMail> mails_;
  std::vector<MailSkipReason> skips_;
  PeopleLedger people_;
  std::set<std::string> ownAddresses_;
  std::size_t bytes_ = 0;
};

} // namespace orvan
