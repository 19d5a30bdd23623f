#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orvan {

/// The settings of one section, by their names.
using Settings = std::map<std::string, std::string>;

/// The sections of a file of "[section]" and "name = value" lines, as programs keep their settings, in their order and
/// by their names. None when the file cannot be read.
std::vector<std::pair<std::string, Settings>> settingsIn(const std::filesystem::path& file);

/// Empty when it is not there.
std::string valueOf(const Settings& settings, const std::string& name);

} // namespace orvan
