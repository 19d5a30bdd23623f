#pragma once

#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "OrvanSpineCore/action_effect_store.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanStore/database_pool.h"
#include "OrvanTestSupport/capturing_log.h"
#include "tests/support/event_loop_test.h"
#include "tests/support/test_store.h"

namespace orvan {

/// The scheduler's port on the notification centre that a test drives.
class NotificationPortTest : public EventLoopTest {
 protected:
  std::shared_ptr<CapturingLog> log = std::make_shared<CapturingLog>();
  std::shared_ptr<FollowUpNotificationScheduling> notifications =
      std::make_shared<UserNotificationsFollowUpScheduling>(log);
};

/// A port with the five operations that it must have. It throws what is not even an exception from its nth call on.
class PlainPort final : public FollowUpNotificationScheduling {
 public:
  explicit PlainPort(int nth = std::numeric_limits<int>::max()) : left(nth) {}

  Task<bool> authorizationGranted() override { co_return called(); }
  Task<bool> requestAuthorization() override { co_return called(); }
  Task<void> registerRequest(std::string, std::string, Instant) override { co_return (void) called(); }
  Task<NotificationKeys> pendingRequestKeys() override { co_return NotificationKeys{called() ? "unknown" : ""}; }
  Task<void> cancel(std::string) override { co_return (void) called(); }

  bool called() { return --left > 0 ? true : throw 1; }

  int left;
};

/// Keeps what it was told to record; fails when told to.
class RecordingDispositions final : public FollowUpDispositionApplying {
 public:
  Task<AttentionItemDispositionRecord> apply(AttentionCatchUpItem item, AttentionItemAction action,
                                             Instant asOf) override {
    if (fails) {
      throw std::runtime_error("the store is full");
    }
    applied.emplace_back(item.itemKey(), action);
    co_return AttentionItemDispositionTransition::apply(action, AttentionItemState::active(), item.itemKey(), asOf);
  }

  bool fails = false;
  std::vector<std::pair<std::string, AttentionItemAction>> applied;
};

/// A pool on an encrypted store. The key is in the form that needs no derivation, which would take most of a test's
/// time.
inline std::shared_ptr<DatabasePool> openPool(const std::filesystem::path& file,
                                              std::function<void(Connection&)> alsoPrepare = {},
                                              std::size_t statementCacheCapacity = 128) {
  DatabasePool::Configuration configuration;
  configuration.connection.statementCacheCapacity = statementCacheCapacity;
  configuration.connection.prepare = [alsoPrepare = std::move(alsoPrepare)](Connection& opened) {
    const std::string key = "x'" + std::string(64, '5') + "'";
    opened.key({reinterpret_cast<const unsigned char*>(key.data()), key.size()});
    opened.executeScript("PRAGMA foreign_keys = ON; PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF");
    if (alsoPrepare) {
      alsoPrepare(opened);
    }
  };
  return std::make_shared<DatabasePool>(file, std::move(configuration));
}

/// A scheduler on an encrypted store with the canonical schema.
class FollowUpStoreTest : public NotificationPortTest {
 protected:
  using Token = std::optional<EffectReasonToken>;

  FollowUpStoreTest() {
    pool->write(createCanonicalSchema);
    center->setAuthorizationStatus(AuthorizationStatus::authorized);
    addSource("abc");
  }

  ~FollowUpStoreTest() override {
    scheduler.stopAuthorizationRecovery();
    center->dropHeld();
    settle();
  }

  FollowUpScheduler makeScheduler(std::shared_ptr<DatabasePool> store) {
    return FollowUpScheduler{std::move(store),    notifications, dispositions, AuthorizationRecheck::standard(),
                             loop.get_executor(), clock,         log};
  }

  template <typename Body>
  auto write(Body body) {
    return pool->write(body);
  }

  template <typename... Arguments>
  void execute(std::string_view sql, const Arguments&... arguments) {
    write([&](Connection& connection) { connection.execute(sql, arguments...); });
  }

  /// One value of the store; "(null)" when there is none.
  template <typename... Arguments>
  std::string value(std::string_view sql, const Arguments&... arguments) {
    return pool
        ->read([&](Connection& connection) { return connection.fetchOptionalText(sql, std::string{arguments}...); })
        .value_or("(null)");
  }

  std::string count(const std::string& table) { return value("SELECT count(*) || '' FROM " + table); }

  void addSource(const std::string& id) {
    execute("INSERT INTO source_object (id, kind, created_at) VALUES (?, 'thread', '2026-01-01T00:00:00Z')", id);
  }

  void addOpenLoop(const std::string& id) {
    execute("INSERT INTO open_loop VALUES (?, 'p1', 'scheduled_followup', NULL, '2026-01-01T00:00:00Z', 'open', '')",
            id);
  }

  void tombstone(const std::string& sourceObjectID) {
    execute("UPDATE source_object SET tombstoned_at = '2026-03-04T00:00:00Z' WHERE id = ?", sourceObjectID);
  }

  std::optional<PersistedFollowUp> schedule(const std::string& id, Instant dueAt, const std::string& personID = "p1",
                                            const std::string& sourceObjectID = "abc") {
    return write([&](Connection& connection) {
      return scheduler.upsert(connection, id, sourceObjectID, personID, dueAt, operation, clock->now());
    });
  }

  void complete(const std::string& id) {
    write([&](Connection& connection) { return scheduler.complete(connection, id, clock->now()); });
  }

  std::optional<PersistedFollowUp> cancel(const std::string& id) {
    return write([&](Connection& connection) { return scheduler.cancel(connection, id); });
  }

  std::string state(const std::string& id) { return scheduler.followUp(id)->state(); }

  std::future<Token> registerById(const std::string& id = "f-1") {
    return start(scheduler.registerReminder(id, "a title", inOneHour()));
  }

  /// The titles of pending notifications by their identifiers.
  std::map<std::string, std::string> pending() {
    std::map<std::string, std::string> titles;
    for (const auto& held : resultOf(center->pendingNotificationRequests())) {
      titles.emplace(held.identifier(), held.content().title());
    }
    return titles;
  }

  NotificationKeys delivered() { return resultOf(notifications->deliveredRequestKeys()); }

  void holdPending(const std::string& identifier) {
    resultOf(notifications->registerRequest(identifier, "held before", clock->now() + std::chrono::hours{2}));
    log->clear();
  }

  std::string lastLine() const { return log->messages().empty() ? "" : log->messages().back(); }

  /// The log line of a pass with these counts.
  static std::string passLine(int cancelled, int registered, int settled, int skippedPastDue, int deliveredRemoved) {
    const auto field = [](const char* name, int value) { return std::string{name} + std::to_string(value); };
    return "follow-up reconcile" + field(" cancelled=", cancelled) + field(" registered=", registered) +
           field(" settled=", settled) + field(" skipped_past_due=", skippedPastDue) +
           field(" delivered_removed=", deliveredRemoved);
  }

  Instant inOneHour() const { return clock->now() + std::chrono::hours{1}; }

  const Uuid operation = *Uuid::parse("0C5F2F1E-8A44-4B0E-9E6D-3C1B2A495867");
  ScratchFolder folder;
  std::shared_ptr<DatabasePool> pool = openPool(folder.path() / "store.db");
  std::shared_ptr<RecordingDispositions> dispositions = std::make_shared<RecordingDispositions>();
  FollowUpScheduler scheduler = makeScheduler(pool);
};

} // namespace orvan
