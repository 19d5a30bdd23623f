#include "application/agent/refreshing/background_runner.h"

#include <fcntl.h>
#include <linux/ioprio.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <climits>
#include <iterator>
#include <utility>

namespace orvan {
namespace {

constexpr std::size_t mostOutput = std::size_t{16} * 1024 * 1024;

/// In the new process, where little is allowed before the program takes over: the agent's other threads are not there,
/// and may have held any lock.
void leaveTheMachineToOthers() noexcept {
  constexpr sched_param noPriority{};
  constexpr int leastUrgent = 19;
  sched_setscheduler(0, SCHED_IDLE, &noPriority);
  setpriority(PRIO_PROCESS, 0, leastUrgent);
  syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, 0, IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0));
}

void takeDefaultSignals() noexcept {
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  signal(SIGPIPE, SIG_DFL);
}

[[noreturn]] void become(char* const* words, int output, pid_t starter) noexcept {
  setpgid(0, 0);
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  constexpr int cannotStart = 127;
  if (getppid() != starter) {
    _exit(cannotStart); // It ended before it could be watched.
  }
  takeDefaultSignals();
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (nothing < 0 || dup2(nothing, STDIN_FILENO) < 0 || dup2(output, STDOUT_FILENO) < 0 ||
      dup2(nothing, STDERR_FILENO) < 0) {
    _exit(cannotStart);
  }
  close_range(STDERR_FILENO + 1, UINT_MAX, 0);
  // Last: on a busy machine it may be long before it gets a turn again, and so would be what it still held of the
  // agent's, such as its place on the bus.
  leaveTheMachineToOthers();
  execv(words[0], words);
  _exit(cannotStart);
}

/// The new process, or a negative number.
pid_t startProgram(std::vector<std::string> words, int output) {
  std::vector<char*> arguments;
  std::ranges::transform(words, std::back_inserter(arguments), [](std::string& word) { return word.data(); });
  arguments.push_back(nullptr);
  const pid_t starter = getpid();
  const pid_t child = fork();
  if (child == 0) {
    become(arguments.data(), output, starter);
  }
  if (child > 0) {
    // Here too: whichever of the two comes first, the group is there from now on.
    setpgid(child, child);
  }
  return child;
}

/// A descriptor that can be read once the process has ended. The C library's own call is not declared for C++ before
/// its version 2.37.
int watchedProcess(pid_t process) noexcept {
  return static_cast<int>(syscall(SYS_pidfd_open, process, 0));
}

} // namespace

class BackgroundRunner::Run : public std::enable_shared_from_this<Run> {
 public:
  Run(Executor executor, Ended ended)
      : executor_(std::move(executor)), process_(executor_), output_(executor_), ended_(std::move(ended)) {}
  ~Run() {
    kill();
    reap(WNOHANG);
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  void start(std::vector<std::string> words) {
    std::array<int, 2> pipe{};
    if (pipe2(pipe.data(), O_CLOEXEC) != 0) {
      return end(ProgramEnd::Kind::failed);
    }
    output_.assign(pipe[0]);
    child_ = startProgram(std::move(words), pipe[1]);
    close(pipe[1]);
    const int process = child_ > 0 ? watchedProcess(child_) : -1;
    if (process < 0) {
      kill();
      reap(0);
      return end(ProgramEnd::Kind::failed);
    }
    process_.assign(process);
    readOn();
  }

  void kill() noexcept {
    if (child_ > 0) {
      ::kill(-child_, SIGKILL);
    }
  }

  /// Kills, and tells nobody.
  void abandon() noexcept {
    ended_ = nullptr;
    kill();
  }

 private:
  /// The program's end closes its output, so that comes first and is read whole.
  void readOn() {
    output_.async_read_some(boost::asio::buffer(space_),
                            [self = shared_from_this()](boost::system::error_code error, std::size_t count) {
                              self->text_.append(self->space_.data(), count);
                              if (self->text_.size() > mostOutput) {
                                self->kill();
                                self->text_.clear();
                              }
                              if (error) {
                                self->awaitEnd();
                              } else {
                                self->readOn();
                              }
                            });
  }

  void awaitEnd() {
    process_.async_wait(boost::asio::posix::stream_descriptor::wait_read,
                        [self = shared_from_this()](boost::system::error_code /*error*/) {
                          // What it may have left in its group goes with it.
                          self->kill();
                          self->end(self->reap(0));
                        });
  }

  ProgramEnd::Kind reap(int options) noexcept {
    siginfo_t how{};
    if (child_ <= 0 || waitid(P_PID, static_cast<id_t>(child_), &how, WEXITED | options) != 0) {
      return ProgramEnd::Kind::failed;
    }
    child_ = 0;
    if (how.si_code != CLD_EXITED) {
      return ProgramEnd::Kind::killed;
    }
    return how.si_status == 0 ? ProgramEnd::Kind::succeeded : ProgramEnd::Kind::failed;
  }

  void end(ProgramEnd::Kind kind) {
    if (ended_ == nullptr) {
      return;
    }
    boost::asio::post(executor_, [ended = std::move(ended_), kind, output = std::move(text_)]() mutable {
      ended({kind, std::move(output)});
    });
  }

  Executor executor_;
  pid_t child_ = 0;
  boost::asio::posix::stream_descriptor process_;
  boost::asio::posix::stream_descriptor output_;
  std::array<char, 4096> space_{};
  std::string text_;
  Ended ended_;
};

BackgroundRunner::BackgroundRunner(Executor executor) : executor_(std::move(executor)) {}

BackgroundRunner::~BackgroundRunner() {
  if (const auto run = run_.lock()) {
    run->abandon();
  }
}

void BackgroundRunner::run(std::vector<std::string> words, Ended ended) {
  const auto run = std::make_shared<Run>(executor_, std::move(ended));
  run_ = run;
  run->start(std::move(words));
}

void BackgroundRunner::kill() noexcept {
  if (const auto run = run_.lock()) {
    run->kill();
  }
}

} // namespace orvan
