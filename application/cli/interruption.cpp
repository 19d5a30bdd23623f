#include "application/cli/interruption.h"

#include <atomic>

namespace orvan {
namespace {

// What the handler can reach.
std::atomic<ImportWatch*> watched = nullptr;
std::atomic<int> received = 0;

extern "C" void takeSignal(int number) {
  received = number;
  if (auto* watch = watched.load()) {
    watch->requestStop();
  }
}

/// Returns what was there before.
struct sigaction handle(int number) {
  struct sigaction former = {};
  sigaction(number, nullptr, &former);
  if (former.sa_handler == SIG_IGN) {
    return former;
  }
  struct sigaction once = {};
  once.sa_handler = takeSignal;
  // The second signal finds no handler any more.
  once.sa_flags = static_cast<int>(SA_RESTART | SA_RESETHAND);
  sigemptyset(&once.sa_mask);
  sigaction(number, &once, nullptr);
  return former;
}

} // namespace

Interruption::Interruption(ImportWatch& watch) {
  received = 0;
  watched = &watch;
  formerInterrupt_ = handle(SIGINT);
  formerTerminate_ = handle(SIGTERM);
}

Interruption::~Interruption() {
  sigaction(SIGINT, &formerInterrupt_, nullptr);
  sigaction(SIGTERM, &formerTerminate_, nullptr);
  watched = nullptr;
}

ExitCode exitCodeFor(int signal) noexcept {
  return signal == SIGTERM ? ExitCode::terminated : ExitCode::interrupted;
}

std::optional<int> Interruption::signal() const noexcept {
  const int number = received;
  return number == 0 ? std::nullopt : std::optional{number};
}

} // namespace orvan
