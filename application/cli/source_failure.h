#pragma once

#include <optional>
#include <string>
#include <system_error>

namespace orvan {

/// What to say of a mailbox or calendar that cannot be imported, in a sentence that stands behind its path. Nothing for
/// errors of anything else.
std::optional<std::string> sourceFailureSentence(const std::error_code& code);

} // namespace orvan
