#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvan {

/// The one form in which the address of a mailbox is kept and compared, so that mail, calendars and the command line
/// mean the same person by it. `written` is UTF-8; blanks, a pair of apostrophes and "mailto:" around it do not count.
///
/// The whole is in lower case, independently of the user's language. A domain with other letters than ASCII is given in
/// the form that the domain name system knows ("xn--..."), a part before the @ in Unicode's composed form (NFC).
///
/// Nothing when it is no address: without a name or a domain, or with blanks, brackets, quotation marks or commas in
/// it.
std::optional<std::string> normalAddress(std::string_view written);

} // namespace orvan
