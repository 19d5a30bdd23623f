#include <algorithm>
#include <set>

#include "reminder_world.h"
#include "tests/support/faulting_vfs.h"

namespace orvan {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using Death = DesktopPresenter::Death;

/// A day of reminders whose program ends at one of its steps, and what the next program makes of it.
class Day : public ReminderWorld {
 public:
  explicit Day(bool replacesByTag) { desktop.replacesByTag = replacesByTag; }

  /// Whether it came to its end.
  bool live() {
    try {
      addConfirmed("Before leave is given", minutes{1});
      allow();
      for (const char* title : {"One", "Two", "Replaced"}) {
        addConfirmed(title, minutes{10});
      }
      addConfirmed("Replaced", minutes{20});
      go(minutes{10});
      addConfirmed("One", minutes{15});
      go(minutes{10});
      for (const char* title : {"A", "B", "C", "D", "E"}) {
        addConfirmed(title, minutes{2});
      }
      go(hours{1});
    } catch (const Error&) {
      return false;
    }
    return !hasEnded();
  }

  void liveOn() {
    end();
    fileFailed = false;
    start();
    allow();
    advance(hours{3});
  }

  /// The same day of a program that outlives a fault of its file.
  void outlive() {
    isMortal_ = false;
    live();
    allow();
    go(hours{3});
  }

  void expectNothingLostOrRepeated() const {
    EXPECT_THAT(pending(), testing::IsEmpty());
    EXPECT_THAT(delivered(), testing::IsSupersetOf(confirmed_));
    std::set<std::string> seen;
    for (const auto& summary : desktop.appeared) {
      // It was added twice, and without tags its first popup may not be known any more.
      const bool mayRepeat = summary == "One" && !desktop.replacesByTag;
      EXPECT_TRUE(seen.insert(summary).second || mayRepeat) << summary << " appeared twice";
    }
    const bool inGroup = std::ranges::any_of(seen, [](const auto& each) { return each.contains("reminders"); });
    for (const auto& title : confirmed_) {
      EXPECT_TRUE(!desktop.replacesByTag || inGroup || seen.contains(title)) << title << " was never shown";
    }
  }

 private:
  bool hasEnded() const { return isMortal_ && (fileFailed || agent->presenter->isDead); }

  void addConfirmed(const std::string& title, std::chrono::seconds delay) {
    if (hasEnded()) {
      return;
    }
    try {
      addDueIn(title, delay);
      confirmed_.insert(title);
    } catch (const Error&) {
      if (isMortal_) {
        throw;
      }
    }
  }
  void go(std::chrono::seconds duration) {
    if (!hasEnded()) {
      advance(duration);
    }
  }

  bool isMortal_ = true;
  std::set<std::string> confirmed_;
};

class DeathAtEveryStep : public testing::TestWithParam<bool> {};

TEST_P(DeathAtEveryStep, OfTheFileNeitherLosesNorRepeatsAReminder) {
  bool reachedTheEnd = false;
  int write = 0;
  while (!reachedTheEnd) {
    SCOPED_TRACE(++write);
    FaultingVfs files;
    Day day(GetParam());
    day.start();
    files.failAt(FileCall::write, write, FaultSpan::fromThenOn, SQLITE_IOERR_WRITE);
    reachedTheEnd = day.live();
    files.heal();
    day.liveOn();
    day.expectNothingLostOrRepeated();
    day.end();
  }
  EXPECT_GT(write, 50);
}

TEST(FaultAtEveryStep, OfTheFileIsOutlived) {
  bool hasFailed = true;
  for (int write = 1; hasFailed; ++write) {
    SCOPED_TRACE(write);
    FaultingVfs files;
    Day day(false);
    day.start();
    day.allow();
    files.failAt(FileCall::write, write, FaultSpan::once, SQLITE_FULL);
    day.outlive();
    hasFailed = files.hasFailed();
    day.expectNothingLostOrRepeated();
    day.end();
  }
}

TEST_P(DeathAtEveryStep, OfShowingNeitherLosesNorRepeatsAReminder) {
  for (const auto death : {Death::beforeShown, Death::afterShown}) {
    bool reachedTheEnd = false;
    int show = 0;
    while (!reachedTheEnd) {
      SCOPED_TRACE(++show);
      Day day(GetParam());
      day.start();
      day.agent->presenter->dieAt(show, death);
      reachedTheEnd = day.live();
      day.liveOn();
      day.expectNothingLostOrRepeated();
    }
    EXPECT_GT(show, 4);
  }
}

INSTANTIATE_TEST_SUITE_P(ServicesOfBothKinds, DeathAtEveryStep, testing::Bool());

} // namespace
} // namespace orvan
