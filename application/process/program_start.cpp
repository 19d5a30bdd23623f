#include "application/process/program_start.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <utility>

#include "application/process/exec_texts.h"

namespace orvan {
namespace {

std::string environmentValue(const char* name) {
  const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): nothing changes our programs' environment.
  return value == nullptr ? "" : value;
}

bool isProgram(const std::filesystem::path& file) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(file, ignored) && access(file.c_str(), X_OK) == 0;
}

/// systemd says so to the process it started, and only the process's own id tells that from what is inherited.
bool isServiceOfSystemd() {
  return environmentValue("SYSTEMD_EXEC_PID") == std::to_string(getpid());
}

/// In the process to be: only calls that are safe after a fork of a process with threads.
[[noreturn]] void become(const char* program, char* const* arguments, char* const* environment, int reportEnd) {
  constexpr int failed = 127;
  setsid();
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    dup2(nothing, stream);
  }
  close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC);
  execve(program, arguments, environment);
  const char fault = 1;
  _exit(write(reportEnd, &fault, 1) == 1 ? failed : failed - 1);
}

/// Whether the writing end was closed by a successful exec, without a word.
bool staysSilent(int readingEnd) {
  char fault = 0;
  ssize_t count = 0;
  do {
    count = read(readingEnd, &fault, 1);
  } while (count < 0 && errno == EINTR);
  return count == 0;
}

/// The program's parent ends at once, so that init waits for the program, and not we.
bool start(const std::filesystem::path& program, const ExecTexts& arguments, const ExecTexts& environment) {
  std::array<int, 2> report{};
  if (pipe2(report.data(), O_CLOEXEC) != 0) {
    return false;
  }
  const pid_t between = fork();
  if (between == 0) {
    if (const pid_t last = fork(); last == 0) {
      become(program.c_str(), arguments.get(), environment.get(), report[1]);
    } else {
      _exit(last < 0 ? 1 : 0);
    }
  }
  close(report[1]);
  int status = 1;
  while (between > 0 && waitpid(between, &status, 0) < 0 && errno == EINTR) {
  }
  const bool isStarted = between > 0 && status == 0 && staysSilent(report[0]);
  close(report[0]);
  return isStarted;
}

/// The names only: systemd-run takes the values from its own environment, so that they stand on no command line.
std::vector<std::string> throughSystemd(const std::filesystem::path& runner, const std::filesystem::path& program,
                                        const std::map<std::string, std::string>& variables) {
  // What the program starts in turn, as a mail program, may outlive it.
  std::vector<std::string> words{runner.native(), "--user", "--quiet",    "--collect",
                                 "--description", "Orvan",  "--property", "KillMode=process"};
  for (const auto& [name, value] : variables) {
    words.push_back("--setenv=" + name);
  }
  words.insert(words.end(), {"--", program.native()});
  return words;
}

} // namespace

std::optional<std::filesystem::path> programCalled(const std::string& name) {
  std::error_code ignored;
  if (auto beside = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path() / name; isProgram(beside)) {
    return beside;
  }
  const auto folders = environmentValue("PATH");
  for (std::size_t at = 0; at <= folders.size();) {
    const auto end = std::min(folders.find(':', at), folders.size());
    const std::filesystem::path folder{folders.substr(at, end - at)};
    if (folder.is_absolute() && isProgram(folder / name)) {
      return folder / name;
    }
    at = end + 1;
  }
  return std::nullopt;
}

bool startByItself(const std::filesystem::path& program, const std::vector<std::string>& arguments,
                   const std::map<std::string, std::string>& variables) {
  std::vector<std::string> words{program.native()};
  auto toStart = program;
  if (const auto runner = isServiceOfSystemd() ? programCalled("systemd-run") : std::nullopt) {
    words = throughSystemd(*runner, program, variables);
    toStart = *runner;
  }
  words.insert(words.end(), arguments.begin(), arguments.end());
  return start(toStart, ExecTexts{std::move(words)}, ExecTexts{environmentWith(variables)});
}

} // namespace orvan
