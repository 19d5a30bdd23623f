#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"
#include "application/corrections/person_correction_error.h"

namespace orvan {

// What the user says about who is who. Each runs within the caller's write transaction, is written down in the journal
// and can be taken back; no import says otherwise later. Throws StoreError, or Error with a PersonCorrectionError, and
// changes nothing then. What is given is the number of the journal's entry, unless said otherwise.

/// Makes several people one, `survivorID`, with everything that was decided about any of them. The survivor keeps the
/// name, unless it is only an address and another has a better one.
std::int64_t mergePeopleForUser(const std::string& survivorID, std::span<const std::string> otherIDs, Instant now,
                                Connection& connection);

struct PartedAddress {
  std::string personID;
  std::int64_t action;
};

/// Makes the address a person of its own, called as the address is.
PartedAddress splitAddress(const std::string& address, Instant now, Connection& connection);

/// Calls a person by another name. Blanks around it do not count.
std::int64_t renamePersonForUser(const std::string& personID, const std::string& name, Instant now,
                                 Connection& connection);

/// Calls a person as their mail does, whatever they were renamed to. Nothing is done, and nothing given, when the user
/// never named them.
std::optional<std::int64_t> giveNameBackForUser(const std::string& personID, Instant now, Connection& connection);

} // namespace orvan
