#include "application/agent/program/agent.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/signal_set.hpp>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/bus/bus_connection.h"
#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/error.h"
#include "OrvanPlatform/error_case.h"
#include "OrvanPlatform/work_executor.h"
#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "application/agent/desktop/desktop_notifications.h"
#include "application/agent/follow_ups/reminder_reconciliation.h"
#include "application/agent/follow_ups/store_reminder_actions.h"
#include "application/agent/refreshing/source_refreshing.h"
#include "application/agent/reminders/application_notification_center.h"
#include "application/agent/reminders/reminder_center.h"
#include "application/agent/reminders/system_wall_clock_alarm.h"
#include "application/agent/service/agent_service.h"
#include "application/agent/service/bus_foreground.h"
#include "application/follow_ups/notification_application.h"
#include "application/store/application_store_error.h"

namespace orvan {
namespace {

constexpr int done = 0;
constexpr int failed = 1;

/// How soon a file that could not be opened is tried again, whoever asks.
constexpr std::chrono::seconds shortestPause{5};
constexpr std::chrono::minutes usualPause{2};
/// How long a running pass is given to notice that the agent ends.
constexpr std::chrono::seconds patienceAtTheEnd{3};

Instant now() {
  return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

/// The reminders' key is kept where the store's is: who trusts the keyring with one wants it for the other.
KeyPlace placeOfNewKey(const SessionSettings& settings) {
  try {
    return StoreKey(settings.keyFile).place().value_or(KeyPlace::file);
  } catch (const Error&) {
    return KeyPlace::file;
  }
}

bool isLocked(const std::error_code& code) {
  return belongsTo<CredentialVaultError>(code) || code == ApplicationStoreError::keyNotInKeyring;
}

std::string wordOf(ReminderFileOrigin origin) {
  switch (origin) {
    case ReminderFileOrigin::opened:
      return "opened";
    case ReminderFileOrigin::made:
      return "made";
    case ReminderFileOrigin::madeAfterDamage:
      return "made after damage";
  }
  return "opened";
}

/// The parts of the agent, and what they do to one another. Lives on the thread of its loop.
class Agent {
 public:
  Agent(boost::asio::io_context& loop, const AgentArguments& arguments, std::shared_ptr<LogSink> log)
      : loop_(loop),
        executor_(loop.get_executor()),
        arguments_(arguments),
        sink_(std::move(log)),
        log_(sink_, "agent"),
        bus_(BusConnection::toUserBus(executor_)),
        foreground_(std::make_shared<BusForeground>(*bus_, executor_)),
        desktop_(std::make_shared<DesktopNotifications>(*bus_, executor_, clock_)),
        refreshing_(std::make_unique<SourceRefreshing>(
            executor_, RefreshingSettings{.store = arguments.settings.store, .keyFile = arguments.settings.keyFile},
            RefreshingParts::ofSystem(executor_, sink_))),
        service_(*bus_, *foreground_, *desktop_, status()),
        signals_(loop, SIGINT, SIGTERM),
        openingThread_(std::make_unique<WorkExecutor>()) {}

  void start() {
    bus_->onLost([this] { end(done, "the bus is gone"); });
    signals_.async_wait([this](boost::system::error_code cancelled, int /*number*/) {
      if (!cancelled) {
        end(done, "asked to end");
      }
    });
    desktop_->start();
    bus_->requestName(agent_protocol::serviceName, [this](auto answer) { nameAnswered(std::move(answer)); });
  }

  int exitStatus() const noexcept { return exitStatus_; }
  const std::string& sentence() const noexcept { return sentence_; }

  /// Whether a thread still works on the store: its end is to be waited for on the loop, or not at all.
  bool isAtWork() const noexcept { return reconciliation_ != nullptr && reconciliation_->isRunning(); }

 private:
  AgentStatus status() {
    return {.store = arguments_.settings.store.native(),
            .log = log_,
            .lastRefresh = [this] { return refreshing_->lastRefresh(); },
            .refreshingWasSet = [this](bool isOn) { setRefreshing(isOn); },
            .authorizationChanged = [this](const std::string& application,
                                           AuthorizationStatus status) { authorizationChanged(application, status); },
            .runningSince = SystemClock().now()};
  }

  void nameAnswered(std::expected<NameRequest, BusFailure> answer) {
    if (answer && *answer == NameRequest::owned) {
      openFile();
    } else if (answer) {
      fail(done, "Another orvan-agent serves this session already; there is nothing to do.");
    } else {
      fail(failed, "The session's bus does not let orvan-agent serve; look for a policy that forbids org.orvan.Agent.");
    }
  }

  /// Reading a key may wait for the keyring, and deriving it takes a moment: not on the loop's thread.
  void openFile() {
    if (std::exchange(isOpening_, true) || isEnding_) {
      return;
    }
    lastTry_ = clock_->monotonicNow();
    boost::asio::post(openingThread_->get(), [this, settings = arguments_.settings] {
      std::shared_ptr<ReminderFile> file;
      std::exception_ptr failure;
      try {
        file =
            std::make_shared<ReminderFile>(ReminderPaths::besideStore(settings.store), placeOfNewKey(settings), now());
      } catch (...) {
        failure = std::current_exception();
      }
      // What was thrown goes along whole: where it is read, it is also let go of.
      boost::asio::post(executor_, [this, file = std::move(file), failure = std::move(failure)]() mutable {
        isOpening_ = false;
        opened(std::move(file), failure);
      });
    });
  }

  void opened(std::shared_ptr<ReminderFile> file, const std::exception_ptr& failure) {
    if (isEnding_) {
      return;
    }
    try {
      if (failure) {
        std::rethrow_exception(failure);
      }
      begin(std::move(file));
    } catch (const Error& error) {
      notOpened(error);
    }
  }

  void notOpened(const Error& error) {
    if (error.code() == ReminderFileError::newer || error.code() == ReminderFileError::inUse) {
      fail(failed, error.code().message());
      return;
    }
    log_.write("reminders.not_opened",
               {{"category", error.code().category().name()}, {"code", std::to_string(error.code().value())}});
    service_.refuse(isLocked(error.code()) ? ReminderFileTrouble::locked : ReminderFileTrouble::unusable,
                    [this] { openFileAgain(); });
    tryAgainLater();
  }

  void tryAgainLater() {
    if (retry_ != nullptr) {
      retry_->cancel();
    }
    retry_ =
        clock_->startTimer(monotonicInstantAfter(clock_->monotonicNow(), usualPause), executor_, [this](SleepEnd end) {
          if (end == SleepEnd::elapsed) {
            openFileAgain();
          }
        });
  }

  void openFileAgain() {
    if (center_ == nullptr && clock_->monotonicNow() >= monotonicInstantAfter(lastTry_, shortestPause)) {
      openFile();
    }
  }

  void begin(std::shared_ptr<ReminderFile> file) {
    const auto origin = file->origin();
    const auto own = notificationApplicationOf(arguments_.settings.store);
    actions_ = std::make_shared<StoreReminderActions>(executor_, arguments_.settings, log_);
    startCenter(std::move(file), own);
    NotificationCenter::setCurrent(
        std::make_shared<ApplicationNotificationCenter>(executor_, center_, own, std::string{notificationDisplayName}));
    reconciliation_ = std::make_unique<ReminderReconciliation>(
        executor_, arguments_.settings, std::make_shared<UserNotificationsFollowUpScheduling>(sink_), clock_, log_);
    service_.serve(center_);
    log_.write("agent.ready", {{"reminders", wordOf(origin)}});
    reconciliation_->reconcile();
    startRefreshing();
  }

  void startCenter(std::shared_ptr<ReminderFile> file, const std::string& ownApplication) {
    const auto center =
        std::make_shared<ReminderCenter>(ReminderCenterParts{.executor = executor_,
                                                             .file = std::move(file),
                                                             .clock = clock_,
                                                             .alarm = std::make_shared<SystemWallClockAlarm>(executor_),
                                                             .presenter = desktop_,
                                                             .foreground = foreground_,
                                                             .actions = actions_,
                                                             .ownApplication = ownApplication,
                                                             .log = log_});
    try {
      center->start();
    } catch (...) {
      center->stop();
      throw;
    }
    center_ = center;
  }

  void startRefreshing() {
    if (arguments_.refreshing == AgentRefreshing::never) {
      return;
    }
    refreshing_->onBrought([this] { reconciliation_->reconcile(); });
    refreshing_->setEnabled(center_->refreshing());
    refreshing_->start();
  }

  void setRefreshing(bool isOn) {
    if (arguments_.refreshing == AgentRefreshing::asSet) {
      refreshing_->setEnabled(isOn);
    }
  }

  void authorizationChanged(const std::string& application, AuthorizationStatus status) {
    const bool isAllowed = status == AuthorizationStatus::authorized || status == AuthorizationStatus::provisional;
    if (isAllowed && application == notificationApplicationOf(arguments_.settings.store)) {
      reconciliation_->reconcile();
    }
  }

  void fail(int exitStatus, std::string sentence) {
    sentence_ = std::move(sentence);
    end(exitStatus, "it cannot serve");
  }

  /// Nothing is asked of the reminders any more when this is done, and their file is closed.
  void end(int exitStatus, const char* reason) {
    if (std::exchange(isEnding_, true)) {
      return;
    }
    if (sentence_.empty()) {
      log_.write("agent.ends", {{"reason", reason}});
    }
    exitStatus_ = exitStatus;
    refreshing_.reset();
    if (reconciliation_ != nullptr) {
      reconciliation_->stop();
    }
    service_.stop();
    NotificationCenter::setCurrent(nullptr);
    if (const auto center = std::exchange(center_, nullptr)) {
      center->stop();
    }
    loop_.stop();
  }

  boost::asio::io_context& loop_;
  const Executor executor_;
  const AgentArguments arguments_;
  const std::shared_ptr<LogSink> sink_;
  const LogChannel log_;
  const std::shared_ptr<const Clock> clock_ = std::make_shared<SystemClock>();

  const std::unique_ptr<BusConnection> bus_;
  const std::shared_ptr<BusForeground> foreground_;
  const std::shared_ptr<DesktopNotifications> desktop_;
  std::unique_ptr<SourceRefreshing> refreshing_;
  AgentService service_;
  boost::asio::signal_set signals_;

  std::shared_ptr<StoreReminderActions> actions_;
  std::shared_ptr<ReminderCenter> center_;
  std::unique_ptr<ReminderReconciliation> reconciliation_;
  MonotonicInstant lastTry_;
  std::shared_ptr<Timer> retry_;
  bool isOpening_ = false;
  bool isEnding_ = false;
  int exitStatus_ = done;
  std::string sentence_;
  std::unique_ptr<WorkExecutor> openingThread_;
};

/// What runs on other threads is given the loop for a moment, so that it gets its answers; a store that is in the midst
/// of a transaction when the program goes is whole all the same.
void waitForWork(boost::asio::io_context& loop, const Agent& agent) {
  const auto end = std::chrono::steady_clock::now() + patienceAtTheEnd;
  loop.restart();
  while (agent.isAtWork() && std::chrono::steady_clock::now() < end) {
    loop.run_one_for(std::chrono::milliseconds{100});
  }
  if (agent.isAtWork()) {
    std::_Exit(agent.exitStatus());
  }
}

/// Whether the bus has started an agent, or one runs already.
bool isStartedByBus() {
  constexpr std::chrono::seconds longestStart{30};
  boost::asio::io_context loop{1};
  const auto bus = BusConnection::toUserBus(loop.get_executor());
  bool isStarted = false;
  bus->call(
      {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"}, "StartServiceByName",
      [](BusWriter& writer) { writer.text(agent_protocol::serviceName).uint32(0); }, longestStart,
      [&](const BusAnswer& answer) {
        isStarted = answer.has_value();
        loop.stop();
      });
  loop.run();
  return isStarted;
}

int report(int exitStatus, const std::string& sentence) {
  if (!sentence.empty()) {
    std::cerr << "orvan-agent: " << sentence << '\n';
  }
  return exitStatus;
}

/// Not an exit status like others: whatever watches over the agent is to start it again.
[[noreturn]] void crash() {
  report(failed, "Something unexpected went wrong; 'orvan doctor' may tell what.");
  std::abort();
}

} // namespace

int runAgent(const AgentArguments& arguments, std::shared_ptr<LogSink> log) {
  boost::asio::io_context loop{1};
  try {
    if (arguments.start == AgentStart::throughBus && isStartedByBus()) {
      return done;
    }
    Agent agent(loop, arguments, std::move(log));
    agent.start();
    loop.run();
    waitForWork(loop, agent);
    return report(agent.exitStatus(), agent.sentence());
  } catch (const Error& error) {
    if (error.code() == BusError::noBus) {
      return report(failed, "There is no session bus here; start orvan-agent within a desktop session.");
    }
    crash();
  } catch (const std::exception&) {
    crash();
  }
}

} // namespace orvan
