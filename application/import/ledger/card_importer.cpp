#include "application/import/ledger/card_importer.h"

#include <algorithm>
#include <exception>
#include <set>
#include <span>
#include <string>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "OrvanPlatform/folded_text.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/precondition.h"
#include "application/import/ledger/identity_moves.h"
#include "application/import/ledger/own_addresses.h"
#include "application/import/ledger/people_ledger.h"
#include "application/import/ledger/person_names.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

constexpr std::size_t cardsPerBatch = 1000;

/// All cards are held before any is written: whether an address is told by cards of different names shows at the end.
struct ReadCards {
  std::vector<ContactCard> cards;
  /// Set when the source failed after these.
  std::exception_ptr failure;
};

ReadCards readCards(CardSource& source, const std::set<std::string>& own, ImportWatch& watch, CardReport& report) {
  ReadCards read;
  const auto isOwn = [&own](const ContactCard& card) {
    return std::ranges::any_of(card.addresses, [&own](const auto& address) { return own.contains(address); });
  };
  try {
    while (!watch.isStopRequested()) {
      watch.tellRead(report.cards, {source.amountRead(), source.amountTotal()});
      auto item = source.next();
      if (!item) {
        break;
      }
      ++report.cards;
      if (const auto* skip = std::get_if<CardSkip>(&*item)) {
        ++report.skipped[*skip];
      } else if (isOwn(std::get<ContactCard>(*item))) {
        ++report.skipped[CardSkip::own];
      } else {
        read.cards.push_back(std::get<ContactCard>(*std::move(item)));
      }
    }
  } catch (...) {
    read.failure = std::current_exception();
  }
  report.isStopped = watch.isStopRequested();
  return read;
}

/// The addresses that stand on cards of different names.
std::unordered_set<std::string> ambiguousAddresses(std::span<const ContactCard> cards) {
  std::unordered_map<std::string, std::string> nameOf;
  std::unordered_set<std::string> ambiguous;
  for (const auto& card : cards) {
    const auto name = withoutAccents(card.displayName);
    for (const auto& address : card.addresses) {
      const auto [known, isNew] = nameOf.try_emplace(address, name);
      if (!isNew && known->second != name) {
        ambiguous.insert(address);
      }
    }
  }
  return ambiguous;
}

bool isHidden(const std::string& personID, Connection& connection) {
  return connection
      .fetchOptionalInteger(
          "SELECT 1 FROM exclusion_rule WHERE scope = 'person' AND target_id = ? AND ended_at IS NULL", personID)
      .has_value();
}

std::int64_t mailsWith(const std::string& personID, Connection& connection) {
  return connection
      .fetchOptionalInteger(R"sql(
SELECT COALESCE(sum(span.mails_to + span.mails_from), 0)
FROM identity_membership im
JOIN contact_span span ON span.source_identity_id = im.source_identity_id
WHERE im.canonical_person_id = ? AND im.ended_at IS NULL
)sql",
                            personID)
      .value_or(0);
}

/// Everybody whom the identities belong to, the one with the most mail first.
std::vector<std::string> peopleOf(std::span<const std::string> identityIDs, Connection& connection) {
  std::set<std::string> people;
  for (const auto& identityID : identityIDs) {
    if (auto personID = personOfIdentity(identityID, connection)) {
      people.insert(*std::move(personID));
    }
  }
  std::vector<std::tuple<std::int64_t, std::string>> order;
  order.reserve(people.size());
  for (const auto& personID : people) {
    order.emplace_back(-mailsWith(personID, connection), personID);
  }
  std::ranges::sort(order);
  std::vector<std::string> sorted;
  sorted.reserve(order.size());
  for (auto& [mails, personID] : order) {
    sorted.push_back(std::move(personID));
  }
  return sorted;
}

/// Writes cards within the caller's transaction.
class CardWriter {
 public:
  CardWriter(const std::unordered_set<std::string>& ambiguous, std::string_view now, Connection& connection)
      : ambiguous_(ambiguous), now_(now), connection_(connection) {}

  void write(const ContactCard& card, CardReport& report) {
    const auto before = sqlite3_total_changes64(connection_.handle());
    const auto identityIDs = writeNames(card);
    join(identityIDs, card.displayName, report);
    ++(sqlite3_total_changes64(connection_.handle()) > before ? report.imported : report.known);
  }

 private:
  std::vector<std::string> writeNames(const ContactCard& card) {
    std::vector<std::string> identityIDs;
    PeopleLedger people;
    for (const auto& address : card.addresses) {
      if (!ambiguous_.contains(address)) {
        identityIDs.push_back(people.note(address, card.displayName, NameSource::card));
      }
    }
    people.write(connection_, now_);
    return identityIDs;
  }

  void join(std::span<const std::string> identityIDs, const std::string& name, CardReport& report) {
    const auto people = peopleOf(identityIDs, connection_);
    for (std::size_t other = 1; other < people.size(); ++other) {
      if (mayJoin(people.front(), people[other])) {
        joinPeople(people[other], people.front());
        ++report.joined;
      } else {
        ++report.keptApart;
      }
    }
    if (people.size() > 1 && !name.empty()) {
      takeNameOfIdentity(identityIDs.front(), name, NameSource::card, connection_);
    }
  }

  bool mayJoin(const std::string& survivorID, const std::string& otherID) {
    return !werePartedFromEachOther(survivorID, otherID, connection_) &&
           isHidden(survivorID, connection_) == isHidden(otherID, connection_);
  }

  void joinPeople(const std::string& otherID, const std::string& survivorID) {
    mergePeople(otherID, survivorID, now_, connection_);
    takeNameOfMerged(survivorID, otherID, connection_);
    takeUsersNameOf(otherID, survivorID, connection_);
  }

  const std::unordered_set<std::string>& ambiguous_;
  std::string_view now_;
  Connection& connection_;
};

} // namespace

CardImporter::CardImporter(DatabaseQueue& store, ImportContext context) : store_(store), context_(std::move(context)) {
  precondition(!context_.ownAddresses.empty(), "An import needs an address of the user's.");
}

CardReport CardImporter::import(CardSource& source) {
  const auto now = formatInternetDateTime(context_.now);
  const auto own = store_.write(
      [&](Connection& connection) { return rememberOwnAddresses(context_.ownAddresses, now, connection); });
  ImportWatch unwatched;
  auto& watch = context_.watch == nullptr ? unwatched : *context_.watch;
  CardReport report;
  const auto [cards, failure] = readCards(source, own, watch, report);
  const auto ambiguous = ambiguousAddresses(cards);
  report.ambiguous = static_cast<std::int64_t>(ambiguous.size());
  for (std::span rest{cards}; !rest.empty();) {
    const auto batch = rest.first(std::min(rest.size(), cardsPerBatch));
    auto soFar = report;
    store_.write([&](Connection& connection) {
      CardWriter writer(ambiguous, now, connection);
      for (const auto& card : batch) {
        writer.write(card, soFar);
      }
    });
    report = std::move(soFar);
    watch.tellStored(report.imported + report.known);
    rest = rest.subspan(batch.size());
  }
  if (failure) {
    std::rethrow_exception(failure);
  }
  return report;
}

} // namespace orvan
