#pragma once

#include <filesystem>
#include <optional>
#include <string_view>

#include "application/import/mail/mail_message.h"
#include "application/import/mail/mail_parser.h"
#include "application/import/mail/raw_mail.h"

namespace orvan {

/// What a file of a Maildir is called as long as it is there: its name without the flags behind it, which change.
std::string_view lastingName(std::string_view name) noexcept;

/// Why a file with such flags is passed over: a draft, or a mail that was thrown away.
std::optional<MailSkip> skipForFlags(std::string_view name) noexcept;

/// The mail in a file of its own, or a skip when it cannot be read. `space` is used again from mail to mail.
MailItem readMailFile(const std::filesystem::path& file, MailParser& parser, RawMail& space);

} // namespace orvan
