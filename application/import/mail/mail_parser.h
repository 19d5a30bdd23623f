#pragma once

#include <set>
#include <string>

#include "application/import/mail/mail_message.h"
#include "application/import/mail/raw_mail.h"

namespace orvan {

/// How the lines of a body were stored.
enum class BodyLines {
  asSent,
  /// Each line that began with "From " (after any number of ">") got one more ">" in front.
  fromEscaped,
};

/// Makes a message of a mail's lines, or says why it cannot. Never throws for what the mail holds.
class MailParser {
 public:
  /// With the user's addresses in their normal form, bodies are read of mail that may ask the user something: that is
  /// not theirs and is addressed to them. Without, of all mail.
  explicit MailParser(BodyLines bodyLines, std::set<std::string> ownAddresses = {});

  MailItem parse(const RawMail& mail) const;

 private:
  bool mayAskTheUser(const MailMessage& message) const;

  BodyLines bodyLines_;
  std::set<std::string> ownAddresses_;
};

} // namespace orvan
