#include "application/corrections/person_suggestions.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "OrvanObservatory/store_projection_reader.h"
#include "OrvanPlatform/folded_text.h"
#include "application/import/ledger/identity_moves.h"
#include "application/import/ledger/people_ledger.h"
#include "application/import/mail/mailbox_kind.h"

namespace orvan {
namespace {

struct Candidate {
  SuggestedPerson person;
  bool isOnCard = false;
};

/// "ada marsh" for "Marsh, Ada".
std::string inUsualOrder(const std::string& name) {
  const auto comma = name.find(',');
  if (comma == std::string::npos || name.find(',', comma + 1) != std::string::npos) {
    return name;
  }
  return name.substr(comma + 1) + " " + name.substr(0, comma);
}

std::vector<std::string> wordsOf(std::string_view name) {
  std::vector<std::string> words;
  for (std::size_t start = 0; start < name.size();) {
    const auto end = std::min(name.find(' ', start), name.size());
    if (end > start) {
      words.emplace_back(name.substr(start, end - start));
    }
    start = end + 1;
  }
  return words;
}

/// An initial says little, and an office is nobody.
bool isPartOfAName(const std::string& word) {
  return word.size() > 1 && !word.ends_with('.') && word.find_first_of("@0123456789") == std::string::npos;
}

bool isAnOffice(const std::string& word) {
  return kindOfMailbox(word + "@office") != MailboxKind::person;
}

/// What people of the same full name have in common; nothing for a name that is none.
std::optional<std::string> fullName(const std::string& displayName) {
  const auto words = wordsOf(inUsualOrder(withoutAccents(displayName)));
  if (std::ranges::count_if(words, isPartOfAName) < 2 || std::ranges::any_of(words, isAnOffice)) {
    return std::nullopt;
  }
  std::string name;
  for (const auto& word : words) {
    name += (name.empty() ? "" : " ") + word;
  }
  return name;
}

using Candidates = std::unordered_map<std::string, Candidate>;

/// The people the user deals with and does not hide.
Candidates candidates(Connection& connection) {
  Candidates found;
  for (const auto& person : StoreProjectionReader::project(1, connection).people()) {
    found.try_emplace(person.personKey(), Candidate{{person.personKey(), person.displayName(), {}}});
  }
  auto rows = connection.query("SELECT target_id FROM exclusion_rule WHERE scope = 'person' AND ended_at IS NULL");
  while (rows.next()) {
    found.erase(std::string{rows.text(Column{0})});
  }
  return found;
}

void addIdentities(Candidates& candidates, Connection& connection) {
  auto rows = connection.query(R"sql(
SELECT im.canonical_person_id, mailbox.address, mailbox.name_rank, span.mails_to + span.mails_from
FROM identity_membership im
JOIN source_identity mailbox ON mailbox.id = im.source_identity_id
LEFT JOIN contact_span span ON span.source_identity_id = mailbox.id
WHERE im.ended_at IS NULL AND im.state IN ('high_conf', 'confirmed')
ORDER BY mailbox.address
)sql");
  while (rows.next()) {
    if (const auto found = candidates.find(std::string{rows.text(Column{0})}); found != candidates.end()) {
      auto& [person, isOnCard] = found->second;
      person.addresses.emplace_back(rows.text(Column{1}));
      person.mails += rows.integer(Column{3});
      isOnCard = isOnCard || rows.integer(Column{2}) == std::to_underlying(NameSource::card);
    }
  }
}

/// The first and whoever else may be the same.
std::optional<MergeSuggestion> suggestionAmong(std::vector<Candidate> namesakes, Connection& connection) {
  std::ranges::sort(namesakes, {}, [](const Candidate& candidate) {
    return std::tuple{-candidate.person.mails, std::string_view{candidate.person.personID}};
  });
  const auto firstID = namesakes.front().person.personID;
  std::erase_if(namesakes, [&](const Candidate& candidate) {
    return candidate.person.personID != firstID &&
           werePartedFromEachOther(firstID, candidate.person.personID, connection);
  });
  if (namesakes.size() < 2) {
    return std::nullopt;
  }
  MergeSuggestion suggestion{SuggestionGround::sameName, {}};
  for (auto& [person, isOnCard] : namesakes) {
    suggestion.ground = isOnCard ? SuggestionGround::sameNameOnCard : suggestion.ground;
    suggestion.people.push_back(std::move(person));
  }
  return suggestion;
}

} // namespace

std::vector<MergeSuggestion> mergeSuggestions(Connection& connection) {
  auto everybody = candidates(connection);
  addIdentities(everybody, connection);
  std::map<std::string, std::vector<Candidate>> byName;
  for (auto& [personID, candidate] : everybody) {
    if (auto name = fullName(candidate.person.displayName)) {
      byName[*std::move(name)].push_back(std::move(candidate));
    }
  }
  std::vector<MergeSuggestion> suggestions;
  for (auto& [name, namesakes] : byName) {
    if (namesakes.size() > 1) {
      if (auto suggestion = suggestionAmong(std::move(namesakes), connection)) {
        suggestions.push_back(*std::move(suggestion));
      }
    }
  }
  return suggestions;
}

} // namespace orvan
