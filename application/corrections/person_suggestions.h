#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// Somebody who may be the same as others.
struct SuggestedPerson {
  std::string personID;
  std::string displayName;
  /// In their order.
  std::vector<std::string> addresses;
  /// How many there are between the user and the person, both ways together.
  std::int64_t mails = 0;
};

/// Why several people may be one.
enum class SuggestionGround {
  /// They go by the same full name.
  sameName,
  /// They do, and a contact card of the user's says so of one of them.
  sameNameOnCard,
};

/// People who may be one. Whom the user deals with most comes first, and is who they would all become.
struct MergeSuggestion {
  SuggestionGround ground;
  std::vector<SuggestedPerson> people;
};

/// Those of the people the user deals with who go by one full name: two words or more, in any case and with or without
/// accents, "Marsh, Ada" as "Ada Marsh", and nothing that offices go by. Left out is whom the user took apart, and whom
/// the user hides. In the order of the names. Runs within the caller's read; throws StoreError.
std::vector<MergeSuggestion> mergeSuggestions(Connection& connection);

} // namespace orvan
