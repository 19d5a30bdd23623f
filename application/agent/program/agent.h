#pragma once

#include <memory>

#include "OrvanPlatform/log.h"
#include "application/agent/program/agent_arguments.h"

namespace orvan {

/// Runs the agent until it is told to end (SIGTERM, SIGINT), the bus goes, or it cannot go on. Gives the program's exit
/// status: 0 also when another agent runs already, 1 when there is no bus or the reminders' file is a newer version's.
/// A failure is one sentence on standard error; after one that nobody foresaw the program ends as by a signal.
int runAgent(const AgentArguments& arguments, std::shared_ptr<LogSink> log);

} // namespace orvan
