#include "tests/support/private_bus.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>

namespace orvan {
namespace {

std::string configuration(const std::filesystem::path& folder) {
  return "<busconfig><type>session</type><listen>unix:path=" + (folder / "bus").string() +
         "</listen><auth>EXTERNAL</auth><servicedir>" + (folder / "services").string() +
         "</servicedir><policy context='default'><allow user='*'/><allow own='*'/>"
         "<allow send_destination='*' eavesdrop='true'/><allow eavesdrop='true'/></policy></busconfig>";
}

std::string lineFrom(int descriptor) {
  std::string line;
  char letter = 0;
  while (::read(descriptor, &letter, 1) == 1 && letter != '\n') {
    line += letter;
  }
  return line;
}

} // namespace

PrivateBus::PrivateBus(std::filesystem::path folder) : folder_(std::move(folder)) {
  std::filesystem::create_directories(folder_ / "services");
  const std::string file = folder_ / "bus.conf";
  std::ofstream{file} << configuration(folder_);
  std::array<int, 2> pipe{};
  if (::pipe2(pipe.data(), O_CLOEXEC) != 0) {
    return;
  }
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, pipe[1], STDOUT_FILENO);
  std::string program = "dbus-daemon";
  std::string option = "--config-file=" + file;
  std::string foreground = "--nofork";
  std::string print = "--print-address=1";
  std::array<char*, 5> words{program.data(), option.data(), foreground.data(), print.data(), nullptr};
  const int failed = posix_spawnp(&daemon_, program.c_str(), &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  ::close(pipe[1]);
  if (failed == 0) {
    address_ = lineFrom(pipe[0]);
    setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1); // NOLINT(concurrency-mt-unsafe): tests begin with it.
  } else {
    daemon_ = -1;
  }
  ::close(pipe[0]);
}

void PrivateBus::end() {
  if (daemon_ > 0) {
    kill(daemon_, SIGTERM);
    waitpid(daemon_, nullptr, 0);
    daemon_ = -1;
  }
}

PrivateBus::~PrivateBus() {
  end();
}

} // namespace orvan
