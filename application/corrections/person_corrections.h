#pragma once

#include <span>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"
#include "application/corrections/person_correction_error.h"

namespace orvan {

// What the user says about who is who. Each runs within the caller's write transaction, is written down in the journal
// and can be taken back; no import says otherwise later. Throws StoreError, or Error with a PersonCorrectionError, and
// changes nothing then.

/// Makes several people one, `survivorID`, with everything that was decided about any of them. The survivor keeps the
/// name, unless it is only an address and another has a better one.
void mergePeopleForUser(const std::string& survivorID, std::span<const std::string> otherIDs, Instant now,
                        Connection& connection);

/// Makes the address a person of its own, called as the address is, and gives its key.
std::string splitAddress(const std::string& address, Instant now, Connection& connection);

/// Calls a person by another name. Blanks around it do not count.
void renamePersonForUser(const std::string& personID, const std::string& name, Instant now, Connection& connection);

} // namespace orvan
