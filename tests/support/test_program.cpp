#include "tests/support/test_program.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "application/process/exec_texts.h"

namespace orvan {

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
  const ExecTexts arguments{words};
  const ExecTexts environment{environmentWith(variables)};
  if (posix_spawnp(&process_, words.front().c_str(), &actions, nullptr, arguments.get(), environment.get()) != 0) {
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
