#pragma once

#include <string_view>

namespace orvan {

/// Whether `text` holds `name` as words of its own, not as a part of longer ones. Letters beyond ASCII count as parts
/// of words. An empty name is nowhere mentioned.
bool isMentioned(std::string_view name, std::string_view text) noexcept;

} // namespace orvan
