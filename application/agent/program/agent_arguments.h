#pragma once

#include <span>
#include <variant>

#include "application/session/session_settings.h"

namespace orvan {

/// Where the agent's log lines go.
enum class AgentOutput { journal, terminal };

enum class AgentRefreshing {
  /// As the user has set it.
  asSet,
  never,
};

enum class AgentStart {
  /// In this process.
  here,
  /// By the session's bus, so that what watches over services watches over it; here where the bus does not know it.
  throughBus,
};

/// What the agent is told on its command line.
struct AgentArguments {
  /// The store whose follow-ups are the agent's own; with absolute paths.
  SessionSettings settings;
  AgentOutput output = AgentOutput::journal;
  AgentRefreshing refreshing = AgentRefreshing::asSet;
  AgentStart start = AgentStart::here;
};

/// Reads the words, the program's name first. Instead of arguments an exit status, where there is nothing else to do:
/// help or the version was printed, or a sentence on standard error says what is wrong.
std::variant<AgentArguments, int> agentArgumentsIn(std::span<const char* const> words);

} // namespace orvan
