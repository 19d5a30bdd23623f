#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanStore/connection.h"
#include "application/session/session_error.h"

namespace orvan {

/// A person with what tells them from others of the name: an address, when one is known.
struct NamedPerson {
  std::string personKey;
  std::string displayName;
  std::optional<std::string> address;

  bool operator==(const NamedPerson&) const = default;
};

/// Thrown when what the user wrote names nobody (SessionError::personUnknown), or several people (personAmbiguous).
/// What the error says of itself holds no names.
class PersonNotFound final : public Error {
 public:
  PersonNotFound(SessionError error, std::vector<NamedPerson> people)
      : Error(error, "looking for a person"), people_(std::move(people)) {}

  /// Those who go by that name, or else those whose names or addresses are most like it, three at most. In the order in
  /// which they are to be shown.
  const std::vector<NamedPerson>& people() const noexcept { return people_; }

 private:
  std::vector<NamedPerson> people_;
};

/// The key of the person that a user means by `text`: somebody's key; or else an address; or else a name, in any case,
/// that only one person has, or without accents that only one person has. The key of somebody who is part of another
/// person now means that person. People the user never dealt with are found too, for what was decided about them may
/// still be asked for; those without an address of theirs only when nobody else is meant.
///
/// Runs within the caller's read. Throws PersonNotFound and StoreError.
std::string personKeyCalled(const std::string& text, Connection& connection);

/// The addresses of a person, in their order. Runs within the caller's read; throws StoreError.
std::vector<std::string> addressesOf(const std::string& personKey, Connection& connection);

} // namespace orvan
