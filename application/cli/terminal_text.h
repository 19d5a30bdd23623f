#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orvan {

/// How many columns the terminal has that standard output goes to; nothing when it goes elsewhere.
std::optional<std::size_t> columnsOfStandardOutput();

/// How many columns `text` takes on a terminal.
std::size_t columnsOf(std::string_view text);

/// `text` when it fits in so many columns, or else its beginning with "..." that does. Characters stay whole, whatever
/// they are made of, and take the columns that terminals give them.
std::string cutToColumns(std::string_view text, std::size_t columns);

} // namespace orvan
