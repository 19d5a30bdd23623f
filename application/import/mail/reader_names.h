#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "application/import/mail/mail_message.h"

namespace orvan {

/// By what a mail's writer may call its readers: single words, lower-cased.
struct ReaderNames {
  std::vector<std::string> own;
  /// Of readers who are not the user; without words that are the user's as well.
  std::vector<std::string> others;
};

/// The words of the names and mailboxes in To and Cc. `ownAddresses` are the user's, lower-cased; the sender is no
/// reader.
ReaderNames readerNames(const MailMessage& message, const std::set<std::string>& ownAddresses);

enum class Addressee {
  nobodyByName,
  user,
  somebodyElse,
};

/// Whom the start of a text calls by name, as "Anna, ...", "@Anna ...", "Hi Bob and Anna, ..." or "Bob: ..." do: the
/// user when one of the names is theirs.
struct Address {
  Addressee addressee = Addressee::nobodyByName;
  /// It stands alone or greets, and so holds for what follows in the mail, not only in its paragraph.
  bool isGreeting = false;
};
Address addressAtStart(std::string_view text, const ReaderNames& names);

/// Whom words within a question or at its end call by name: "I approve, so Bob, could you go ahead?", "Is it yours,
/// Anna?"
Addressee addresseeWithin(std::string_view sentence, const ReaderNames& names);

} // namespace orvan
