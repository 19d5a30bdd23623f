#include "application/process/mail_program.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>
#include <thread>
#include <utility>
#include <vector>

namespace orvan {
namespace {

/// What a program is given for its standard streams: nothing to read, and nowhere to write.
class Streams {
 public:
  Streams() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  }
  ~Streams() { posix_spawn_file_actions_destroy(&actions_); }
  Streams(const Streams&) = delete;
  Streams& operator=(const Streams&) = delete;

  void writeOutputTo(int descriptor) { posix_spawn_file_actions_adddup2(&actions_, descriptor, STDOUT_FILENO); }
  const posix_spawn_file_actions_t* actions() const noexcept { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_{};
};

/// Closed in every program that is started; the reading end also when the pipe is destroyed.
class Pipe {
 public:
  Pipe() : isOpen_(pipe2(ends_.data(), O_CLOEXEC) == 0) {}
  ~Pipe() {
    if (isOpen_) {
      close(ends_[0]);
      closeWritingEnd();
    }
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  bool isOpen() const noexcept { return isOpen_; }
  int writingEnd() const noexcept { return ends_[1]; }

  /// All that others write until they have closed their ends.
  std::string readAll() {
    closeWritingEnd();
    std::string text;
    std::array<char, 256> part{};
    for (;;) {
      const auto count = read(ends_[0], part.data(), part.size());
      if (count > 0) {
        text.append(part.data(), static_cast<std::size_t>(count));
      } else if (count == 0 || errno != EINTR) {
        return text;
      }
    }
  }

 private:
  void closeWritingEnd() {
    if (const int end = std::exchange(ends_[1], -1); end >= 0) {
      close(end);
    }
  }

  std::array<int, 2> ends_{-1, -1};
  bool isOpen_;
};

/// Starts the program of that name, found as a shell would find it. Nothing when there is none.
std::optional<pid_t> start(std::vector<std::string> words, const Streams& streams) {
  std::vector<char*> arguments;
  std::ranges::transform(words, std::back_inserter(arguments), [](std::string& word) { return word.data(); });
  arguments.push_back(nullptr);
  pid_t program = 0;
  const int fault = posix_spawnp(&program, arguments.front(), streams.actions(), nullptr, arguments.data(), environ);
  return fault == 0 ? std::optional{program} : std::nullopt;
}

/// Waits for the program's end; whether it reports success.
bool succeeds(pid_t program) {
  int status = 0;
  while (waitpid(program, &status, 0) < 0) {
    if (errno != EINTR) {
      return false;
    }
  }
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Whether the program still runs after that time. Where the kernel cannot tell, it does not.
bool outlasts(pid_t program, std::chrono::milliseconds patience) {
  const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, program, 0));
  if (descriptor < 0) {
    return false;
  }
  pollfd ending{.fd = descriptor, .events = POLLIN, .revents = 0};
  const bool isOver = poll(&ending, 1, static_cast<int>(patience.count())) != 0;
  close(descriptor);
  return !isOver;
}

/// Without a mail program, xdg-open would have a web browser try. A desktop that cannot tell is given the chance.
bool lacksMailProgram() {
  Pipe pipe;
  if (!pipe.isOpen()) {
    return false;
  }
  Streams streams;
  streams.writeOutputTo(pipe.writingEnd());
  const auto program = start({"xdg-mime", "query", "default", "x-scheme-handler/mid"}, streams);
  if (!program) {
    return false;
  }
  const auto answer = pipe.readAll();
  return succeeds(*program) && answer.find_first_not_of(" \n") == std::string::npos;
}

} // namespace

HandingOver handToMailProgram(const std::string& address, std::optional<std::chrono::milliseconds> patience) {
  if (lacksMailProgram()) {
    return HandingOver::noMailProgram;
  }
  const Streams streams;
  const auto program = start({"xdg-open", address}, streams);
  if (!program) {
    return HandingOver::noOpener;
  }
  if (patience && outlasts(*program, *patience)) {
    // Somebody has to wait for it, or what is left of it stays until we end. The thread touches nothing of ours.
    std::thread([ended = *program] { succeeds(ended); }).detach();
    return HandingOver::done;
  }
  return succeeds(*program) ? HandingOver::done : HandingOver::failed;
}

} // namespace orvan
