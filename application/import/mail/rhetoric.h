#pragma once

#include <string_view>

#include "application/import/mail/sentences.h"

namespace orvan {

/// Whether nobody waits for an answer to `question`, a sentence that ends in a question mark: it is a courtesy ("How
/// are you?"), a figure of speech ("Who knows?"), a joke, a formula or an advertisement ("Questions? Call us."), the
/// report of somebody's question, or its writer answers it on the spot. `previous` is the sentence before it.
///
/// Tags that ask for a confirmation ("You'll come, right?") are questions.
bool isRhetorical(const Sentence& question, std::string_view previous);

/// Whether `question` says no more than "OK?", so that it takes the sentence before it to know what is asked.
bool asksForConsent(std::string_view question);

/// Whether `question` is put to whoever knows or likes ("Does anybody have a ladder?") rather than to its reader.
bool asksEverybody(std::string_view question);

} // namespace orvan
