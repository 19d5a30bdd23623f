#include "bench/instruction_count.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

#include <fstream>

namespace orvan::bench {
namespace {

bool runToSuccess(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  arguments.reserve(command.size() + 1);
  for (const auto& argument : command) {
    arguments.push_back(const_cast<char*>(argument.c_str()));
  }
  arguments.push_back(nullptr);
  pid_t child = 0;
  if (posix_spawnp(&child, arguments.front(), nullptr, nullptr, arguments.data(), environ) != 0) {
    return false;
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::optional<std::int64_t> totalIn(const std::filesystem::path& report) {
  std::ifstream lines(report);
  for (std::string word; lines >> word;) {
    std::int64_t total = 0;
    if (word == "totals:" && lines >> total) {
      return total;
    }
  }
  return std::nullopt;
}

} // namespace

std::optional<std::int64_t> instructionsOf(const std::vector<std::string>& arguments,
                                           const std::filesystem::path& folder) {
  const auto report = folder / "instructions.out";
  std::vector<std::string> command{"valgrind",
                                   "--tool=callgrind",
                                   "--quiet",
                                   "--instr-atstart=no",
                                   "--callgrind-out-file=" + report.string(),
                                   std::filesystem::read_symlink("/proc/self/exe").string()};
  command.insert(command.end(), arguments.begin(), arguments.end());
  if (!runToSuccess(command)) {
    return std::nullopt;
  }
  return totalIn(report);
}

void countedWork(const std::function<void()>& work) {
  CALLGRIND_START_INSTRUMENTATION;
  work();
  CALLGRIND_STOP_INSTRUMENTATION;
}

} // namespace orvan::bench
