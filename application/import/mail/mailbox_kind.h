#pragma once

#include <string_view>

namespace orvan {

/// Who reads a mailbox, as far as its address tells.
enum class MailboxKind {
  person,
  /// Whatever is sent to it goes to the members of a mailing list.
  list,
  /// An office that several people may hold: "info@", "support@".
  role,
  /// A program: "no-reply@", "mailer-daemon@".
  machine,
};

/// By the names that such mailboxes go by. Most lists have a name like anybody's: what else shows them is in the mails
/// that went through them.
MailboxKind kindOfMailbox(std::string_view address);

} // namespace orvan
