#pragma once

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
  explicit MailParser(BodyLines bodyLines);

  MailItem parse(const RawMail& mail) const;

 private:
  BodyLines bodyLines_;
};

} // namespace orvan
