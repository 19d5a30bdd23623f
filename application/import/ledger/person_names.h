#pragma once

#include <cstdint>
#include <string_view>

#include "OrvanStore/connection.h"
#include "application/import/ledger/people_ledger.h"

namespace orvan {

// What a person is called: what the user says, or else the best that is told of one of their addresses, whoever told it
// first among equals. All of these run within the caller's write transaction and throw StoreError.

/// An identity was given a name by `source`. Its person is called so from now on, unless the user named them or another
/// of their addresses has a name from a source as good.
void takeNameOfIdentity(std::string_view identityID, std::string_view name, NameSource source, Connection& connection);

/// Two people became one, whose identities are all the survivor's by now. The survivor keeps the name, unless that is
/// only an address and the other has a better one.
void takeNameOfMerged(std::string_view survivorID, std::string_view otherID, Connection& connection);

/// The same for who was joined by no word of the user's: the name that the user gave the other is the survivor's now,
/// unless the survivor has one from the user, too.
void takeUsersNameOf(std::string_view otherID, std::string_view survivorID, Connection& connection);

/// An identity left a person. If they were called after it alone, they are called as the best of those that stayed.
void nameAfterThoseThatStayed(std::string_view personID, std::string_view leftIdentityID, Connection& connection);

/// The user's word for a person, which no import changes, is withdrawn: they are called as the best of their
/// identities.
void nameAfterIdentities(std::string_view personID, Connection& connection);

bool isNamedByUser(std::string_view personID, Connection& connection);

/// What the user says, which no import changes.
void renamePerson(std::string_view personID, std::string_view name, Connection& connection);

} // namespace orvan
