#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvan {

/// Those of `known` that are most like `word`, as a slip of the hand or a beginning makes it: three at most, in their
/// order.
std::vector<std::string> nearestWords(std::string_view word, const std::vector<std::string>& known);

} // namespace orvan
