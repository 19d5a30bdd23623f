#pragma once

#include <string>
#include <string_view>

#include "OrvanStore/connection.h"

namespace orvan {

/// The source account that an import reads for: the user's mail, or the user's calendar.
struct SourceAccount {
  std::string id;
  /// "mail" or "calendar".
  std::string sourceType;
  /// The operation whose progress is recorded.
  std::string operation;
};

/// The accounts of the user with this address.
SourceAccount mailAccountOf(std::string_view ownAddress);
SourceAccount calendarAccountOf(std::string_view ownAddress);

/// Both run within the caller's transaction. Until an import ends well, what it brought is marked "stale"; then
/// "current" as of `now`.
void recordImportStarted(const SourceAccount& account, std::string_view now, Connection& connection);
void recordImportSucceeded(const SourceAccount& account, std::string_view now, Connection& connection);

} // namespace orvan
