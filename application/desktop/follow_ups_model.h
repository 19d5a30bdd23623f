#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQmlIntegration>
#include <optional>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "application/corrections/follow_up_actions.h"
#include "application/desktop/qt_executor.h"
#include "application/desktop/reminder_choices.h"
#include "application/desktop/store_thread.h"
#include "application/desktop/window_model.h"
#include "application/desktop/window_reminders.h"

namespace orvan {

/// What the user wants to come back to: notes it down for the person whom the window shows, has its reminder set, and
/// ends it. Belongs to Qt's thread; everything given must outlive it.
class FollowUpsModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The program makes it.")

 public:
  FollowUpsModel(QtLoop& loop, StoreThread& store, WindowReminders& reminders, WindowModel& window, const Clock& clock,
                 std::optional<Instant> asOf, QObject* parent = nullptr);

  /// Moments to offer, as maps with "label", and "detail": the moment in words. They are chosen by their place.
  Q_INVOKABLE QVariantList choices();
  /// A day in the form 2026-03-04 at a time as the user writes it, in words; empty when that is no time to come.
  Q_INVOKABLE QString momentInWords(const QString& day, const QString& time) const;

  // Each is about the shown person. Without words about it the user is reminded to get back to them.
  Q_INVOKABLE void remindAtChoice(int choice, const QString& about);
  Q_INVOKABLE void remindAt(const QString& day, const QString& time, const QString& about);

  // Each of one of the shown person's, by its id.
  Q_INVOKABLE void complete(const QString& followUpID);
  Q_INVOKABLE void cancel(const QString& followUpID);

  /// Shows the person whom a follow-up is about.
  void showPersonOf(const std::string& followUpID);
  /// Tells of a follow-up that comes due now when the window shows its person; whether it did.
  Task<bool> tellsOf(std::string followUpID);

 Q_SIGNALS:
  /// It is in the store.
  void noted();

 private:
  Instant now() const { return asOf_.value_or(clock_.now()); }
  void remind(Instant dueAt, const QString& about);
  void add(const NewFollowUp& followUp, const QString& displayName);
  void added(bool isNoted);
  Task<std::optional<ListedFollowUp>> find(std::string followUpID);
  Task<void> showWhenFound(std::string followUpID);

  QtLoop& loop_;
  StoreThread& store_;
  WindowReminders& reminders_;
  WindowModel& window_;
  const Clock& clock_;
  std::optional<Instant> asOf_;
  std::vector<ReminderChoice> offered_;
};

} // namespace orvan
