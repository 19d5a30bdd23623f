#pragma once

#include <QString>
#include <string_view>

#include "OrvanNotifications/agent_control_error.h"
#include "application/sources/source_fault.h"

namespace orvan {

// Why something that the user asked of the settings was not done: one sentence that says what to do. They hold nothing
// of the user's data.

/// What the exception that is being handled means. To be called within a handler.
QString refusalOfCurrentException();

QString inWords(SourceFault fault);
QString inWords(AgentControlError error);

/// What the store says of a source that could not be read, in the window's own words where it knows them.
QString sourceFaultInWords(std::string_view kept);

} // namespace orvan
