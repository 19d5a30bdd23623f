#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvan {

/// The key in a link to a person, "orvan://person/KEY"; nothing when it is none. Links hold keys alone, which tell
/// nothing of whom they mean: browsers and mail programs remember them.
std::optional<std::string> personKeyIn(std::string_view link);

} // namespace orvan
