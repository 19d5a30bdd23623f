// What reminders cost. docs/follow-ups.md has the numbers and says how to repeat them.
//
//   follow_up_benchmark reconcile    a pass over one thousand and over ten thousand follow-ups, all without reminder
//   follow_up_benchmark pass N       one pass over N of them, to be counted by callgrind
//   follow_up_benchmark reads        one registration's reads among ten thousand live follow-ups
//   follow_up_benchmark waiters      ten thousand waiters for one authorization request
//   follow_up_benchmark upsert N     N upserts in one transaction, to be counted by callgrind
//   follow_up_benchmark by-hand N    the same statements on the SQLite interface

#include <sqlite3.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <boost/asio/detached.hpp>
#include <boost/asio/io_context.hpp>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <span>
#include <string>
#include <vector>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_authorization_recovery.h"
#include "OrvanRelationshipAttention/follow_up/internal/follow_up_rows.h"
#include "OrvanRelationshipAttention/follow_up/internal/reminder_text.h"
#include "OrvanRelationshipAttention/follow_up/user_notifications_follow_up_scheduling.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanStore/transaction.h"
#include "OrvanTestSupport/capturing_log.h"
#include "OrvanTestSupport/in_memory_notification_center.h"
#include "OrvanTestSupport/manual_clock.h"

namespace {

using namespace orvan;
using namespace std::chrono_literals;
using Milliseconds = std::chrono::duration<double, std::milli>;

const Instant now = *parseInternetDateTime("2026-03-04T09:15:00Z");
const Instant due = *parseInternetDateTime("2026-03-05T10:00:00Z");
const Uuid operation = *Uuid::parse("0c5f2f1e-8a44-4b0e-9e6d-3c1b2a495867");

/// An encrypted store in a folder that goes with it. The raw form of the key saves the key's derivation.
class Store {
 public:
  Store() {
    std::string name = (std::filesystem::temp_directory_path() / "orvan-bench-XXXXXX").string();
    folder_ = mkdtemp(name.data());
    DatabasePool::Configuration configuration;
    configuration.connection.prepare = [](Connection& connection) {
      const std::string rawKey = "x'" + std::string(64, '5') + "'";
      connection.key({reinterpret_cast<const unsigned char*>(rawKey.data()), rawKey.size()});
      connection.executeScript("PRAGMA foreign_keys = ON; PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL");
    };
    pool = std::make_shared<DatabasePool>(folder_ / "store.db", std::move(configuration));
    pool->write(createCanonicalSchema);
  }
  ~Store() {
    pool.reset();
    std::filesystem::remove_all(folder_);
  }
  Store(const Store&) = delete;
  Store& operator=(const Store&) = delete;

  std::shared_ptr<DatabasePool> pool;

 private:
  std::filesystem::path folder_;
};

/// A scheduler on a clock that stands still and a centre that takes everything.
class Bench {
 public:
  Bench() { NotificationCenter::setCurrent(center); }
  // NOLINTNEXTLINE(bugprone-exception-escape): what is left to run is unwound, which throws nothing.
  ~Bench() {
    scheduler.stopAuthorizationRecovery();
    NotificationCenter::setCurrent(nullptr);
    center->dropHeld();
    clock->dropTimers();
    settle();
  }
  Bench(const Bench&) = delete;
  Bench& operator=(const Bench&) = delete;

  void fill(int count) {
    store.pool->write([&](Connection& connection) {
      for (int index = 0; index < count; ++index) {
        const std::string number = std::to_string(index);
        connection.execute("INSERT INTO source_object (id, kind, created_at) VALUES (?, 'thread', '')", "s" + number);
        connection.execute("INSERT INTO capture_artifact (id, source_object_id, user_context) VALUES (?, ?, ?)",
                           "c" + number, "s" + number, R"({"user_follow_up": "call about the lease"})");
        scheduler.upsert(connection, "f" + number, "s" + number, "p" + number, due, operation, now);
      }
    });
  }

  std::size_t settle() {
    loop.restart();
    return loop.poll();
  }

  Store store;
  boost::asio::io_context loop;
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(now);
  std::shared_ptr<InMemoryNotificationCenter> center =
      std::make_shared<InMemoryNotificationCenter>(loop.get_executor(), clock, AuthorizationStatus::authorized);
  std::shared_ptr<CapturingLog> log = std::make_shared<CapturingLog>();
  std::shared_ptr<FollowUpNotificationScheduling> notifications =
      std::make_shared<UserNotificationsFollowUpScheduling>(log);
  FollowUpScheduler scheduler{store.pool,          notifications, nullptr, AuthorizationRecheck::standard(),
                              loop.get_executor(), clock,         log};
};

/// What this process has used so far: the machine may be busy with other things.
Milliseconds processorTime() {
  timespec used{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return std::chrono::seconds{used.tv_sec} + std::chrono::nanoseconds{used.tv_nsec};
}

template <typename Body>
Milliseconds timeOf(Body body) {
  const Milliseconds start = processorTime();
  body();
  return processorTime() - start;
}

Milliseconds onePass(int count) {
  Bench bench;
  bench.fill(count);
  bench.log->clear();
  boost::asio::co_spawn(bench.loop, bench.scheduler.reconcileReminders(), boost::asio::detached);
  const Milliseconds time = timeOf([&] { bench.settle(); });
  const auto lines = bench.log->messages();
  if (lines.empty() || !lines.back().contains(" registered=" + std::to_string(count) + " ")) {
    throw std::runtime_error("the pass registered something else");
  }
  return time;
}

void measureReconciliation() {
  constexpr int rounds = 5;
  std::array<Milliseconds, 2> best{Milliseconds::max(), Milliseconds::max()};
  for (int round = 0; round < rounds; ++round) {
    best[0] = std::min(best[0], onePass(1000));
    best[1] = std::min(best[1], onePass(10000));
  }
  std::cout << "1000 follow-ups: " << best[0].count() << " ms, 10000: " << best[1].count()
            << " ms, ratio: " << best[1] / best[0] << " (at most 12)\n";
}

void readAsOneRegistrationDoes(DatabasePool& pool, const std::string& id) {
  pool.read([&](Connection& connection) {
    const auto row = internal::loadFollowUp(connection, id);
    return internal::notificationSubject(connection, row->sourceObjectID());
  });
  pool.read([&](Connection& connection) { return internal::liveFollowUp(connection, id); });
  pool.read([&](Connection& connection) { return internal::liveFollowUp(connection, id); });
}

void measureReads() {
  constexpr int count = 10000;
  Bench bench;
  bench.fill(count);
  readAsOneRegistrationDoes(*bench.store.pool, "f0");
  constexpr int roundLength = 1000;
  Milliseconds best = Milliseconds::max();
  for (int start = 0; start < count; start += roundLength) {
    best = std::min(best, timeOf([&] {
                      for (int index = start; index < start + roundLength; ++index) {
                        readAsOneRegistrationDoes(*bench.store.pool, "f" + std::to_string(index * 7919 % count));
                      }
                    }));
  }
  std::cout << "one registration's reads: " << best.count() / roundLength << " ms (under 0.1)\n";
}

void measureWaiters() {
  constexpr std::size_t count = 10000;
  Bench bench;
  bench.center->script(InMemoryNotificationCenter::Operation::requestAuthorization, CenterBehaviour::hang());
  const auto recovery =
      std::make_shared<internal::FollowUpAuthorizationRecovery>(bench.loop.get_executor(), bench.clock);
  std::size_t resumed = 0;
  for (std::size_t index = 0; index < count; ++index) {
    boost::asio::co_spawn(bench.loop, recovery->waitForAuthorization(bench.notifications, 20s),
                          [&resumed](const std::exception_ptr&, auto) { ++resumed; });
  }
  bench.settle();
  bench.center->answerHeld();
  std::size_t turns = 0;
  bench.loop.restart();
  const Milliseconds time = timeOf([&] {
    while (resumed < count && bench.loop.poll_one() != 0) {
      ++turns;
    }
  });
  std::cout << resumed << " waiters resumed in " << turns << " turns and " << time.count() << " ms\n";
}

std::string idOf(int index) {
  return "follow-up-" + std::to_string(index);
}

void upsert(int count) {
  Bench bench;
  bench.store.pool->write([&](Connection& connection) {
    for (int index = 0; index < count; ++index) {
      bench.scheduler.upsert(connection, idOf(index), "source-1", "person-1", due, operation, now);
    }
  });
}

/// The statements of one upsert of a new id, compiled once, with nothing between them but what they are bound to.
class HandWrittenUpsert {
 public:
  explicit HandWrittenUpsert(sqlite3* connection) {
    for (std::size_t index = 0; index < texts.size(); ++index) {
      sqlite3_prepare_v3(connection, texts.at(index), -1, SQLITE_PREPARE_PERSISTENT, &statements_.at(index), nullptr);
    }
  }
  ~HandWrittenUpsert() { std::ranges::for_each(statements_, sqlite3_finalize); }
  HandWrittenUpsert(const HandWrittenUpsert&) = delete;
  HandWrittenUpsert& operator=(const HandWrittenUpsert&) = delete;

  void run(const std::string& id) {
    const std::string person = "person-1";
    const std::string source = "source-1";
    const std::string nowText = formatInternetDateTime(now);
    const std::string dueText = formatInternetDateTime(due);
    const std::string operationID = operation.text();
    const std::string loop = "open-loop:follow-up:" + id;
    const std::string reference = "openLoop:" + loop;
    const std::string key = std::to_string(person.size()) + ":" + person + "|10:commitment|" +
                            std::to_string(nowText.size()) + ":" + nowText + "|" + std::to_string(reference.size()) +
                            ":" + reference;
    step(0, {id});
    step(1, {id});
    step(2, {id, source, person, dueText, nowText, operationID, loop});
    step(3, {loop});
    step(4, {loop, person, nowText, nowText});
    step(5, {key, person, nowText, dueText, "followup-upsert-projection-v1", nowText});
    step(6, {key, loop});
  }

 private:
  static constexpr std::array texts{
      "SELECT id, source_object_id, person_id, due_at, state, completed_at FROM follow_up WHERE id = ?",
      "SELECT open_loop_id FROM follow_up WHERE id = ?",
      "INSERT INTO follow_up (id, source_object_id, person_id, due_at, state, created_at, completed_at, "
      "origin_operation_id, open_loop_id) VALUES (?, ?, ?, ?, 'scheduled', ?, NULL, ?, ?) ON CONFLICT(id) DO UPDATE "
      "SET due_at = excluded.due_at, state = 'scheduled', completed_at = NULL, "
      "origin_operation_id = excluded.origin_operation_id",
      "SELECT detected_at FROM open_loop WHERE id = ?",
      "INSERT INTO open_loop (id, person_id, kind, evidence_ref, detected_at, state, created_at) VALUES (?, ?, "
      "'scheduled_followup', NULL, ?, 'open', ?) ON CONFLICT(id) DO UPDATE SET person_id = excluded.person_id, "
      "state = 'open'",
      "INSERT INTO relationship_attention_candidate (candidate_key, person_id, kind, why_now_code, defining_event_at, "
      "due_at, expires_at, generator_version, created_at) VALUES (?, ?, 'unresolved_followup', 'commitment', ?, ?, "
      "NULL, ?, ?) ON CONFLICT(candidate_key) DO UPDATE SET person_id = excluded.person_id, due_at = excluded.due_at, "
      "generator_version = excluded.generator_version",
      "INSERT OR IGNORE INTO relationship_attention_candidate_evidence (candidate_key, reference_kind, reference_id) "
      "VALUES (?, 'open_loop', ?)",
  };

  void step(std::size_t index, std::initializer_list<std::string_view> arguments) {
    sqlite3_stmt* statement = statements_.at(index);
    int position = 0;
    for (const auto argument : arguments) {
      sqlite3_bind_text(statement, ++position, argument.data(), static_cast<int>(argument.size()), SQLITE_STATIC);
    }
    const int result = sqlite3_step(statement);
    if (result != SQLITE_DONE && result != SQLITE_ROW) {
      throw std::runtime_error("a statement failed");
    }
    sqlite3_reset(statement);
  }

  std::array<sqlite3_stmt*, texts.size()> statements_{};
};

void upsertByHand(int count) {
  const Bench bench;
  bench.store.pool->write([&](Connection& connection) {
    HandWrittenUpsert statements{connection.handle()};
    for (int index = 0; index < count; ++index) {
      statements.run(idOf(index));
    }
  });
}

int run(std::span<const std::string> arguments) {
  const std::string what = arguments.empty() ? "" : arguments.front();
  const int count = arguments.size() > 1 ? std::atoi(arguments[1].c_str()) : 0;
  if (what == "reconcile") {
    measureReconciliation();
  } else if (what == "pass") {
    onePass(count);
  } else if (what == "reads") {
    measureReads();
  } else if (what == "waiters") {
    measureWaiters();
  } else if (what == "upsert") {
    upsert(count);
  } else if (what == "by-hand") {
    upsertByHand(count);
  } else {
    std::cerr << "follow_up_benchmark: name one of reconcile, pass N, reads, waiters, upsert N, by-hand N\n";
    return 2;
  }
  return 0;
}

} // namespace

int main(int count, char** values) {
  const std::vector<std::string> arguments(values + 1, values + count);
  try {
    return run(arguments);
  } catch (const std::exception& error) {
    std::cerr << "follow_up_benchmark: " << error.what() << "\n";
    return 1;
  }
}
