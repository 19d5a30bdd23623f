#pragma once

#include <string>
#include <vector>

namespace orvan {

/// What a contact card of the user's tells: that these addresses are one person's, and what the person is called.
struct ContactCard {
  /// Valid UTF-8 on one line; empty when the card has no name but an address.
  std::string displayName;
  /// As normalAddress() has them, each once, in the card's order.
  std::vector<std::string> addresses;

  bool operator==(const ContactCard&) const = default;
};

} // namespace orvan
