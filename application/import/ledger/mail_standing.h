#pragma once

namespace orvan {

/// What a mail is between the user and others, as far as its copies tell. One mail may arrive several times: through a
/// list, sent to the user, from the folder of what the user sent. A copy that shows more replaces one that shows less.
enum class MailStanding {
  /// Other mails refer to it; none of its copies was read.
  referenced,
  /// Nothing that concerns the user: a program's, a newsletter, list traffic that does not name them.
  passedOver,
  /// It was kept, and whatever it was counts no longer: the user has given up an address. However it is read next
  /// replaces what is kept of it. The second was the user's own.
  outdated,
  outdatedOwn,
  /// To the user in the company of others, or list traffic that answers the user.
  group,
  /// To the user alone.
  direct,
  /// The user's own.
  own,
};

constexpr bool isOutdated(MailStanding standing) noexcept {
  return standing == MailStanding::outdated || standing == MailStanding::outdatedOwn;
}

} // namespace orvan
