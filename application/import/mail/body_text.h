#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "application/import/mail/mail_parser.h"

namespace orvan {

class HeaderFields;

/// The text of a mail's body, as far as it says something about its writer's questions.
struct BodyText {
  /// The first text part that is not an attachment, decoded to UTF-8: plain if there is one, else made of HTML. At most
  /// its first 256 KiB.
  std::optional<std::string> text;
  /// It invites to a meeting or answers an invitation.
  bool isInvitation = false;
};

/// Attachments and attached mails are not looked into, and neither are parts nested deeper than any mail program does.
BodyText bodyText(const HeaderFields& fields, std::string_view body, BodyLines bodyLines);

} // namespace orvan
