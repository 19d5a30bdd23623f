#include "application/sources/source_fault.h"

#include "OrvanPlatform/error_case.h"
#include "application/import/calendar/calendar_source.h"
#include "application/import/cards/card_source.h"
#include "application/import/mail/mail_source_error.h"
#include "application/import/recognition/source_recognition.h"

namespace orvan {
namespace {

class SourceFaultCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.source"; }

  std::string message(int value) const override {
    switch (static_cast<SourceFault>(value)) {
      case SourceFault::missing:
        return "There is no such file or folder; check the path.";
      case SourceFault::gone:
        return "It is not there any more; bring it back or connect its disk, or take it off the list with 'orvan "
               "sources remove'.";
      case SourceFault::notPermitted:
        return "This user may not read it; change its permissions.";
      case SourceFault::notAFile:
        return "It is a pipe, a socket or a device; name a file or a folder.";
      case SourceFault::holdsNothing:
        return "It holds no mail, calendar or contact cards in a form that orvan reads; name the file or folder that "
               "does.";
      case SourceFault::emptied:
        return "Nothing of what it held is there any more; bring it back or connect its disk, or take it off the list "
               "with 'orvan sources remove'.";
      case SourceFault::becameSomethingElse:
        return "It is not what it was when it was added; take it off the list with 'orvan sources remove' and add what "
               "is there now.";
      case SourceFault::tooLarge:
        return "There is too much in this folder to look through; name the folder within it that holds the mail.";
      case SourceFault::cannotRead:
        return "It cannot be read, or changed while it was; try again, and check the disk if that does not help.";
    }
    return "It cannot be read.";
  }
};

SourceFault faultOfMail(MailSourceError error) noexcept {
  switch (error) {
    case MailSourceError::notFound:
      return SourceFault::gone;
    case MailSourceError::notPermitted:
      return SourceFault::notPermitted;
    case MailSourceError::isAFolder:
    case MailSourceError::isAFile:
    case MailSourceError::notAMaildir:
      return SourceFault::becameSomethingElse;
    case MailSourceError::readFailed:
      break;
  }
  return SourceFault::cannotRead;
}

} // namespace

std::error_code make_error_code(SourceFault fault) noexcept {
  static const SourceFaultCategory category;
  return {static_cast<int>(fault), category};
}

std::optional<std::string> sentenceOnSource(const std::error_code& code) {
  if (belongsTo<SourceFault>(code)) {
    return code.message();
  }
  if (belongsTo<MailSourceError>(code)) {
    return make_error_code(faultOfMail(static_cast<MailSourceError>(code.value()))).message();
  }
  if (belongsTo<WrongSource>(code) || code == CalendarSourceError::notACalendar ||
      code == CardSourceError::holdsNoCard) {
    return make_error_code(SourceFault::becameSomethingElse).message();
  }
  if (code == CalendarSourceError::cannotRead || code == CardSourceError::cannotRead) {
    return make_error_code(SourceFault::cannotRead).message();
  }
  return std::nullopt;
}

} // namespace orvan
