#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <variant>

#include "application/agent/program/agent.h"
#include "application/agent/program/agent_arguments.h"
#include "application/process/process_privacy.h"

namespace {

/// The lines as they are, for somebody who watches.
class TerminalLogSink final : public orvan::LogSink {
 public:
  void write(const orvan::LogEntry& entry) noexcept override {
    try {
      const std::string line = entry.message + "\n";
      if (::write(STDERR_FILENO, line.data(), line.size()) < 0) {
        return;
      }
    } catch (const std::bad_alloc&) { // NOLINT(bugprone-empty-catch): without memory there is no line.
    }
  }
};

std::shared_ptr<orvan::LogSink> sinkFor(orvan::AgentOutput output) {
  return output == orvan::AgentOutput::terminal ? std::make_shared<TerminalLogSink>() : orvan::systemLogSink();
}

int run(std::span<const char* const> words) {
  const auto arguments = orvan::agentArgumentsIn(words);
  if (const auto* exitStatus = std::get_if<int>(&arguments)) {
    return *exitStatus;
  }
  const auto& told = std::get<orvan::AgentArguments>(arguments);
  return orvan::runAgent(told, sinkFor(told.output));
}

} // namespace

int main(int argc, char** argv) {
  orvan::keepMemoryOutOfCrashDumps();
  try {
    return run({argv, static_cast<std::size_t>(argc)});
  } catch (...) {
    std::abort();
  }
}
