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

/// The account that this store's mail, or calendars, belong to. The first import names it after `ownAddress`; it stays
/// whichever addresses later imports are told, so that what is known of its freshness holds for all of it.
SourceAccount mailAccountOf(std::string_view ownAddress, Connection& connection);
SourceAccount calendarAccountOf(std::string_view ownAddress, Connection& connection);

/// Both run within the caller's transaction. Until an import ends well, what it brought is marked "stale"; then
/// "current" as of `now`.
void recordImportStarted(const SourceAccount& account, std::string_view now, Connection& connection);
void recordImportSucceeded(const SourceAccount& account, std::string_view now, Connection& connection);

} // namespace orvan
