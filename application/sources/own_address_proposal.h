#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "application/sources/source_discovery.h"

namespace orvan {

/// An address that may be the user's, as normalAddress() has it.
struct ProposedAddress {
  enum class Ground {
    /// A mail program has it among its settings.
    settings,
    /// Mail in a folder of sent mail is from it.
    sentMail,
    /// Much of the mail names it.
    mostMail,
  };

  std::string address;
  Ground ground;
  /// Whether it is so plain that the user need only agree.
  bool isLikely;

  bool operator==(const ProposedAddress&) const = default;
};

/// The addresses that mail programs have among their settings: Thunderbird beside the mail at `mail`, Evolution and
/// KMail. Reads no mail. What cannot be read is passed over.
std::vector<ProposedAddress> ownAddressesInSettings(const std::vector<std::filesystem::path>& mail,
                                                    const UserPlaces& places);

/// The addresses that a sample of the mail at these places tells to be the user's, the likeliest first. Reads the
/// headers of some hundred mails of each mailbox, and for a few seconds at most. What cannot be read is passed over.
std::vector<ProposedAddress> ownAddressesInMail(const std::vector<std::filesystem::path>& mail);

} // namespace orvan
