#include "bench/seeded_store.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanStore/transaction.h"
#include "tests/support/test_store.h"

namespace orvan::bench {
namespace {

/// A generator whose results are the same everywhere, unlike the standard distributions.
class Chance {
 public:
  explicit Chance(std::uint64_t seed) : state_(seed) {}

  std::uint64_t next() noexcept {
    state_ += 0x9e3779b97f4a7c15;
    std::uint64_t mixed = state_;
    mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9;
    mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111eb;
    return mixed ^ (mixed >> 31);
  }

  std::size_t below(std::size_t bound) noexcept { return static_cast<std::size_t>(next() % bound); }
  std::size_t between(std::size_t low, std::size_t high) noexcept { return low + below(high - low + 1); }
  bool percent(unsigned chance) noexcept { return below(100) < chance; }

  std::string letters(std::size_t count) {
    constexpr std::string_view alphabet = "abcdefghijklmnopqrstuvwxyz234567";
    std::string text;
    for (std::size_t position = 0; position < count; ++position) {
      text += alphabet[below(alphabet.size())];
    }
    return text;
  }

 private:
  std::uint64_t state_;
};

constexpr std::size_t day = 86400;
constexpr std::size_t threeYears = 1095 * day;

constexpr std::array<const char*, 3> accounts{"account-mail-home", "account-mail-work", "account-calendar"};

/// The rows of a store, as SQL parameters in the order of their table's columns.
using Row = std::vector<std::optional<std::string>>;

struct Table {
  const char* insertion;
  std::vector<Row> rows;
};

struct Tables {
  Table person{"INSERT INTO person VALUES (?, ?, ?)", {}};
  Table identity{"INSERT INTO source_identity VALUES (?, ?, ?, 0)", {}};
  Table membership{"INSERT INTO identity_membership VALUES (?, ?, ?, ?, ?)", {}};
  Table thread{"INSERT INTO thread VALUES (?, ?)", {}};
  Table threadParticipant{"INSERT OR IGNORE INTO thread_participant VALUES (?, ?)", {}};
  Table event{"INSERT INTO source_event VALUES (?, ?, ?)", {}};
  Table interaction{"INSERT INTO interaction VALUES (?, ?, ?, ?, ?, ?, ?)", {}};
  Table participant{"INSERT OR IGNORE INTO interaction_participant VALUES (?, ?)", {}};
  Table claim{"INSERT INTO claim VALUES (?, ?, ?, ?)", {}};
  Table evidence{"INSERT INTO claim_evidence VALUES (?, ?, ?)", {}};
  Table loop{"INSERT INTO open_loop VALUES (?, ?, ?, ?, ?, ?, ?)", {}};
  Table correction{"INSERT INTO user_correction VALUES (?, ?, ?, ?)", {}};
  Table rule{"INSERT INTO exclusion_rule VALUES (?, ?, ?, ?, ?)", {}};
  Table tombstone{"INSERT INTO deletion_tombstone VALUES (?, ?, ?)", {}};
  Table progress{"INSERT INTO source_progress_projection VALUES (?, ?, ?, ?)", {}};

  std::vector<Table*> all() {
    return {&person, &identity,    &membership,  &thread,    &threadParticipant,
            &event,  &interaction, &participant, &claim,     &evidence,
            &loop,   &correction,  &rule,        &tombstone, &progress};
  }
};

std::string stampBefore(Instant moment, std::size_t seconds) {
  return formatInternetDateTime(moment - std::chrono::seconds{static_cast<std::int64_t>(seconds)});
}

/// Invents one person after the other; each from a seed of their own, so that they are the same in every store.
class Inventor {
 public:
  explicit Inventor(Tables& tables) : tables_(tables) {}

  SeededPerson invent(std::size_t number, std::size_t interactions) {
    chance_ = Chance{number * 1000003 + 17};
    key_ = "person-" + chance_.letters(16);
    identities_.clear();
    tables_.person.rows.push_back({key_, "Person " + std::to_string(number), "2020-01-01T00:00:00Z"});
    for (std::size_t identity = chance_.percent(20) ? 2 : 1; identity > 0; --identity) {
      addIdentity();
    }
    for (std::size_t left = interactions; left > 0;) {
      left -= addThread(left);
    }
    addMarks();
    return {key_, interactions};
  }

 private:
  /// What an importer would make: the start of the person's identity, so that their rows are neighbours, and a digest.
  std::string idOf(const std::string& identity) { return identity.substr(0, 5) + '-' + chance_.letters(12); }

  void addIdentity() {
    const auto identity = chance_.letters(13);
    tables_.identity.rows.push_back({identity, identity + "@example.org", key_});
    tables_.membership.rows.push_back({idOf(identity), identity, key_, "confirmed", std::nullopt});
    identities_.push_back(identity);
  }

  std::size_t addThread(std::size_t most) {
    const auto& identity = identities_[chance_.below(identities_.size())];
    const bool isMeeting = chance_.percent(5);
    const auto thread = idOf(identity);
    tables_.thread.rows.push_back({thread, isMeeting ? "calendar" : "mail"});
    tables_.threadParticipant.rows.push_back({identity, thread});
    const std::size_t length = isMeeting ? 1 : std::min(most, chance_.between(3, 8));
    std::size_t age = chance_.between(day, threeYears);
    for (std::size_t position = 0; position < length; ++position) {
      isMeeting ? addMeeting(identity, thread, age) : addMessage(identity, thread, age);
      age -= std::min(age, chance_.between(600, 3 * day));
    }
    return length;
  }

  void addMessage(const std::string& identity, const std::string& thread, std::size_t age) {
    const bool isInbound = chance_.percent(55);
    const auto event = addEvent(identity, accounts[chance_.percent(80) ? 0 : 1], chance_.percent(5));
    addInteraction(identity, {idOf(identity), thread, event, isInbound ? std::optional{identity} : std::nullopt,
                              isInbound ? "inbound" : "outbound", "message", stampBefore(seededNow(), age)});
    if (chance_.percent(2)) {
      addOpenLoop(identity, event, age);
    }
  }

  void addMeeting(const std::string& identity, const std::string& thread, std::size_t age) {
    const auto event = addEvent(identity, accounts[2], true);
    const auto at = chance_.percent(3) ? stampAhead() : stampBefore(seededNow(), age);
    addInteraction(identity, {idOf(identity), thread, event, std::nullopt, "mutual", "meeting", at});
  }

  std::string stampAhead() {
    return formatInternetDateTime(seededNow() + std::chrono::hours{static_cast<int>(chance_.between(1, 480))});
  }

  std::string addEvent(const std::string& identity, const char* account, bool isGroup) {
    auto event = idOf(identity);
    tables_.event.rows.push_back({event, account, isGroup ? "group" : "direct"});
    return event;
  }

  void addInteraction(const std::string& identity, Row row) {
    tables_.participant.rows.push_back({identity, row.front()});
    if (chance_.percent(1)) {
      tables_.tombstone.rows.push_back({row.front(), "interaction", "2026-01-01T00:00:00Z"});
    }
    tables_.interaction.rows.push_back(std::move(row));
  }

  void addOpenLoop(const std::string& identity, const std::string& event, std::size_t age) {
    const auto claim = idOf(identity);
    const auto evidence = idOf(identity);
    const auto at = stampBefore(seededNow(), age);
    tables_.claim.rows.push_back({claim, key_, "promise", at});
    tables_.evidence.rows.push_back({evidence, claim, event});
    tables_.loop.rows.push_back(
        {idOf(identity), key_, "promise", evidence, at, chance_.percent(40) ? "open" : "done", at});
    if (chance_.percent(10)) {
      tables_.correction.rows.push_back({idOf(identity), "claim", claim, at});
    }
  }

  void addMarks() {
    const auto& identity = identities_.front();
    if (chance_.percent(30)) {
      tables_.correction.rows.push_back(
          {idOf(identity), "person", key_, stampBefore(seededNow(), chance_.between(0, 90 * day))});
    }
    if (chance_.percent(2)) {
      tables_.rule.rows.push_back({idOf(identity), "person", key_, "2026-01-01T00:00:00Z", std::nullopt});
    }
  }

  Tables& tables_;
  Chance chance_{0};
  std::string key_;
  std::vector<std::string> identities_;
};

std::size_t historyOf(std::size_t number, const StoreSize& size) {
  constexpr std::size_t tenth = 10;
  if (number < 3) {
    return size.longestHistory / static_cast<std::size_t>(std::pow(tenth, number));
  }
  if (number % 400 == 0) {
    return size.longestHistory;
  }
  Chance chance{number};
  const double exponent = static_cast<double>(chance.below(1000)) / 1000;
  return static_cast<std::size_t>(50 * std::pow(10.0, exponent));
}

void addAccounts(Tables& tables) {
  for (const char* account : accounts) {
    tables.progress.rows.push_back({account, "sync", "current", "2026-03-05T11:00:00Z"});
    tables.progress.rows.push_back({account, "backfill", "stale", std::nullopt});
  }
}

/// In the order of their keys, which is what bulk loading wants.
void write(Table& table, Connection& connection) {
  std::ranges::sort(table.rows);
  Transaction transaction(connection, TransactionKind::write);
  for (const auto& row : table.rows) {
    auto insertion = connection.query(table.insertion);
    int position = 0;
    for (const auto& value : row) {
      insertion.bind(++position, value);
    }
    insertion.next();
  }
  transaction.commit();
  table.rows = {};
}

void fill(Tables& tables, Connection& connection) {
  connection.setPageCacheCeiling(std::int64_t{1024} * 1024);
  for (auto* table : tables.all()) {
    write(*table, connection);
  }
  connection.execute("PRAGMA wal_checkpoint(TRUNCATE)");
}

} // namespace

Instant seededNow() {
  return std::chrono::sys_days{std::chrono::year{2026} / 3 / 5} + std::chrono::hours{12};
}

SeededStore makeSeededStore(const std::filesystem::path& file, const StoreSize& size) {
  SeededStore store{file, size.interactions, {}};
  Tables tables;
  Inventor inventor(tables);
  for (std::size_t number = 0, left = size.interactions; left > 0; ++number) {
    const auto history = std::min(left, historyOf(number, size));
    store.people.push_back(inventor.invent(number, history));
    left -= history;
  }
  addAccounts(tables);

  const EncryptedStore encrypted(file, CredentialVault{std::make_shared<KeyInMemory>()});
  encrypted.create();
  encrypted.openQueue(StoreRole::programWriter)->withoutTransaction([&tables](Connection& connection) {
    fill(tables, connection);
  });
  return store;
}

} // namespace orvan::bench
