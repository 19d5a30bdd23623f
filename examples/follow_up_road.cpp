// The whole road of one follow-up, from the effect that schedules it to its withdrawn reminder, on a clock that is
// moved by hand: it runs through an afternoon in a moment and always prints the same.
//
// An application differs in three places only: it gives SystemClock (the default), its own executor, and the desktop's
// notification centre.

#include <stdlib.h>

#include <boost/asio/io_context.hpp>
#include <filesystem>
#include <iostream>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_delegate.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanSpineCore/key_file.h"
#include "OrvanTestSupport/in_memory_notification_center.h"
#include "OrvanTestSupport/manual_clock.h"

namespace {

using namespace orvan;
using namespace std::chrono_literals;

/// Prints the library's log lines where they are written.
class PrintedLog final : public LogSink {
 public:
  void write(const LogEntry& entry) noexcept override { std::cout << "      log  " << entry.message << "\n"; }
};

void say(std::string_view step) {
  std::cout << "\n" << step << "\n";
}

void tell(std::string_view what, std::string_view value) {
  std::cout << "      " << what << ": " << value << "\n";
}

std::string text(const std::optional<EffectReasonToken>& token) {
  return token ? std::string{caseName(*token)} : "done";
}

/// A fresh folder that is removed at the end.
class Folder {
 public:
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "orvan-road-XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::filesystem::path file(const char* name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

/// The store, which is the application's to make, and the pool that it opens for follow-ups.
std::shared_ptr<DatabasePool> makeStore(const std::filesystem::path& file, const CredentialVault& vault) {
  const EncryptedStore store(file, vault);
  store.create();
  return store.openPool(StoreRole::programWriter);
}

CredentialVault makeVault(const std::filesystem::path& file) {
  const auto key = std::make_shared<KeyFile>(file);
  key->create();
  return CredentialVault{key};
}

/// Everything the application owns, in the order in which it goes: the event loop last.
class Road {
 public:
  Road() {
    NotificationCenter::setCurrent(center_);
    delegate_->installIfNeeded();
  }
  // NOLINTNEXTLINE(bugprone-exception-escape): what is left to run is unwound, which throws nothing.
  ~Road() {
    scheduler_.stopAuthorizationRecovery();
    NotificationCenter::setCurrent(nullptr);
    clock_->dropTimers();
    settle();
  }
  Road(const Road&) = delete;
  Road& operator=(const Road&) = delete;

  void travel() {
    capture();
    schedule();
    registerBeforeTheUserAnswers();
    allowNotifications();
    comeDue();
    completeAndWithdraw();
  }

 private:
  /// What the host application's own part of the store holds: a captured message, with what the user said about it.
  void capture() {
    pool_->write([](Connection& connection) {
      connection.execute("INSERT INTO source_object (id, kind, created_at) VALUES ('message-1', 'message', ?)",
                         "2026-03-04T09:00:00Z");
      connection.execute("INSERT INTO capture_artifact (id, source_object_id, user_context) VALUES ('c-1', ?, ?)",
                         "message-1", R"({"user_follow_up": "call   Zoë about\n the lease"})");
    });
  }

  void schedule() {
    say("09:15  The user asks to be reminded of a message at 15:00.");
    tell("may be made", effects_.refusal("Call Zoë", due_, clock_->now()) ? "no" : "yes");
    pool_->write([this](Connection& connection) {
      return effects_.upsert(connection, "follow-up-1", "message-1", "person-zoe", due_, operation_, clock_->now());
    });
    tell("stored", effects_.followUp("follow-up-1")->state() + ", due " + effects_.followUp("follow-up-1")->dueAt());
  }

  void registerBeforeTheUserAnswers() {
    say("09:15  Its reminder needs leave to notify. The user is asked and does not answer within 20 seconds.");
    center_->script(InMemoryNotificationCenter::Operation::requestAuthorization, CenterBehaviour::answerAfter(2min));
    auto registration = begin(effects_.registerReminder("follow-up-1", "Call Zoë", due_));
    pass(20s);
    tell("registration", text(registration.get()));
  }

  void allowNotifications() {
    say("09:17  The user answers at last, and allows it. The watcher looks every five seconds.");
    pass(2min - 20s);
    pass(5s);
    for (const auto& request : resultOf(center_->pendingNotificationRequests())) {
      tell("pending", request.identifier() + ", \"" + request.content().title() + "\"");
    }
  }

  void comeDue() {
    say("15:00  The reminder comes due while the application is in front, and its follow-up is live.");
    center_->setForeground(true);
    pass(due_ - clock_->now());
    for (const auto& shown : center_->presentations()) {
      tell("shown", shown.identifier() + (shown.options().empty() ? ", suppressed" : ", with banner and sound"));
    }
  }

  void completeAndWithdraw() {
    say("15:20  The user has called. The follow-up is completed, its attention item resolved, the reminder withdrawn.");
    pass(20min);
    pool_->write(
        [this](Connection& connection) { return effects_.complete(connection, "follow-up-1", clock_->now()); });
    tell("stored", effects_.followUp("follow-up-1")->state());
    tell("resolving", text(resultOf(effects_.resolveAttention("follow-up-1", clock_->now()))));
    const auto records = resultOf(dispositions_->records("person-zoe"));
    tell("disposition", caseName(records.front().state().kind()));
    resultOf(effects_.cancelReminder("follow-up-1"));
    tell("notifications left", std::to_string(resultOf(center_->deliveredNotifications()).size()));
  }

  template <typename Result>
  std::future<Result> begin(Task<Result> task) {
    auto future = boost::asio::co_spawn(loop_, std::move(task), boost::asio::use_future);
    settle();
    return future;
  }

  template <typename Result>
  Result resultOf(Task<Result> task) {
    return begin(std::move(task)).get();
  }

  void pass(std::chrono::nanoseconds duration) {
    clock_->advance(duration);
    settle();
  }

  void settle() {
    loop_.restart();
    loop_.poll();
  }

  boost::asio::io_context loop_;
  const Executor executor_ = loop_.get_executor();
  Folder folder_;
  CredentialVault vault_ = makeVault(folder_.file("store.key"));
  std::shared_ptr<DatabasePool> pool_ = makeStore(folder_.file("store.db"), vault_);
  std::shared_ptr<AttentionDispositionStore> dispositions_ =
      std::make_shared<AttentionDispositionStore>(folder_.file("store.db"), vault_, executor_);
  std::shared_ptr<ManualClock> clock_ = std::make_shared<ManualClock>(*parseInternetDateTime("2026-03-04T09:15:00Z"));
  std::shared_ptr<LogSink> log_ = std::make_shared<PrintedLog>();
  std::shared_ptr<InMemoryNotificationCenter> center_ = std::make_shared<InMemoryNotificationCenter>(executor_, clock_);
  std::shared_ptr<FollowUpNotificationDelegate> delegate_ =
      std::make_shared<FollowUpNotificationDelegate>(pool_, executor_, executor_);
  FollowUpScheduler scheduler_{pool_,         std::make_shared<UserNotificationsFollowUpScheduling>(log_),
                               dispositions_, AuthorizationRecheck::standard(),
                               executor_,     clock_,
                               log_};
  /// The action pipeline knows follow-ups by this interface alone.
  const FollowUpEffecting& effects_ = scheduler_;
  const Uuid operation_ = *Uuid::parse("0c5f2f1e-8a44-4b0e-9e6d-3c1b2a495867");
  const Instant due_ = *parseInternetDateTime("2026-03-04T15:00:00Z");
};

} // namespace

int main() {
  try {
    Road{}.travel();
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "The road ended early: " << error.what() << "\n";
    return 1;
  }
}
