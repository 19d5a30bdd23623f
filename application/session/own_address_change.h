#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// Somebody whom an address was taken for.
struct AddressHolder {
  std::string personKey;
  std::string displayName;
  /// Whether other addresses are theirs too.
  bool hasOthers;
};

/// An address that the user said is theirs, and was not known to be.
struct AddedOwnAddress {
  std::string address;
  std::optional<AddressHolder> takenFrom;
};

// All of these run within the caller's transaction, take addresses as normalAddress() has them, and throw StoreError.

/// Whose the address is now, where it is anybody's.
std::optional<AddressHolder> holderOfAddress(const std::string& address, Connection& connection);

/// Remembers what the user says is theirs: see rememberOwnAddresses(). Only what was not known yet is returned, once.
std::vector<AddedOwnAddress> addOwnAddresses(const std::vector<std::string>& addresses, std::string_view now,
                                             Connection& connection);

/// Whether any mail or calendar was read, which other own addresses have read again.
bool isAnythingRead(Connection& connection);

} // namespace orvan
