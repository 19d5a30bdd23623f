#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/session/session.h"

namespace orvan {

/// Whether the user asked not to be shown a person.
enum class Visibility { shown, hidden };

/// What a list of people tells of one.
struct ListedPerson {
  std::string personKey;
  std::string displayName;
  /// In their order.
  std::vector<std::string> addresses;
  /// How many mails the user sent to them, and they to the user, as far as they were imported.
  std::int64_t mailsTo = 0;
  std::int64_t mailsFrom = 0;
  /// When the latest mail or meeting was, none of those to come: a timestamp of the store.
  std::optional<std::string> lastContactAt;
  Visibility visibility = Visibility::shown;

  bool operator==(const ListedPerson&) const = default;
};

/// The people the user deals with whose name or an address holds `text`, in any case and with or without accents;
/// everybody when it is empty. In key order. Costs a row or two for each person, and a look at the history of those
/// alone whom the user met since the last mail. Throws StoreError.
std::vector<ListedPerson> peopleList(Session& session, const std::string& text, Instant asOf);

/// The same people, those first with whom the user exchanges most these days, then by the last contact. Hidden ones
/// come last.
void sortByExchange(std::vector<ListedPerson>& people, Session& session, Instant asOf);

} // namespace orvan
