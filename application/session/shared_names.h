#pragma once

#include <optional>
#include <string>
#include <unordered_set>

#include "OrvanStore/connection.h"

namespace orvan {

/// The names by which several of the people go whom the user deals with. Upper and lower case make no difference, nor
/// do blanks around a name.
class SharedNames {
 public:
  /// Of people with a displayName each.
  template <typename People>
  explicit SharedNames(const People& everybody) {
    std::unordered_set<std::string> seen;
    for (const auto& person : everybody) {
      add(person.displayName, seen);
    }
  }

  /// What tells the person from the others of that name: one of the person's addresses. Nothing when nobody else has
  /// the name, or no address is known. Runs within the caller's read; throws StoreError.
  std::optional<std::string> addressToTell(const std::string& displayName, const std::string& personKey,
                                           Connection& connection) const;

 private:
  void add(const std::string& displayName, std::unordered_set<std::string>& seen);

  std::unordered_set<std::string> folded_;
};

} // namespace orvan
