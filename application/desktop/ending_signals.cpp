#include "application/desktop/ending_signals.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdint>

namespace orvan {
namespace {

constexpr std::array caught{SIGTERM, SIGINT, SIGHUP};

/// What a handler of the process can reach; -1 without anybody who listens.
std::atomic<int> wakeUp{-1};
static_assert(std::atomic<int>::is_always_lock_free);
std::array<struct sigaction, caught.size()> before;

void note(int /*number*/) {
  const int error = errno;
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = write(wakeUp.load(), &one, sizeof one);
  errno = error;
}

} // namespace

EndingSignals::EndingSignals(QObject* parent) : QObject(parent) {
  const int end = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (end < 0) {
    return;
  }
  wakeUp = end;
  connect(new QSocketNotifier(end, QSocketNotifier::Read, this), &QSocketNotifier::activated, this,
          &EndingSignals::read);
  struct sigaction action = {};
  action.sa_handler = note;
  action.sa_flags = SA_RESTART;
  for (std::size_t at = 0; at < caught.size(); ++at) {
    sigaction(caught.at(at), &action, &before.at(at));
    // Who was told to live on when a terminal closes, as by nohup, does.
    if (before.at(at).sa_handler == SIG_IGN) {
      sigaction(caught.at(at), &before.at(at), nullptr);
    }
  }
}

EndingSignals::~EndingSignals() {
  if (wakeUp < 0) {
    return;
  }
  for (std::size_t at = 0; at < caught.size(); ++at) {
    sigaction(caught.at(at), &before.at(at), nullptr);
  }
  close(wakeUp.exchange(-1));
}

void EndingSignals::read() {
  std::uint64_t count = 0;
  if (::read(wakeUp, &count, sizeof count) == sizeof count) {
    Q_EMIT asked();
  }
}

} // namespace orvan
