#pragma once

#include <string_view>

namespace orvan {

class HeaderFields;
struct MailAddress;

// Who is behind a mail: a person, a mailing list, a program.

/// Whether a mailing list passed the mail on.
bool isListMail(const HeaderFields& fields) noexcept;

/// Whether a program sent the mail, or it went to so many readers that none of them is meant.
bool isAutomatedMail(const HeaderFields& fields, const MailAddress& sender);

/// Whether the subject says that the mail passes another one on ("Fwd:", and its forms in other languages). An answer
/// to such a mail ("Re: Fwd:") does not.
bool isForwardSubject(std::string_view subject);

} // namespace orvan
