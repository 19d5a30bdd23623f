#include "writer_process.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <vector>

namespace orvan {

WriterProcess::WriterProcess(const std::filesystem::path& store, int first, int count, const std::string& rival) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "making a pipe");
  }
  acknowledgements_ = fdopen(ends[0], "r");
  std::vector<std::string> words{DISPOSITION_WRITER, store, std::to_string(first), std::to_string(count), rival};
  std::vector<char*> arguments;
  for (auto& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  const int code = posix_spawn(&process_, DISPOSITION_WRITER, &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (code != 0) {
    throw std::system_error(code, std::generic_category(), "starting a writer");
  }
}

WriterProcess::~WriterProcess() {
  if (process_ > 0) {
    kill();
    succeeded();
  }
  std::fclose(acknowledgements_);
}

std::optional<std::string> WriterProcess::nextAcknowledgement() {
  std::array<char, 128> line{};
  if (std::fgets(line.data(), static_cast<int>(line.size()), acknowledgements_) == nullptr) {
    return std::nullopt;
  }
  std::string_view text{line.data()};
  text.remove_suffix(1);
  return std::string{text};
}

void WriterProcess::kill() noexcept {
  ::kill(process_, SIGKILL);
}

bool WriterProcess::succeeded() {
  int status = 0;
  while (waitpid(process_, &status, 0) < 0 && errno == EINTR) {
  }
  process_ = -1;
  return WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

bool isNightly() {
  const char* const value = std::getenv("ORVAN_NIGHTLY");
  return value != nullptr && std::string_view{value} == "1";
}

} // namespace orvan
