#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

#include "OrvanStore/connection.h"
#include "application/import/mail/mailbox_kind.h"

namespace orvan {

/// Who has told us a name: the more a source should know, the greater the value.
enum class NameSource {
  /// Nobody; the address stands in.
  none,
  /// Somebody who wrote to the person, or a calendar.
  others,
  /// The person's own mail.
  themselves,
  /// A contact card that the user keeps.
  card,
  /// The user.
  user,
};

/// Gathers the addresses that a batch of mails or meetings mentions and writes them as identities, each with a person
/// of its own until the user says otherwise; a mailing list has none. Kept in order of the identities, so that the
/// store is written in order.
class PeopleLedger {
 public:
  /// What an address tells by itself.
  struct Mailbox {
    std::string identityID;
    MailboxKind kind;
  };
  /// Found out once for each address.
  const Mailbox& mailbox(const std::string& address);

  /// Notes that somebody took part, and gives the identity's id. A blank name tells nothing.
  std::string note(const std::string& address, std::string_view displayName, NameSource nameSource);

  /// Notes that an address is a mailing list's.
  void noteList(const std::string& address);

  /// About how much memory it takes.
  std::size_t bytes() const noexcept;

  /// Forgets whoever is not among `identityIDs`, lists excepted.
  void keepOnly(const std::set<std::string_view>& identityIDs);

  /// Writes what was noted within the caller's transaction and forgets it. An identity keeps the best name ever told;
  /// see person_names.h for what its person is called.
  /// Whom the user has had forgotten is left out.
  void write(Connection& connection, std::string_view now);

 private:
  struct Identity {
    std::string address;
    std::string displayName;
    NameSource nameSource = NameSource::none;
    std::string_view kind = "person";
  };

  Identity& identity(const Mailbox& mailbox, std::string_view address);

  std::unordered_map<std::string, Mailbox> mailboxes_;
  std::map<std::string, Identity, std::less<>> identities_;
};

/// The person whom an identity belongs to now; nothing when it belongs to nobody.
std::optional<std::string> personOfIdentity(std::string_view identityID, Connection& connection);

} // namespace orvan
