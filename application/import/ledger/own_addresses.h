#pragma once

#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// How an address came to be known as the user's.
enum class ToldBy { import, user };

/// The name of the case.
std::string_view caseName(ToldBy toldBy) noexcept;

/// An address of the user's.
struct OwnAddress {
  std::string address;
  ToldBy toldBy;
  /// Whether a mail that was read names it; nothing when that is not known.
  std::optional<bool> hasMail;

  bool operator==(const OwnAddress&) const = default;
};

// All of these run within the caller's transaction, take addresses as normalAddress() has them, and throw StoreError.

/// In the order of the addresses.
std::vector<OwnAddress> ownAddresses(Connection& connection);

/// Adds to the addresses that were told before and returns them all. An address that was taken for somebody else's so
/// far is the user's from now on: its person ends, and the mails sent from it are the user's. Whom those went to, and
/// which mails were to the user alone, is learned when they are read again: how far sources were read is forgotten.
std::set<std::string> rememberOwnAddresses(std::span<const std::string> addresses, std::string_view now,
                                           Connection& connection, ToldBy toldBy = ToldBy::import);

/// How the store stands once an address is no longer the user's.
enum class GivenUp {
  /// As if it had never been told.
  asItWas,
  /// What was read while it was the user's stays as it is until it is read again, which the next reading of each source
  /// does from its beginning.
  toBeReadAgain,
};

/// Gives an address up: what was taken from its person goes back. The address must be one of the user's.
GivenUp giveUpOwnAddress(const std::string& address, std::string_view now, Connection& connection);

/// Notes that a source is read with the user's addresses as they are known now.
void noteReadingWithOwnAddresses(Connection& connection);

/// Notes that there is mail which names these of the user's addresses.
void noteMailOf(const std::set<std::string>& addresses, Connection& connection);

} // namespace orvan
