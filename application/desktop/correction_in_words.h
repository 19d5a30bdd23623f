#pragma once

#include <QString>

#include "application/process/mail_program.h"

namespace orvan {

// What the window says of corrections, in words of its own.

/// Why the exception that is being handled kept a correction from being made, or from being taken back, as a sentence.
QString refusalOfCorrection();

/// What became of a message that was to be opened; nothing to say is empty.
QString inWords(HandingOver outcome);

} // namespace orvan
