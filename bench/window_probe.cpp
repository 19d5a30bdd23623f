// Looks on within the window's own program, whose main() this is linked with: when the first frame and the list are
// drawn, what frames cost while somebody scrolls, opens older reasons and goes from person to person, and how much
// memory that took. Uses the window as QML does, prints names and values, and ends the program.
//
// Times are the processor's: what else the machine does counts in them only in so far as it takes caches away. A frame
// costs what Qt's thread did since the frame before it.

#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <vector>

#include "application/desktop/window_model.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

double millisecondsOf(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// Before main().
const double startedAt = millisecondsOf(CLOCK_MONOTONIC);
const double spentAtStart = millisecondsOf(CLOCK_PROCESS_CPUTIME_ID);

double residentMegabytes() {
  long pages = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

void tell(const char* name, double value) {
  std::printf("%s %.2f\n", name, value);
}

/// The first item beneath `item` that has a property.
QQuickItem* itemWith(QQuickItem* item, const char* property) {
  if (item->metaObject()->indexOfProperty(property) >= 0) {
    return item;
  }
  for (auto* child : item->childItems()) {
    if (auto* found = itemWith(child, property)) {
      return found;
    }
  }
  return nullptr;
}

/// What is done to the window one step after another, and what its frames cost.
class Act {
 public:
  enum class Pace { everyFrame, whenCalm };

  Act(const char* name, Pace pace, int steps, std::function<void(int)> step)
      : name_(name), pace_(pace), steps_(steps), step_(std::move(step)) {}

  Pace pace() const noexcept { return pace_; }
  bool isOver() const noexcept { return stepsTaken_ == steps_; }
  void takeStep() { step_(stepsTaken_++); }
  void addFrame(double milliseconds) { frames_.push_back(milliseconds); }

  void tellCosts() {
    std::ranges::sort(frames_);
    const auto at = [this](double part) {
      return frames_.empty() ? 0 : frames_[static_cast<std::size_t>(part * static_cast<double>(frames_.size() - 1))];
    };
    std::printf("%s.frames %zu\n%s.median %.2f\n%s.p99 %.2f\n", name_, frames_.size(), name_, at(0.5), name_, at(0.99));
  }

 private:
  const char* name_;
  Pace pace_;
  int steps_;
  std::function<void(int)> step_;
  int stepsTaken_ = 0;
  std::vector<double> frames_;
};

class Watcher : public QObject {
 public:
  explicit Watcher(QObject* parent) : QObject(parent) {
    calm_.setSingleShot(true);
    calm_.setInterval(80);
    connect(&calm_, &QTimer::timeout, this, [this] { goOn(); });
  }

  bool eventFilter(QObject* object, QEvent* event) override {
    auto* window = event->type() == QEvent::Show ? qobject_cast<QQuickWindow*>(object) : nullptr;
    if (window != nullptr && window_ == nullptr) {
      window_ = window;
      connect(window, &QQuickWindow::frameSwapped, this, [this] { frameDrawn(); });
    }
    return false;
  }

 private:
  WindowModel& model() const { return *window_->property("model").value<WindowModel*>(); }

  void frameDrawn() {
    const double spent = millisecondsOf(CLOCK_THREAD_CPUTIME_ID);
    const double cost = spent - spentByLastFrame_;
    spentByLastFrame_ = spent;
    if (framesDrawn_++ == 0) {
      tell("first.processor", millisecondsOf(CLOCK_PROCESS_CPUTIME_ID) - spentAtStart);
      tell("first.clock", millisecondsOf(CLOCK_MONOTONIC) - startedAt);
    }
    if (!isListDrawn_) {
      lookForList();
    } else if (at_ < acts_.size()) {
      acts_[at_].addFrame(cost);
      if (acts_[at_].pace() == Act::Pace::everyFrame && !acts_[at_].isOver()) {
        QTimer::singleShot(0, this, [this] { takeStep(); });
      }
    }
    calm_.start();
  }

  void lookForList() {
    if (model().list()->count() == 0) {
      return;
    }
    isListDrawn_ = true;
    tell("list.processor", millisecondsOf(CLOCK_PROCESS_CPUTIME_ID) - spentAtStart);
    tell("list.clock", millisecondsOf(CLOCK_MONOTONIC) - startedAt);
    writeActs();
  }

  void writeActs() {
    auto* list = itemWith(window_->contentItem(), "currentSection");
    auto* reason = itemWith(window_->contentItem(), "isEvidenceExpanded");
    acts_.emplace_back("older", Act::Pace::whenCalm, 1, [this](int) { model().setIsOlderOpen(true); });
    acts_.emplace_back("scroll", Act::Pace::everyFrame, 400, [list](int step) {
      constexpr int turn = 200;
      list->setProperty("contentY", list->property("contentY").toReal() + (step < turn ? 40 : -40));
    });
    acts_.emplace_back("expand", Act::Pace::whenCalm, 60,
                       [reason](int step) { reason->setProperty("isEvidenceExpanded", step % 2 == 1); });
    acts_.emplace_back("person", Act::Pace::whenCalm, 60, [this](int step) {
      model().choose(model().list()->personAt((step + 1) % model().list()->count()));
    });
  }

  void takeStep() {
    spentByLastFrame_ = millisecondsOf(CLOCK_THREAD_CPUTIME_ID);
    acts_[at_].takeStep();
    calm_.start();
  }

  /// Nothing has been drawn for a while.
  void goOn() {
    if (!isListDrawn_) {
      return;
    }
    if (model().person()->personKey() != model().chosen()) {
      calm_.start(); // The store is being asked.
      return;
    }
    if (at_ < acts_.size() && acts_[at_].isOver()) {
      ++at_;
    }
    if (at_ < acts_.size()) {
      takeStep();
      return;
    }
    for (auto& act : acts_) {
      act.tellCosts();
    }
    tell("rows", model().list()->count());
    tell("resident", residentMegabytes());
    std::fflush(stdout);
    QGuiApplication::exit(0);
  }

  QQuickWindow* window_ = nullptr;
  QTimer calm_;
  std::size_t framesDrawn_ = 0;
  double spentByLastFrame_ = 0;
  bool isListDrawn_ = false;
  std::vector<Act> acts_;
  std::size_t at_ = 0;
};

void watch() {
  deriveKeysQuickly();
  auto* application = QCoreApplication::instance();
  application->installEventFilter(new Watcher(application));
}

Q_COREAPP_STARTUP_FUNCTION(watch)

} // namespace
} // namespace orvan
