#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "application/import/mail/reader_names.h"

namespace orvan {

/// The first question in a mail that waits for the user's answer, for showing to a person; nothing when there is none.
///
/// `ownWords` are its writer's, as ownWords() gives them. `names` say whom the writer may call by name: a question that
/// is put to another reader by name, or to everybody, is not the user's.
///
/// A question ends in "?" (or its full-width or Arabic form) outside web addresses, code and quotation marks. One that
/// no reasonable reader would answer is passed over: see isRhetorical(). It is returned on one line and has at most 300
/// characters (code points); a longer one is cut between two characters as its reader sees them and ends in "…". One of
/// a single word comes with the sentence before it. A mail that says nothing but "?" gives just that.
///
/// A pure function; may be called from any thread.
std::optional<std::string> firstQuestion(std::string_view ownWords, const ReaderNames& names = {});

/// Whether there is any question mark in `text`; without one there is no question.
bool hasQuestionMark(std::string_view text) noexcept;

} // namespace orvan
