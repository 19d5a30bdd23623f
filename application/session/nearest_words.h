#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvan {

/// How many letters have to be put in, taken out or changed to make the one of the other. A word that is only a
/// beginning needs none.
std::size_t stepsBetween(std::string_view word, std::string_view known);

/// Those of `known` that are most like `word`, as a slip of the hand or a beginning makes it: three at most, in their
/// order.
std::vector<std::string> nearestWords(std::string_view word, const std::vector<std::string>& known);

} // namespace orvan
