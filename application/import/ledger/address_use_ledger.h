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
  /// The kind of an address that was written to is decided anew as well.
  void consider(std::string_view identityID) { uses_[std::string{identityID}]; }

  /// Writes what was counted within the caller's transaction, has the identities say what they are taken for, and
  /// forgets it.
  void write(Connection& connection);

 private:
  struct Use {
    std::int64_t named = 0;
    std::int64_t namedBy = 0;
    std::int64_t written = 0;
  };

  std::map<std::string, Use> uses_;
};

/// The addresses that are known to be, or are taken for, mailing lists.
std::set<std::string> listAddresses(Connection& connection);

} // namespace orvan
