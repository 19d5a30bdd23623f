#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "OrvanPlatform/instant.h"

namespace orvan::internal {

/// The key of the one follow-up that a source object and a person have: "3:abc|2:p1". The lengths are UTF-8 bytes, so
/// two different pairs never share a key.
std::string followUpKey(std::string_view sourceObjectID, std::string_view personID);

/// The ids of the open loops that mirror a pair's follow-up and a follow-up with an id of its own.
std::string followUpOpenLoopID(std::string_view sourceObjectID, std::string_view personID);
std::string followUpOpenLoopID(std::string_view followUpID);

/// A source object and a person.
struct FollowUpPair {
  std::string sourceObjectID;
  std::string personID;
};

/// The pair that followUpKey() would give exactly this key; nothing when there is none.
std::optional<FollowUpPair> pairOfFollowUpKey(std::string_view key);

/// Whether a notification under this identifier is a follow-up reminder even without the mark that our requests carry:
/// an identifier that begins with "fu-v25:", or a follow-up key.
bool isLegacyFollowUpKey(std::string_view identifier);

/// The beginning of the follow-up ids that were once given notifications under the pair's key as well.
bool hasVersion25Form(std::string_view followUpID);

/// The only form in which a notification key reaches a log: the first 12 lowercase hexadecimal characters of its
/// SHA-256 digest.
std::string followUpKeyHash(std::string_view key);

/// "2026-03-05T14:07Z": the minute an instant lies in, in UTC, as log lines have it.
std::string iso8601Minute(Instant instant);

} // namespace orvan::internal
