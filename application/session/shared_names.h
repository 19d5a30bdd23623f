#pragma once

#include <optional>
#include <span>
#include <string>
#include <unordered_set>

#include "OrvanObservatory/contact_outlook.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// The names by which several of the people go whom the user deals with. Upper and lower case make no difference, nor
/// do blanks around a name.
class SharedNames {
 public:
  explicit SharedNames(std::span<const ContactOutlook> everybody);

  /// What tells the person from the others of that name: one of the person's addresses. Nothing when nobody else has
  /// the name, or no address is known. Runs within the caller's read; throws StoreError.
  std::optional<std::string> addressToTell(const std::string& displayName, const std::string& personKey,
                                           Connection& connection) const;

 private:
  std::unordered_set<std::string> folded_;
};

} // namespace orvan
