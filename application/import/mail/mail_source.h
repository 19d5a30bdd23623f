#pragma once

#include <cstdint>
#include <optional>

#include "application/import/mail/mail_message.h"

namespace orvan {

/// A mailbox that is read once, from its beginning to its end, one mail at a time. It holds one mail in memory at most,
/// and of that a bounded part, however large the mailbox or the mail.
///
/// A damaged mail is an item with the reason why it is skipped; an Error (with a MailSourceError) is thrown only when
/// the mailbox itself cannot be opened or read on. Belongs to one thread at a time.
class MailSource {
 public:
  virtual ~MailSource() = default;

  /// The next mail or the reason why there is none in its place; nothing when the mailbox is at its end, and from then
  /// on.
  virtual std::optional<MailItem> next() = 0;

  /// How much of the mailbox the items so far account for, in bytes or files, and how large it was when it was opened;
  /// 0 when that is not known. For showing progress only: a mailbox that grows meanwhile is read beyond its total.
  virtual std::uint64_t amountRead() const noexcept = 0;
  virtual std::uint64_t amountTotal() const noexcept = 0;
};

} // namespace orvan
