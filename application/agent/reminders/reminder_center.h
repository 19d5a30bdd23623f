#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/error.h"
#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/log.h"
#include "application/agent/reminders/authorization_questions.h"
#include "application/agent/reminders/due_times.h"
#include "application/agent/reminders/foreground.h"
#include "application/agent/reminders/presenter.h"
#include "application/agent/reminders/reminder_actions.h"
#include "application/agent/reminders/reminder_applications.h"
#include "application/agent/reminders/reminder_file.h"
#include "application/agent/reminders/reminder_presenting.h"
#include "application/agent/reminders/wall_clock_alarm.h"

namespace orvan {

/// Told of what the user does and what happens to the reminders. On the center's executor.
class ReminderCenterListener {
 public:
  virtual ~ReminderCenterListener() = default;

  virtual void authorizationChanged(const std::string& application, AuthorizationStatus status) = 0;
  /// The user clicked on a reminder of another program than the agent's own. `identifier` is empty when the popup stood
  /// for many at once.
  virtual void reminderActivated(const std::string& application, const std::string& identifier,
                                 std::string_view action) = 0;
  /// The file could not be read or written while nobody waited for an answer. It is tried again.
  virtual void reminderFileFailed(const Error& error) = 0;
};

/// What a reminder center works with.
struct ReminderCenterParts {
  Executor executor;
  std::shared_ptr<ReminderFile> file;
  std::shared_ptr<const Clock> clock;
  std::shared_ptr<WallClockAlarm> alarm;
  std::shared_ptr<PopupPresenter> presenter;
  std::shared_ptr<Foreground> foreground;
  std::shared_ptr<ReminderActions> actions;
  /// The identifier of the application whose reminders the actions are for.
  std::string ownApplication;
  LogChannel log;
};

/// Keeps the requests of all applications, and has each presented when the wall clock, read in the time zone of that
/// moment, reaches its date: once, if its application may, as soon as there is a service that shows it, and whatever
/// interrupts the program. It says when what was asked for is on disk, and loses nothing of that.
///
/// All operations run on one executor, whose thread they block while they write. Those that change something throw
/// StoreError when it could not be written, and then nothing has changed; `add` throws NotificationCenterError::refused
/// as well.
///
/// It must be owned by a shared pointer. After start() it listens to the presenter and to the alarm until stop(), which
/// comes before the destructor.
class ReminderCenter final : public std::enable_shared_from_this<ReminderCenter>, private PopupListener {
 public:
  /// How many requests of one application may be pending.
  static constexpr std::size_t mostPending = 20'000;
  /// How long "Later" is.
  static constexpr std::chrono::hours laterBy{1};

  explicit ReminderCenter(ReminderCenterParts parts);
  ~ReminderCenter() override;
  ReminderCenter(const ReminderCenter&) = delete;
  ReminderCenter& operator=(const ReminderCenter&) = delete;

  /// Null when nobody listens; else it must be there until that is said or stop() is called.
  void setListener(ReminderCenterListener* listener) { listener_ = listener; }
  void start();
  void stop();

  AuthorizationStatus status(std::string_view application) const;
  /// Asks the user unless they have decided. Returns the status of now; the answer is told to the listener.
  AuthorizationStatus requestAuthorization(const std::string& application, const std::string& displayName);
  /// The user decided. What is due is presented, when it may be, or kept.
  void setAuthorization(const std::string& application, const std::string& displayName, AuthorizationStatus status);

  /// Replaces a pending request with the identifier; what is delivered stays until the new one is due. Refused when the
  /// calendar has no such date, when as many as may be are pending, and when a text is no UTF-8.
  void add(const std::string& application, const std::string& displayName, const NotificationRequest& request);
  std::vector<NotificationRequest> pending(std::string_view application) const;
  std::vector<Notification> delivered(std::string_view application) const;
  void removePending(std::string_view application, const std::vector<std::string>& identifiers);
  /// Takes their popups away. A popup of many is shown anew with fewer.
  void removeDelivered(std::string_view application, const std::vector<std::string>& identifiers);

  TitleDisclosure titles() const { return parts_.file->titles(); }
  void setTitles(TitleDisclosure titles);
  bool refreshing() const { return parts_.file->refreshing(); }
  void setRefreshing(bool refreshing) { parts_.file->setRefreshing(refreshing); }

  /// The earliest of all that is pending, which may have passed.
  std::optional<Instant> nextDue() const { return due_.earliest(); }
  /// Shows an example, and tells whether that was possible.
  void presentTest(std::move_only_function<void(std::optional<PresenterError>)> completion);

 private:
  void popupActionInvoked(const ShownPopup& popup, std::string_view actionKey,
                          const std::string& activationToken) override;
  void popupClosed(const ShownPopup& popup) override;
  void popupServiceChanged() override;

  void woken(WakeReason reason);
  /// What happens without a caller must not throw into the event loop.
  void guarded(const std::function<void()>& body);
  void workSoon();
  void fileFailed(const Error& error);
  const std::string& ownDisplayName() const;
  void act(const Presentation& presentation, std::string_view actionKey, const std::string& activationToken);
  void open(const Presentation& presentation, const ReminderApplication& application,
            const std::string& activationToken);
  void markDone(const NotificationRequest& reminder);
  void markedDone(const std::string& identifier, ReminderActions::DoneOutcome outcome);
  void postpone(const Presentation& presentation);

  const ReminderCenterParts parts_;
  ReminderApplications applications_;
  DueTimes due_;
  std::shared_ptr<AuthorizationQuestions> questions_;
  std::shared_ptr<ReminderPresenting> presenting_;
  ReminderCenterListener* listener_ = nullptr;
};

} // namespace orvan
