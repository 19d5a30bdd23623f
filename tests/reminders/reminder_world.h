#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <cstdlib>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanTestSupport/capturing_log.h"
#include "OrvanTestSupport/manual_clock.h"
#include "application/agent/reminders/reminder_center.h"
#include "tests/support/test_store.h"

namespace orvan {

/// What the user sees. It outlives the programs that show something.
struct Desktop {
  bool isThere = true;
  bool replacesByTag = true;
  std::string service = ":1.7";
  std::map<std::uint32_t, Popup> standing;
  /// Of popups that appeared without taking another's place.
  std::vector<std::string> appeared;

  ShownPopup show(const Popup& popup) {
    auto number = standing.contains(popup.replaces) ? popup.replaces : 0;
    for (const auto& [each, other] : standing) {
      number = replacesByTag && other.tag == popup.tag ? each : number;
    }
    if (number == 0) {
      number = ++last;
      appeared.push_back(popup.summary);
    }
    standing.insert_or_assign(number, popup);
    return {.service = service, .number = number};
  }

  /// Another service takes over; what the former one showed is gone.
  void restart(std::string name) {
    service = std::move(name);
    standing.clear();
  }

  std::optional<ShownPopup> find(const std::string& summary) const {
    for (const auto& [number, popup] : standing) {
      if (popup.summary == summary) {
        return ShownPopup{.service = service, .number = number};
      }
    }
    return std::nullopt;
  }

  std::uint32_t last = 0;
};

/// Shows popups on the desktop, and fails or dies as a test says.
class DesktopPresenter final : public PopupPresenter {
 public:
  enum class Death { beforeShown, afterShown };

  DesktopPresenter(Executor executor, Desktop& desktop) : executor_(std::move(executor)), desktop_(desktop) {}

  void setListener(PopupListener* listener) override { listener_ = listener; }
  bool isThere() const override { return desktop_.isThere; }
  std::string service() const override { return desktop_.isThere ? desktop_.service : std::string{}; }
  bool replacesByTag() const override { return desktop_.replacesByTag; }

  void show(Popup popup, std::move_only_function<void(PopupOutcome)> completion) override {
    const bool dies = ++shows_ == diesAt_;
    isDead = isDead || dies;
    if (isDead && (!dies || death_ == Death::beforeShown)) {
      return;
    }
    auto outcome = outcomeOf(popup);
    if (!isDead) {
      boost::asio::post(executor_, [completion = std::move(completion), outcome = std::move(outcome)]() mutable {
        completion(std::move(outcome));
      });
    }
  }

  void withdraw(const ShownPopup& popup) override {
    if (!isDead && popup.service == desktop_.service) {
      desktop_.standing.erase(popup.number);
    }
  }

  void dieAt(int show, Death death) {
    diesAt_ = show;
    death_ = death;
  }

  PopupListener* listener_ = nullptr;
  std::deque<PresenterError> failures;
  bool isDead = false;

 private:
  PopupOutcome outcomeOf(const Popup& popup) {
    if (failures.empty()) {
      return desktop_.show(popup);
    }
    const auto failure = failures.front();
    failures.pop_front();
    return std::unexpected{failure};
  }

  Executor executor_;
  Desktop& desktop_;
  int shows_ = 0;
  int diesAt_ = 0;
  Death death_ = Death::beforeShown;
};

class ManualAlarm final : public WallClockAlarm {
 public:
  void setWake(std::function<void(WakeReason)> wake) override { wake_ = std::move(wake); }
  void setFor(std::optional<Instant> instant) override { instant_ = instant; }

  void look(Instant now) {
    if (instant_ && *instant_ <= now) {
      instant_.reset();
      wake(WakeReason::instantCame);
    }
  }
  void wake(WakeReason reason) const { wake_(reason); }
  const std::optional<Instant>& instant() const { return instant_; }

 private:
  std::function<void(WakeReason)> wake_;
  std::optional<Instant> instant_;
};

/// Somebody in front who answers what the test says, when it says so.
class ManualForeground final : public Foreground {
 public:
  using Answer = std::move_only_function<void(std::optional<PresentationOptions>)>;

  bool someoneStandsInFront(std::string_view /*application*/) const override { return isInFront; }
  void willPresent(const std::string& /*application*/, const Notification& notification, Answer answer) override {
    questions.emplace(notification.request().identifier(), std::move(answer));
  }

  bool isInFront = false;
  std::map<std::string, Answer> questions;
};

class RecordedActions final : public ReminderActions {
 public:
  void markDone(const NotificationRequest& reminder, std::move_only_function<void(DoneOutcome)> completion) override {
    calls.push_back("done " + reminder.identifier());
    completion(outcome);
  }
  void open(const NotificationRequest& reminder, const std::string& activationToken) override {
    calls.push_back("open " + reminder.identifier() + " " + activationToken);
  }
  void openAll(const std::string& activationToken) override { calls.push_back("open all " + activationToken); }

  DoneOutcome outcome = DoneOutcome::saved;
  std::vector<std::string> calls;
};

struct Agent {
  std::shared_ptr<ReminderFile> file;
  std::shared_ptr<ManualAlarm> alarm = std::make_shared<ManualAlarm>();
  std::shared_ptr<DesktopPresenter> presenter;
  std::shared_ptr<ManualForeground> foreground = std::make_shared<ManualForeground>();
  std::shared_ptr<RecordedActions> actions = std::make_shared<RecordedActions>();
  std::shared_ptr<ReminderCenter> center;
};

/// An agent's reminders on a desktop, driven by hand. The agent can be ended at any moment and started again from its
/// file.
class ReminderWorld : private ReminderCenterListener {
 public:
  static constexpr const char* own = "org.orvan.Orvan.test";
  static constexpr const char* other = "org.example.Other";

  ReminderWorld() {
    deriveKeysQuickly();
    setZone("UTC");
  }
  ~ReminderWorld() override { end(); }
  ReminderWorld(const ReminderWorld&) = delete;
  ReminderWorld& operator=(const ReminderWorld&) = delete;

  static void setZone(const char* zone) { setenv("TZ", zone, 1); } // NOLINT(concurrency-mt-unsafe): one thread.

  ReminderPaths paths() const { return ReminderPaths::besideStore(folder.path() / "store.db"); }

  void start() {
    agent.emplace();
    agent->file = std::make_shared<ReminderFile>(paths(), KeyPlace::file, clock->now());
    agent->presenter = std::make_shared<DesktopPresenter>(loop.get_executor(), desktop);
    agent->center = std::make_shared<ReminderCenter>(ReminderCenterParts{.executor = loop.get_executor(),
                                                                         .file = agent->file,
                                                                         .clock = clock,
                                                                         .alarm = agent->alarm,
                                                                         .presenter = agent->presenter,
                                                                         .foreground = agent->foreground,
                                                                         .actions = agent->actions,
                                                                         .ownApplication = own,
                                                                         .log = LogChannel{log, "reminders"}});
    agent->center->setListener(this);
    agent->center->start();
    settle();
  }
  /// As a killed program ends: nothing is said to anybody.
  void end() { agent.reset(); }

  void settle() {
    loop.restart();
    loop.poll();
  }
  void advance(std::chrono::nanoseconds duration) {
    clock->advance(duration);
    agent->alarm->look(clock->now());
    settle();
  }
  void setClock(Instant now) {
    clock->setWallClock(now);
    clockChanged();
  }
  void clockChanged() {
    agent->alarm->wake(WakeReason::clockChanged);
    settle();
  }
  void serviceChanged() {
    agent->presenter->listener_->popupServiceChanged();
    settle();
  }
  void press(const std::string& summary, std::string_view action) {
    agent->presenter->listener_->popupActionInvoked(desktop.find(summary).value(), action, "token");
    settle();
  }
  void allow(const char* application = own) {
    agent->center->setAuthorization(application, "Orvan", AuthorizationStatus::authorized);
    settle();
  }

  /// Named by its title, in local time.
  void add(const std::string& title, const CalendarComponents& date, const char* application = own) {
    agent->center->add(application, "Orvan", NotificationRequest{title, {title, {}}, CalendarTrigger{date}});
    settle();
  }
  void addDueIn(const std::string& title, std::chrono::seconds delay, const char* application = own) {
    add(title, userCalendarComponents(clock->now() + delay), application);
  }

  std::vector<std::string> pending(const char* application = own) const {
    std::vector<std::string> titles;
    for (const auto& request : agent->center->pending(application)) {
      titles.push_back(request.content().title());
    }
    return titles;
  }
  std::vector<std::string> delivered(const char* application = own) const {
    std::vector<std::string> titles;
    for (const auto& notification : agent->center->delivered(application)) {
      titles.push_back(notification.request().content().title());
    }
    return titles;
  }

  /// In memory where that can be: programs end here, machines do not.
  ScratchFolder folder{std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path()};
  boost::asio::io_context loop;
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(*parseInternetDateTime("2026-03-04T09:15:00Z"));
  std::shared_ptr<CapturingLog> log = std::make_shared<CapturingLog>();
  Desktop desktop;
  std::optional<Agent> agent;
  std::vector<std::string> told;
  bool fileFailed = false;

 private:
  void authorizationChanged(const std::string& application, AuthorizationStatus status) override {
    told.push_back(application + (allowsReminders(status) ? " allowed" : " denied"));
  }
  void reminderActivated(const std::string& application, const std::string& identifier,
                         std::string_view action) override {
    told.push_back(application + " " + identifier + " " + std::string{action});
  }
  void reminderFileFailed(const Error& /*error*/) override { fileFailed = true; }
};

} // namespace orvan
