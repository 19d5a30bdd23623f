#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanStore/connection.h"
#include "application/import/ledger/history_rows.h"

namespace orvan {

/// Counts what there was between the user and each identity, week by week: what a list needs to know of everybody
/// without a look at their history.
class ContactLedger {
 public:
  /// Counts an interaction in, or out again when it is withdrawn. Once each.
  void add(const InteractionRow& row) { count(row, 1); }
  void remove(const InteractionRow& row) { count(row, -1); }
  /// Counts an interaction in for one of its participants only, for whom alone it was out.
  void addFor(std::string_view identityID, const InteractionRow& row) { count(row, 1, identityID); }

  /// Writes what was counted within the caller's transaction, after the interactions themselves, and forgets it. The
  /// identities of whom more is known now:
  /// the user wrote to them, or met them, earlier than was thought.
  std::vector<std::string> write(Connection& connection);

 private:
  struct Counts {
    std::int64_t sent = 0;
    std::int64_t received = 0;
    std::int64_t inCompany = 0;
    /// Of those in company.
    std::int64_t sentInCompany = 0;
    std::int64_t met = 0;

    bool operator==(const Counts&) const = default;
  };
  struct Span {
    std::string firstContactAt;
    std::string firstReachedAt;
  };
  struct MailsOneWay {
    std::int64_t count = 0;
    /// Empty when there is none.
    std::string lastAddedAt;
    std::string lastRemovedAt;
  };
  struct Mails {
    MailsOneWay to;
    MailsOneWay from;
  };

  /// For each of its participants, or for one.
  void count(const InteractionRow& row, std::int64_t step, std::optional<std::string_view> only = {});
  void widen(const std::string& identityID, const InteractionRow& row);
  void countMail(const std::string& identityID, const InteractionRow& row, std::int64_t step);
  void writeWeeks(Connection& connection) const;
  std::vector<std::string> writeSpans(Connection& connection) const;
  void writeMails(Connection& connection) const;

  /// In the order of the table's key.
  std::map<std::pair<std::int64_t, std::string>, Counts> weeks_;
  std::map<std::string, Span> spans_;
  std::map<std::string, Mails> mails_;
};

} // namespace orvan
