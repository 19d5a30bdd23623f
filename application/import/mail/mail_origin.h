#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvan {

class HeaderFields;
struct MailAddress;

// Who is behind a mail: a person, a mailing list, a program.

/// Whether the mail went out to many at once: through a mailing list, or from a sender of newsletters.
bool isBulkMail(const HeaderFields& fields);

/// The addresses of the mailing lists that passed the mail on, where they tell.
std::vector<std::string> listAddresses(const HeaderFields& fields);

/// Whether a program wrote the mail.
bool isAutomatedMail(const HeaderFields& fields, const MailAddress& sender);

/// Whether the subject says that the mail passes another one on ("Fwd:", and its forms in other languages). An answer
/// to such a mail ("Re: Fwd:") does not.
bool isForwardSubject(std::string_view subject);

} // namespace orvan
