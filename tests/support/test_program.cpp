#include "tests/support/test_program.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string_view>
#include <utility>

namespace orvan {
namespace {

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& variables) {
  std::vector<std::string> texts;
  for (char** at = environ; *at != nullptr; ++at) {
    const std::string_view text{*at};
    if (!variables.contains(std::string{text.substr(0, text.find('='))})) {
      texts.emplace_back(text);
    }
  }
  for (const auto& [name, value] : variables) {
    texts.push_back(std::string{name}.append("=").append(value));
  }
  return texts;
}

} // namespace

TestProgram::TestProgram(const std::vector<std::string>& words, const std::map<std::string, std::string>& variables,
                         const std::string& errorFile) {
  std::array<int, 2> pipe{};
  if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
    return;
  }
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
  if (!errorFile.empty()) {
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errorFile.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  }
  auto arguments = words;
  auto environment = environmentWith(variables);
  if (posix_spawnp(&process_, arguments.front().c_str(), &actions, nullptr, pointersTo(arguments).data(),
                   pointersTo(environment).data()) != 0) {
    process_ = -1;
  }
  posix_spawn_file_actions_destroy(&actions);
  close(pipe[1]);
  output_ = pipe[0];
}

TestProgram::~TestProgram() {
  signal(SIGKILL);
  end();
  close(output_);
}

std::string TestProgram::outputLine() {
  std::string line;
  char letter = 0;
  while (read(output_, &letter, 1) == 1 && letter != '\n') {
    line += letter;
  }
  return line;
}

void TestProgram::signal(int number) const {
  if (process_ > 0) {
    kill(process_, number);
  }
}

int TestProgram::end() {
  int status = 0;
  if (process_ <= 0 || waitpid(std::exchange(process_, -1), &status, 0) < 0) {
    return -1;
  }
  constexpr int bySignal = 128;
  return WIFEXITED(status) ? WEXITSTATUS(status) : bySignal + WTERMSIG(status);
}

} // namespace orvan
