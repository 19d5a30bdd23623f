#include "application/sources/settings_file.h"

#include <fstream>
#include <string_view>

#include "OrvanPlatform/white_space.h"

namespace orvan {

std::vector<std::pair<std::string, Settings>> settingsIn(const std::filesystem::path& file) {
  std::vector<std::pair<std::string, Settings>> sections;
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    const std::string text{trimmed(line)};
    if (text.starts_with('[') && text.ends_with(']')) {
      sections.emplace_back(text.substr(1, text.size() - 2), Settings{});
    } else if (const auto equals = text.find('='); equals != std::string::npos && !sections.empty()) {
      std::string value{trimmed(std::string_view{text}.substr(equals + 1))};
      if (value.size() > 1 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front()) {
        value = value.substr(1, value.size() - 2);
      }
      sections.back().second.emplace(trimmed(std::string_view{text}.substr(0, equals)), std::move(value));
    }
  }
  return sections;
}

std::string valueOf(const Settings& settings, const std::string& name) {
  const auto found = settings.find(name);
  return found == settings.end() ? "" : found->second;
}

} // namespace orvan
