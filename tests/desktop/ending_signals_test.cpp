#include "application/desktop/ending_signals.h"

#include <gtest/gtest.h>
#include <signal.h>

#include <QCoreApplication>

namespace orvan {
namespace {

TEST(EndingSignals, AreHeardOfInQtsLoopInsteadOfEndingTheProgram) {
  int heard = 0;
  {
    const EndingSignals signals;
    QObject::connect(&signals, &EndingSignals::asked, [&heard] { ++heard; });
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
      raise(number);
      QCoreApplication::processEvents();
    }
  }
  EXPECT_EQ(heard, 3);
  struct sigaction now = {};
  sigaction(SIGTERM, nullptr, &now);
  EXPECT_EQ(now.sa_handler, SIG_DFL);
}

} // namespace
} // namespace orvan
