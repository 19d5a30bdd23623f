#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// What the store holds of a person, as the user is told before it is deleted.
struct TracesOfPerson {
  std::string personKey;
  std::string displayName;
  std::vector<std::string> addresses;
  /// Between the user and them alone, and mails that they wrote.
  std::int64_t mails = 0;
  std::int64_t meetings = 0;
  /// Mails and meetings with others too, which stay without them.
  std::int64_t shared = 0;
  std::int64_t decisions = 0;
  std::int64_t followUps = 0;
};

// Both are told a key of a table `person`, give nothing when there is no such person, or when the addresses are the
// user's own, and throw StoreError.

/// Runs within the caller's read.
std::optional<TracesOfPerson> tracesOf(const std::string& personKey, Connection& connection);

/// Deletes all of that, every other row that names the person, one of their addresses, or a mail or meeting that is
/// deleted, and what the user did about them. A tombstone for each address, which holds no more than a digest of it,
/// keeps imports from bringing anything of it back. What the user shares with others stays, and so do the numbers by
/// which mails are known. Tells what was deleted.
///
/// All within the caller's write transaction. The write-ahead log holds the pages as they were until it is emptied.
std::optional<TracesOfPerson> forget(const std::string& personKey, std::string_view now, Connection& connection);

} // namespace orvan
