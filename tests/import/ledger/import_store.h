#pragma once

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanObservatory/contact_outlook.h"
#include "OrvanObservatory/store_projection_reader.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanRelationshipAttention/evidence/internal/evidence_queries.h"
#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanStore/database_queue.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/ledger/stable_id.h"
#include "tests/support/test_store.h"

namespace orvan {

using Texts = std::vector<std::string>;

inline constexpr const char* me = "mira@home.example";
inline constexpr const char* zoe = "zoe@out.example";
inline constexpr const char* ben = "ben@out.example";

inline Instant instantOf(std::string_view text) {
  return parseInternetDateTime(text).value();
}

/// A mail as a test tells it.
struct TestMail {
  std::string id = {};
  std::string at = "2026-03-01T10:00:00Z";
  std::string from = zoe;
  Texts to = {me};
  Texts references = {};
  std::string subject = "Hello";
  std::string fromName = {};
  std::optional<std::string> question = {};
  Texts cc = {};
  bool isBulk = false;
  bool isAutomated = false;
  Texts lists = {};

  operator MailItem() const { // NOLINT(google-explicit-constructor): a list of items reads as one of mails.
    MailMessage message;
    message.messageID = id;
    message.references = references;
    message.sentAt = instantOf(at);
    message.from = {{fromName, from}};
    for (const auto& address : to) {
      message.to.push_back({"", address});
    }
    for (const auto& address : cc) {
      message.cc.push_back({"", address});
    }
    message.subject = subject;
    message.isBulk = isBulk;
    message.listAddresses = lists;
    message.isAutomated = isAutomated;
    message.ownWords = question;
    return message;
  }
};

/// Gives the items in their order. Before each, and before the end, it tells `before` how many it has given.
class TestMailbox final : public MailSource {
 public:
  explicit TestMailbox(
      std::vector<MailItem> items, std::function<void(std::size_t given)> before = [](auto) {})
      : items_(std::move(items)), before_(std::move(before)) {}

  std::optional<MailItem> next() override {
    before_(given_);
    return given_ < items_.size() ? std::optional{items_[given_++]} : std::nullopt;
  }
  std::uint64_t amountRead() const noexcept override { return given_; }
  std::uint64_t amountTotal() const noexcept override { return items_.size(); }

 private:
  std::vector<MailItem> items_;
  std::size_t given_ = 0;
  std::function<void(std::size_t given)> before_;
};

/// An encrypted store to import into, and what the library then tells of it on 5 March 2026.
class ImportStore {
  static ConnectionConfiguration configuration() {
    ConnectionConfiguration configuration;
    configuration.prepare = [](Connection& connection) {
      // Sixty-four digits are taken as the key itself: deriving one would take longer than the tests.
      const std::string key = "x'" + std::string(64, '7') + "'";
      connection.key(std::vector<unsigned char>(key.begin(), key.end()));
      connection.executeScript("PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0; PRAGMA synchronous = OFF");
    };
    return configuration;
  }

  /// One text of each piece of evidence on the person with that address.
  template <typename Fetch, typename TextOf, typename... Arguments>
  Texts evidence(Fetch fetch, TextOf textOf, std::string_view address, const Arguments&... arguments) {
    const internal::EvidenceQueries queries(AttentionEvidenceCompilerOptions::defaults);
    const auto personKey = personIDOf(identityIDOf(address));
    const auto pieces =
        queue.read([&](Connection& connection) { return (queries.*fetch)(personKey, arguments..., connection); });
    Texts found;
    for (const auto& one : pieces) {
      found.emplace_back(std::invoke(textOf, one));
    }
    return found;
  }

 public:
  ImportStore() { queue.write(createCanonicalSchema); }

  static Instant asOf() { return instantOf("2026-03-05T12:00:00Z"); }
  static ImportContext context(Texts own = {me}) { return {std::move(own), asOf()}; }
  MailReport import(const std::vector<TestMail>& mails, std::size_t mailsPerBatch = 100, Texts own = {me}) {
    TestMailbox mailbox({mails.begin(), mails.end()});
    return MailImporter(queue, context(std::move(own)), mailsPerBatch).import(mailbox);
  }

  /// The first column of every row.
  Texts texts(std::string_view sql) {
    return queue.read([&](Connection& connection) {
      Texts found;
      auto rows = connection.query(sql);
      while (rows.next()) {
        found.emplace_back(rows.optionalText(Column{0}).value_or("NULL"));
      }
      return found;
    });
  }
  void run(std::string_view sql) {
    queue.write([&](Connection& connection) { connection.execute(sql); });
  }

  /// Every row of these tables, behind the table's name; of all tables when none is given.
  Texts rowsOf(Texts tables = {}) {
    if (tables.empty()) {
      tables = texts("SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite_%' ORDER BY name");
    }
    Texts rows;
    for (const auto& table : tables) {
      const auto columns = texts(
                               "SELECT group_concat('quote(' || name || ')', ' || '','' || ') "
                               "FROM pragma_table_info('" +
                               table + "')")
                               .front();
      std::ranges::copy(texts("SELECT '" + table + " ' || " + columns + " FROM " + table + " ORDER BY 1"),
                        std::back_inserter(rows));
    }
    return rows;
  }

  /// What is told of a person at that moment without a look at their history.
  ContactOutlook outlook(std::string_view address, Instant at = asOf()) {
    const auto outlooks = queue.read([at](Connection& connection) { return contactOutlooks(at, connection); });
    const auto found = std::ranges::find(outlooks, personIDOf(identityIDOf(address)), &ContactOutlook::personKey);
    return found == outlooks.end() ? ContactOutlook{} : *found;
  }
  /// The names of the people whom the user ever dealt with.
  Texts people() {
    const auto projection =
        queue.read([](Connection& connection) { return StoreProjectionReader::project(1, connection); });
    Texts names;
    for (const auto& person : projection.people()) {
      names.push_back(person.displayName());
    }
    return names;
  }
  /// When each mail that waits for the user's reply came.
  Texts waiting(std::string_view address = zoe) {
    return evidence(&internal::EvidenceQueries::fetchOpenThreads, &OpenThreadEvidence::lastInboundOccurredAt, address,
                    asOf());
  }
  Texts upcoming(std::string_view who = zoe) {
    return evidence(&internal::EvidenceQueries::fetchUpcomingInteractions, &UpcomingInteractionEvidence::occurredAt,
                    who, asOf());
  }
  /// The kinds of what is open between the user and the person.
  Texts commitments(std::string_view address = zoe) {
    return evidence(&internal::EvidenceQueries::fetchCommitments, &CommitmentEvidence::kind, address);
  }
  /// Each thread as the times of what happened in it.
  Texts threads() {
    return texts(
        "SELECT group_concat(occurred_at, ' ') AS times "
        "FROM (SELECT thread_id, occurred_at FROM interaction ORDER BY thread_id, occurred_at) "
        "GROUP BY thread_id ORDER BY times");
  }
  /// Of every source account.
  Texts freshness() { return texts("SELECT freshness_state FROM source_progress_projection"); }

  const ScratchFolder folder;
  const std::filesystem::path file = folder.path() / "store.db";
  DatabaseQueue queue{file, configuration()};
};

} // namespace orvan
