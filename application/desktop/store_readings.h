#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/corrections/hiding.h"
#include "application/session/catch_up_list.h"
#include "application/session/contact_history.h"
#include "application/session/item_details.h"
#include "application/session/listed_follow_up.h"
#include "application/session/people_list.h"
#include "application/session/session.h"

namespace orvan {

// What a window reads, each as one piece of work for the store's thread. They throw what the session throws.

/// The list, and everybody who is not on it.
struct ListReading {
  CatchUpList list;
  Instant asOf;
  /// When mail, a calendar or contacts were last brought in; nothing when they never were.
  std::optional<Instant> broughtInAt;
  /// See dataVersion(); from before the list was read.
  std::int64_t dataVersion;
  /// When a follow-up comes due next, which the list shows from then on.
  std::optional<Instant> nextDueAt = {};
};

/// Remembers the list as shown, except for what is older.
ListReading readList(Session& session, Instant asOf);

/// One person, on the list or not.
struct PersonReading {
  std::string personKey;
  std::string displayName;
  std::vector<std::string> addresses;
  /// Nothing when there is no reason to get in touch with the person, or they are hidden.
  std::optional<ItemDetails> details;
  bool isHidden = false;
  /// Nothing is told of those who are hidden.
  ContactHistory history;
  /// The scheduled ones, in the order of their times.
  std::vector<ListedFollowUp> followUps = {};
  /// Conversations and mails with them.
  std::vector<HiddenThing> hiddenThings = {};
};

/// Nothing when there is nobody of that key any more.
std::optional<PersonReading> readPerson(Session& session, const std::string& personKey, Instant asOf);

/// The people whose name or address holds `text`, those first with whom the user exchanges most: `most` of them.
std::vector<ListedPerson> findPeople(Session& session, const std::string& text, std::size_t most, Instant asOf);

/// Another number than before tells that another program has changed the store.
std::int64_t dataVersion(Session& session);

} // namespace orvan
