#pragma once

#include <cstddef>
#include <string>

namespace orvan {

// Mail from strangers may hold texts of any length; the store keeps as much as people read.

inline constexpr std::size_t mostSubjectCharacters = 500;
inline constexpr std::size_t mostPlaceCharacters = 300;
inline constexpr std::size_t mostNameCharacters = 200;
inline constexpr std::size_t mostMessageIDCharacters = 1000;

/// The first `count` characters (code points) of valid UTF-8. The memory of what is cut off is given back.
std::string leadingCharacters(std::string text, std::size_t count);

} // namespace orvan
