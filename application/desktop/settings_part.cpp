#include "application/desktop/settings_part.h"

#include <utility>

#include "application/desktop/refusal_in_words.h"

namespace orvan {

SettingsPart::SettingsPart(const SettingsTools& tools, QObject* parent) : QObject(parent), tools_(tools) {}

void SettingsPart::look() {
  run(refresh());
}

void SettingsPart::forgetAnswer() {
  setAnswer({}, false);
}

void SettingsPart::begin(Task<void> task) {
  forgetAnswer();
  run(std::move(task));
}

void SettingsPart::run(Task<void> task) {
  count(1);
  startOn(tools_.loop, attend(std::move(task)));
}

Task<void> SettingsPart::attend(Task<void> task) {
  try {
    co_await std::move(task);
  } catch (...) {
    refuse(refusalOfCurrentException());
  }
  count(-1);
}

void SettingsPart::count(int tasks) {
  const bool wasBusy = isBusy();
  tasksUnderWay_ += tasks;
  if (isBusy() != wasBusy) {
    Q_EMIT isBusyChanged();
  }
}

void SettingsPart::setGlance(const QString& glance) {
  if (std::exchange(glance_, glance) != glance) {
    Q_EMIT glanceChanged();
  }
}

void SettingsPart::say(const QString& sentence) {
  setAnswer(sentence, false);
}

void SettingsPart::refuse(const QString& sentence) {
  setAnswer(sentence, true);
}

void SettingsPart::setAnswer(const QString& sentence, bool isRefusal) {
  if (answer_ != sentence || isRefusal_ != isRefusal) {
    answer_ = sentence;
    isRefusal_ = isRefusal;
    Q_EMIT answerChanged();
  }
}

} // namespace orvan
