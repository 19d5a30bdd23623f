#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// One mailbox of an address field. Both texts are valid UTF-8 without control characters.
struct MailAddress {
  /// The name as its writer meant it, encoded words decoded, trimmed; empty when there is none.
  std::string displayName;
  /// The mailbox ("zoe@example.org") as normalAddress() has it, so that two spellings of it compare equal.
  std::string address;

  bool operator==(const MailAddress&) const = default;
};

/// What the importer keeps of one mail. All texts are valid UTF-8.
struct MailMessage {
  /// Without angle brackets, never empty. A mail that carries no id gets one made from its header fields, which is the
  /// same each time the mail is read, from an mbox file or a Maildir and whatever its status flags are then.
  /// Two messages of one source may have the same id: the source does not remember what it gave.
  std::string messageID;
  /// The mails this one answers, oldest first: References, then In-Reply-To. No brackets, no duplicates, never the
  /// message's own id. Of more than 100, the first and the last 99 are kept.
  std::vector<std::string> references;
  /// When the sender's program says it was sent: whole seconds, years 1970 to 9999.
  Instant sentAt;
  /// At least one.
  std::vector<MailAddress> from;
  std::vector<MailAddress> to;
  std::vector<MailAddress> cc;
  /// Decoded, on one line, trimmed; may be empty.
  std::string subject;
  /// It went out to many at once: through a mailing list, or from a sender of newsletters.
  bool isBulk = false;
  /// The addresses of the lists that passed it on, lower-cased, where they tell.
  std::vector<std::string> listAddresses = {};
  /// A program wrote it: automatic replies, delivery reports, no-reply mailboxes.
  bool isAutomated = false;
  /// What its sender says in words of their own, for firstQuestion(): see ownWords(). Absent for automated and
  /// forwarded mail, for invitations, and where no question mark is in these words.
  std::optional<std::string> ownWords;
  /// It was read before, at a moment when it may have been there in part only: what this reading shows replaces what
  /// that one has left.
  bool isReadAgain = false;

  bool operator==(const MailMessage&) const = default;
};

/// Why a mail, or what should have been one, is not imported.
enum class MailSkipReason {
  /// No Date field that can be read, or one outside years 1970 to 9999.
  undated,
  /// No From field with an address: malformed, or cut off before it.
  noSender,
  /// Text before the first "From " line of an mbox file. When nothing else is found, the file is not an mbox file.
  notAMailbox,
  /// A Maildir message with the draft flag.
  draft,
  /// A Maildir message with the trashed flag.
  trashed,
  /// A Maildir message that cannot be opened or read.
  unreadable,
};

/// A few words for a table of counts ("no readable date").
std::string_view description(MailSkipReason reason) noexcept;

struct MailSkip {
  MailSkipReason reason;

  bool operator==(const MailSkip&) const = default;
};

using MailItem = std::variant<MailMessage, MailSkip>;

} // namespace orvan
