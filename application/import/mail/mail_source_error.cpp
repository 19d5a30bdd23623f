#include "application/import/mail/mail_source_error.h"

#include <string>

namespace orvan {
namespace {

class MailSourceErrorCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.mail_source"; }

  std::string message(int value) const override {
    switch (static_cast<MailSourceError>(value)) {
      case MailSourceError::notFound:
        return "There is no such file or folder; check the path.";
      case MailSourceError::notPermitted:
        return "This user may not read it; change its permissions or choose another copy.";
      case MailSourceError::isAFolder:
        return "This is a folder, not an mbox file; name a file inside it, or import it as a Maildir.";
      case MailSourceError::isAFile:
        return "This is a file, not a Maildir; name the folder that holds \"cur\" and \"new\", or import the file as "
               "mbox.";
      case MailSourceError::notAMaildir:
        return "There is no \"cur\" or \"new\" folder in it or in its subfolders; name the Maildir itself.";
      case MailSourceError::readFailed:
        return "The system cannot read it; check the disk and try again.";
    }
    return "The mailbox cannot be read.";
  }
};

} // namespace

const std::error_category& mailSourceErrorCategory() noexcept {
  static const MailSourceErrorCategory category;
  return category;
}

std::error_code make_error_code(MailSourceError error) noexcept {
  return {static_cast<int>(error), mailSourceErrorCategory()};
}

} // namespace orvan
