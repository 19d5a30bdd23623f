#pragma once

#include <QObject>
#include <QString>
#include <QtQmlIntegration>
#include <optional>
#include <type_traits>
#include <utility>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/executor.h"
#include "application/desktop/qt_executor.h"
#include "application/desktop/store_thread.h"

namespace orvan {

/// What the parts of the settings work with. All of it must outlive them.
struct SettingsTools {
  QtLoop& loop;
  StoreThread& store;
  const Clock& clock;
  /// Taken for now, however long the window is open.
  std::optional<Instant> asOf;
  /// For looks at files and at the bus that may take long and need no store.
  Executor looking;

  Instant now() const { return asOf.value_or(clock.now()); }
};

/// One part of the settings: how it stands in a few words, whether it is at work, and what that came to. Belongs to
/// Qt's thread. What derives from it names it with its namespace, by which QML's tools know it.
class SettingsPart : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The settings have it.")
  /// How it stands; empty as long as that is not known.
  Q_PROPERTY(QString glance READ glance NOTIFY glanceChanged FINAL)
  Q_PROPERTY(bool isBusy READ isBusy NOTIFY isBusyChanged FINAL)
  /// What was done last, and what follows from it; or why it was not done, as a sentence with what to do.
  Q_PROPERTY(QString answer READ answer NOTIFY answerChanged FINAL)
  Q_PROPERTY(bool isRefusal READ isRefusal NOTIFY answerChanged FINAL)

 public:
  explicit SettingsPart(const SettingsTools& tools, QObject* parent = nullptr);

  const QString& glance() const noexcept { return glance_; }
  bool isBusy() const noexcept { return tasksUnderWay_ > 0; }
  const QString& answer() const noexcept { return answer_; }
  bool isRefusal() const noexcept { return isRefusal_; }

  /// Looks how it stands.
  Q_INVOKABLE void look();
  Q_INVOKABLE void forgetAnswer();

 Q_SIGNALS:
  void glanceChanged();
  void isBusyChanged();
  void answerChanged();
  /// What the store tells of people is not what it was.
  void storeChanged();

 protected:
  /// Looks how it stands, and shows that.
  virtual Task<void> refresh() = 0;

  /// Runs what the user asked for; what it throws becomes the answer. The answer before is forgotten at once.
  void begin(Task<void> task);
  void setGlance(const QString& glance);
  void say(const QString& sentence);
  void refuse(const QString& sentence);

  /// The same, and the answer before stays.
  void run(Task<void> task);

  const SettingsTools& tools() const noexcept { return tools_; }
  /// What `work` gives or throws on a thread for what may take long. It must use nothing of this object's.
  template <typename Work>
  Task<std::invoke_result_t<Work&>> lookInto(Work work) const {
    co_return co_await runOn(tools_.looking, perform(std::move(work)));
  }

 private:
  template <typename Work>
  static Task<std::invoke_result_t<Work&>> perform(Work work) {
    co_return work();
  }
  Task<void> attend(Task<void> task);
  void setAnswer(const QString& sentence, bool isRefusal);
  void count(int tasks);

  SettingsTools tools_;
  QString glance_;
  QString answer_;
  bool isRefusal_ = false;
  int tasksUnderWay_ = 0;
};

} // namespace orvan
