#include "application/import/mail/mail_message.h"

namespace orvan {

std::string_view description(MailSkipReason reason) noexcept {
  switch (reason) {
    case MailSkipReason::undated:
      return "no readable date";
    case MailSkipReason::noSender:
      return "no sender address";
    case MailSkipReason::notAMailbox:
      return "text that is not in mbox form";
    case MailSkipReason::draft:
      return "draft";
    case MailSkipReason::trashed:
      return "in the trash";
    case MailSkipReason::unreadable:
      return "file that cannot be read";
  }
  return "unknown";
}

} // namespace orvan
