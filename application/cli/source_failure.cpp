#include "application/cli/source_failure.h"

#include "OrvanPlatform/error_case.h"
#include "application/import/calendar/calendar_source.h"
#include "application/import/cards/card_source.h"
#include "application/import/mail/mail_source_error.h"
#include "application/import/recognition/source_recognition.h"

namespace orvan {

std::optional<std::string> sourceFailureSentence(const std::error_code& code) {
  // Where another option is the answer, it is named.
  if (code == WrongSource::isACalendar) {
    return "This is a calendar; give it with --ics.";
  }
  if (code == WrongSource::isAMailbox) {
    return "This is a mailbox; give it with --mbox.";
  }
  if (code == WrongSource::isContactCards) {
    return "These are contact cards; give them with --vcard.";
  }
  if (code == MailSourceError::isAFolder) {
    return "This is a folder; give it with --maildir if it is a Maildir, or name the mbox file inside it.";
  }
  if (code == MailSourceError::isAFile) {
    return "This is a file; give it with --mbox if it is a mailbox, or name the folder that holds \"cur\" and \"new\".";
  }
  if (belongsTo<WrongSource>(code) || belongsTo<MailSourceError>(code) || belongsTo<CalendarSourceError>(code) ||
      belongsTo<CardSourceError>(code)) {
    return code.message();
  }
  return std::nullopt;
}

} // namespace orvan
