#pragma once

#include "application/import/mail/quotation.h"

namespace orvan {

/// Whether `lines` begin with a sign-off ("Kind regards", and a name below it), so that a signature follows.
bool beginsSignOff(TextLines lines);

/// "PS:", which goes on below a signature.
bool isPostscript(std::string_view line);

/// "Sent from my phone"
bool isDevicePlug(std::string_view line);

/// Whether a legal notice begins with `lines`; it goes on to the end of the paragraph.
bool beginsNotice(TextLines lines);

/// Whether a line is what only bulk mail has: a way to unsubscribe, or to read the mail in a browser.
bool marksBulkMail(std::string_view line);

} // namespace orvan
