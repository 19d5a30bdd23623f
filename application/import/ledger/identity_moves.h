#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// An identity that went from one person to another: the membership that ended, and the one that began.
struct IdentityMove {
  std::string identityID;
  std::string endedMembershipID;
  std::string begunMembershipID;

  bool operator==(const IdentityMove&) const = default;
};

/// Everything that went from one person to another, by the ids of its rows, so that it can be given back.
struct PersonMoves {
  std::string fromPersonID;
  std::string toPersonID;
  std::vector<IdentityMove> identities;
  std::vector<std::string> claimIDs;
  std::vector<std::string> openLoopIDs;
  std::vector<std::string> followUpIDs;
  /// The keys under which decisions about the one hold for the other from now on, where none held before.
  std::vector<std::string> itemKeys;

  bool operator==(const PersonMoves&) const = default;
};

// All of these run within the caller's write transaction and throw StoreError. Nothing is deleted: a membership ends,
// and what was decided stays under the key of the person whom it was decided about. Names are person_names.h's matter.

/// Gives an identity to another person, whose row is there. With it go the claims and open loops that rest on its
/// mails, and what was decided about reasons that rest on it holds for the other person, too. Nothing happens to an
/// identity that belongs to nobody, or to that person already.
PersonMoves moveIdentity(std::string_view identityID, std::string_view toPersonID, std::string_view now,
                         Connection& connection);

/// Makes two people one: gives each identity of the first to the second, with everything that was decided about the
/// first and never over what was decided about the second. Their follow-ups go along, but for those about an object
/// that the second has a follow-up about which is scheduled, or newer: a person has one about an object. They stay with
/// the first person.
PersonMoves mergePeople(std::string_view fromPersonID, std::string_view toPersonID, std::string_view now,
                        Connection& connection);

/// Gives the claims and open loops of the first person that rest on mails of the second's to the second. For after an
/// action was taken back: what an import found out in between lies with whoever had the identity then.
void giveWhatRestsOnMails(std::string_view fromPersonID, std::string_view toPersonID, Connection& connection);

/// The key of a person whom nobody belongs to, for an identity that is to be a person of its own.
std::string personIDForItself(std::string_view identityID, Connection& connection);

/// Makes that person, called as the identity is.
void makePersonFor(std::string_view identityID, std::string_view personID, std::string_view now,
                   Connection& connection);

/// Whether an identity of the one person was taken away from the other: they are two, whatever else tells them to be
/// one.
bool werePartedFromEachOther(std::string_view personID, std::string_view otherID, Connection& connection);

/// The identities that belong to a person now, in the order of their ids.
std::vector<std::string> identitiesOf(std::string_view personID, Connection& connection);

} // namespace orvan
