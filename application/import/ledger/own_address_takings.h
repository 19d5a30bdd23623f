#pragma once

#include <string>
#include <string_view>

#include "OrvanStore/connection.h"

namespace orvan {

// What an address takes with it when it turns out to be the user's, and gives back when it does not. Both run within
// the caller's transaction and throw StoreError.

/// What was taken for somebody else's is the user's from now on: the mails were sent by the user, to whom is told when
/// they are read again, and the user is not listed among the participants. What is changed is written down.
void takeFromOthers(const std::string& identityID, std::string_view now, Connection& connection);

/// Takes back what takeFromOthers() did. What was deleted or read anew since stays as it is.
void giveBack(const std::string& identityID, std::string_view now, Connection& connection);

} // namespace orvan
