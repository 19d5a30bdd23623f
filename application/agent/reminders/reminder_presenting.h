#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/error.h"
#include "OrvanPlatform/log.h"
#include "application/agent/reminders/due_times.h"
#include "application/agent/reminders/foreground.h"
#include "application/agent/reminders/presenter.h"
#include "application/agent/reminders/reminder_applications.h"
#include "application/agent/reminders/reminder_file.h"
#include "application/agent/reminders/reminder_popups.h"
#include "application/agent/reminders/wall_clock_alarm.h"

namespace orvan {

/// What presenting works on. The references must outlive the presenting.
struct PresentingParts {
  ReminderFile& file;
  DueTimes& due;
  ReminderApplications& applications;
  std::shared_ptr<const Clock> clock;
  std::shared_ptr<WallClockAlarm> alarm;
  std::shared_ptr<PopupPresenter> presenter;
  std::shared_ptr<Foreground> foreground;
  std::string ownApplication;
  LogChannel log;
  /// Told when the file failed outside anybody's call; what it could not do is tried again in a minute.
  std::function<void(const Error&)> fileFailed;
};

/// Presents what is due, one popup at a time: the file says first that a presentation is under way, then the popup is
/// shown, then the file says that it is delivered. So a program that ends in between leaves word of the one popup of
/// which nobody knows whether it was shown. It is shown again where that replaces the first, and else counts as
/// delivered.
///
/// What is due stays pending while its application may not present, while there is no service, and while whoever stands
/// in front has not said how to present it. More than three at once come in one popup.
///
/// Used from one executor; made by std::make_shared.
class ReminderPresenting : public std::enable_shared_from_this<ReminderPresenting> {
 public:
  explicit ReminderPresenting(PresentingParts parts) : parts_(std::move(parts)) {}

  /// Takes up what the end of the former program interrupted. What stands there takes its own place: services tell the
  /// user's word to the connection that showed the popup, and that is gone.
  void start();
  /// Presents what can be presented now and sets the alarm for what comes. Called whenever something changed.
  void work();
  /// A service came or went, or the clock was set: what was put off is tried again.
  void tryAgain();
  /// The alarm has come, and has to be set again.
  void alarmCame() { armedFor_.reset(); }

  /// From the popups on, too, that stand there.
  void setTitles(TitleDisclosure titles);
  /// Takes popups away, and has groups that stand for fewer shown anew.
  void settle(const LeftPopups& left);

 private:
  enum class Purpose {
    /// It came due.
    first,
    /// It was delivered, and its popup takes its own place.
    anew,
  };
  /// How the question to whoever stands in front has come out so far.
  enum class Asked { underWay, mayPresent };

  void guarded(const std::function<void()>& body);
  bool mustWait();
  void showStandingAnew();

  void presentNext();
  bool takeUpInterrupted();
  /// Whether it is on its way now.
  bool takeUp(std::int64_t presentation);
  bool showNextAnew();
  bool presentDue();
  bool presentDueOf(const ReminderApplication& application);
  /// Whether everybody who had to be asked has answered.
  bool foregroundAnswered(const ReminderApplication& application, const std::vector<std::int64_t>& numbers);
  void askForeground(const ReminderApplication& application, std::int64_t number);
  void foregroundSaid(std::int64_t number, std::optional<PresentationOptions> options);

  void begin(const ReminderApplication& application, std::vector<std::int64_t> numbers);
  void show(const Presentation& presentation, const std::optional<ShownPopup>& takesPlaceOf, Purpose purpose);
  void shown(std::int64_t presentation, std::size_t count, Purpose purpose, const PopupOutcome& outcome);
  void record(std::int64_t presentation, std::size_t count, Purpose purpose, const PopupOutcome& outcome);
  void deliver(std::int64_t presentation, std::size_t count, const std::optional<ShownPopup>& popup);
  /// Which are pending again.
  std::vector<std::int64_t> giveBack(std::int64_t presentation);
  void setAlarm();

  const PresentingParts parts_;
  TitleDisclosure titles_ = TitleDisclosure::said;

  bool isShowing_ = false;
  /// What became of a popup and could not be written.
  std::function<void()> unrecorded_;
  std::deque<std::int64_t> interrupted_;
  std::set<std::int64_t> toShowAnew_;
  std::map<std::int64_t, Asked> asked_;
  /// After a failure.
  std::optional<Instant> notBefore_;
  /// Those that the service refused.
  std::set<std::int64_t> putOff_;
  std::optional<Instant> putOffUntil_;
  /// What the alarm is set for; absent when it has to be set in any case.
  std::optional<std::optional<Instant>> armedFor_;
};

} // namespace orvan
