#pragma once

namespace orvan {

/// What a mail is between the user and others, as far as its copies tell. One mail may arrive several times: through a
/// list, sent to the user, from the folder of what the user sent. A copy that shows more replaces one that shows less.
enum class MailStanding {
  /// Other mails refer to it; none of its copies was read.
  referenced,
  /// Nothing that concerns the user: a program's, a newsletter, list traffic that does not name them.
  passedOver,
  /// To the user in the company of others, or list traffic that answers the user.
  group,
  /// To the user alone.
  direct,
  /// The user's own.
  own,
};

} // namespace orvan
