#include "application/desktop/qt_executor.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QThread>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/detached.hpp>
#include <memory>

#include "OrvanPlatform/work_executor.h"

namespace orvan {
namespace {

class QtApplication : public testing::Environment {
 public:
  void SetUp() override {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    application_ = std::make_unique<QGuiApplication>(argumentCount_, &name_);
  }
  void TearDown() override { application_.reset(); }

 private:
  int argumentCount_ = 1;
  char* name_ = const_cast<char*>("desktop_test");
  std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const auto* const environment = testing::AddGlobalTestEnvironment(new QtApplication);

Task<QThread*> threadOfWork() {
  co_return QThread::currentThread();
}

Task<void> workElsewhere(Executor worker, std::shared_ptr<int> held, bool& isDone) {
  const auto* const here = QThread::currentThread();
  EXPECT_NE(co_await runOn(worker, threadOfWork()), here);
  EXPECT_EQ(QThread::currentThread(), here);
  isDone = held != nullptr;
}

TEST(QtLoop, ResumesCoroutinesOnQtsThreadAndUnwindsThoseThatWaitAtTheEnd) {
  const auto held = std::make_shared<int>();
  bool isDone = false;
  bool hasRun = false;
  {
    QtLoop loop;
    const WorkExecutor worker;
    boost::asio::co_spawn(loop.executor(), workElsewhere(worker.get(), held, isDone), boost::asio::detached);
    while (!isDone) { // NOLINT(bugprone-infinite-loop): the coroutine ends it.
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    boost::asio::co_spawn(loop.executor(), workElsewhere(worker.get(), held, hasRun), boost::asio::detached);
  }
  EXPECT_FALSE(hasRun);
  EXPECT_EQ(held.use_count(), 1) << "the coroutine that waited was not unwound";
}

} // namespace
} // namespace orvan
