#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "application/import/mail/mail_message.h"

namespace orvan {

class HeaderFields;

// Each function takes a field's raw value, as HeaderFields gives it; an absent field is an empty one.

/// The mailboxes of an address field, groups taken apart; what is not a mailbox with a domain is left out.
std::vector<MailAddress> mailAddresses(std::string_view rawValue);

/// A value that people read, its encoded words decoded: valid UTF-8 on one line.
std::string readableText(std::string_view rawValue);

/// The instant of a Date field, for years 1970 to 9999.
std::optional<Instant> mailDate(std::string_view rawValue);

/// The message ids of a Message-ID, References or In-Reply-To field, in their order, without brackets.
std::vector<std::string> messageIDs(std::string_view rawValue);

/// The mails that one with `messageID` answers, as MailMessage::references has them.
std::vector<std::string> referencesOf(const HeaderFields& fields, const std::string& messageID);

/// An id for a mail without one, made from its header fields. Fields that mail programs change in place are left out,
/// and so are the differences between line ends.
std::string messageIDFromHeader(std::string_view header);

} // namespace orvan
