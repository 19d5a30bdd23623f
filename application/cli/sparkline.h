#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace orvan {

/// What a line of counts is drawn with: blocks of eight heights, or the counts themselves, 9 for what is more.
enum class SparklineStyle { blocks, digits };

/// Blocks where the user's locale (LC_ALL, LC_CTYPE or LANG) says that the terminal shows UTF-8.
SparklineStyle sparklineStyleOfLocale();

/// The sums of `counts`, `together` at a time; from the last on, so that the first sum may be of fewer.
std::vector<std::int64_t> summedUp(std::span<const std::int64_t> counts, std::size_t together);

/// A character for each count, a dot for none. A block is as high as the count is beside `most`, whoever has that many.
std::string sparkline(std::span<const std::int64_t> counts, std::int64_t most, SparklineStyle style);

} // namespace orvan
