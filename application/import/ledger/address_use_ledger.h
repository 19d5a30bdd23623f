#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "OrvanStore/connection.h"
#include "application/import/ledger/mail_batch.h"

namespace orvan {

/// Counts how addresses are used on mail that is not the user's, because that tells a mailing list from a person where
/// no header does: many people write to it, and it never writes.
class AddressUseLedger {
 public:
  /// Counts a mail in, once.
  void add(const PreparedMail& mail);
  /// Writes what was counted within the caller's transaction, has the store say which addresses are taken for lists,
  /// and forgets it.
  void write(Connection& connection);

 private:
  struct Use {
    std::int64_t named = 0;
    std::int64_t namedBy = 0;
    std::int64_t written = 0;
  };

  std::map<std::string, Use> uses_;
};

/// The identities that are known to be, or are taken for, mailing lists.
std::set<std::string> listIdentityIDs(Connection& connection);

} // namespace orvan
