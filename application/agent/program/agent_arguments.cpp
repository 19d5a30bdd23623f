#include "application/agent/program/agent_arguments.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <string>

namespace orvan {
namespace {

constexpr int wrongCommandLine = 2;

std::filesystem::path absoluteOr(const std::filesystem::path& usual, const std::string& given) {
  return std::filesystem::absolute(given.empty() ? usual : std::filesystem::path{given});
}

} // namespace

std::variant<AgentArguments, int> agentArgumentsIn(std::span<const char* const> words) {
  AgentArguments arguments{.settings = SessionSettings::defaults()};
  std::string store;
  std::string keyFile;
  CLI::App program{"Keeps reminders and shows them at their time. The desktop starts it when it is needed.",
                   "orvan-agent"};
  program.set_version_flag("--version", std::string{"orvan-agent "} + ORVAN_VERSION);
  program.add_option("--store", store, "The store file (default: in your data folder)")->type_name("FILE");
  program.add_option("--key-file", keyFile, "The file with the store's key")->type_name("FILE");
  program.add_flag_callback(
      "--foreground", [&] { arguments.output = AgentOutput::terminal; }, "Say on the terminal what it does");
  program.add_flag_callback(
      "--no-refresh", [&] { arguments.refreshing = AgentRefreshing::never; }, "Do not read remembered sources anew");
  program.add_flag_callback(
      "--start", [&] { arguments.start = AgentStart::throughBus; }, "Have the session's bus start it, and end");
  try {
    program.parse(static_cast<int>(words.size()), words.data());
  } catch (const CLI::ParseError& found) {
    if (found.get_exit_code() == 0) {
      return program.exit(found);
    }
    // What was written is not told back: it may be somebody's name.
    std::cerr << "orvan-agent: That is not how it is called; 'orvan-agent --help' says how.\n";
    return wrongCommandLine;
  }
  arguments.settings.store = absoluteOr(arguments.settings.store, store);
  arguments.settings.keyFile = absoluteOr(arguments.settings.keyFile, keyFile);
  return arguments;
}

} // namespace orvan
