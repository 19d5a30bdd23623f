#include "application/desktop/qt_executor.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <boost/asio/co_spawn.hpp>
#include <exception>

namespace orvan {
namespace {

QEvent::Type workEventType() {
  static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
  return type;
}

/// Takes what can only be moved, which a queued call of Qt's does not.
class WorkEvent final : public QEvent {
 public:
  explicit WorkEvent(std::move_only_function<void()> work) : QEvent(workEventType()), work_(std::move(work)) {}

  void run() { work_(); }

 private:
  std::move_only_function<void()> work_;
};

} // namespace

class QtLoop::Receiver final : public QObject {
 public:
  /// Nothing may be thrown through Qt's event loop, so what throws here ends the program.
  bool event(QEvent* event) noexcept override {
    if (auto* work = dynamic_cast<WorkEvent*>(event)) {
      work->run();
      return true;
    }
    return QObject::event(event);
  }
};

QtLoop::QtLoop() : receiver_(std::make_unique<Receiver>()) {}

QtLoop::~QtLoop() {
  QCoreApplication::removePostedEvents(receiver_.get());
  shutdown();
  destroy();
}

Executor QtLoop::executor() noexcept {
  return QtExecutor(*this);
}

void QtLoop::post(std::move_only_function<void()> work) {
  QCoreApplication::postEvent(receiver_.get(), std::make_unique<WorkEvent>(std::move(work)).release());
}

void startOn(QtLoop& loop, Task<void> task) {
  boost::asio::co_spawn(loop.executor(), std::move(task), [](const std::exception_ptr& fault) {
    if (fault != nullptr) {
      std::terminate();
    }
  });
}

} // namespace orvan
