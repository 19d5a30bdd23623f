#pragma once

#include "application/import/mail/quotation.h"

namespace orvan {

/// Whether a patch begins with `lines`, or the table of what it changes, or an entry of a version history.
bool beginsPatch(TextLines lines);

/// Whether a program wrote `line` or is meant to read it: code, a command, an entry of a log.
bool isMachineLine(std::string_view line);

} // namespace orvan
