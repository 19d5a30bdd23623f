#pragma once

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanStore/connection.h"
#include "application/import/ledger/mail_batch.h"

namespace orvan {

/// Whom the user has had forgotten, by identity. Nothing that they wrote is kept again, nor what went to them or was
/// arranged with them alone, and they are left out of what others share with them.
///
/// Read anew within each write transaction: somebody may be forgotten while an import runs.
class ForgottenPeople {
 public:
  static ForgottenPeople in(Connection& connection);

  bool contains(std::string_view identityID) const { return identityIDs_.contains(identityID); }
  void leaveOut(std::vector<std::string>& identityIDs) const;
  /// A mail that is not to be kept is passed over then.
  void leaveOut(PreparedMail& mail) const;

 private:
  explicit ForgottenPeople(std::set<std::string, std::less<>> identityIDs) : identityIDs_(std::move(identityIDs)) {}

  std::set<std::string, std::less<>> identityIDs_;
};

} // namespace orvan
