#pragma once

#include <string_view>

namespace orvan {

/// `text` without leading and trailing Unicode white space and line breaks (the White_Space property). The view lies
/// within `text`. Bytes that are not UTF-8 are not white space.
std::string_view trimmed(std::string_view text) noexcept;

/// Whether `text` is not empty and equal to its trimmed form: the condition on every identifier and key.
bool isTrimmedAndNotEmpty(std::string_view text) noexcept;

} // namespace orvan
