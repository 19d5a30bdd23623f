#include "OrvanPlatform/internal/user_locale.h"

#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace orvan::internal {
namespace {

/// How the system's locale names say that a language is written in the less usual of its scripts.
constexpr std::array<std::pair<std::string_view, const char*>, 3> scripts{
    {{"@latin", "Latn"}, {"@cyrillic", "Cyrl"}, {"@devanagari", "Deva"}}};

} // namespace

std::string userLocaleName() {
  // The order that POSIX gives the variables.
  for (const char* name : {"LC_ALL", "LC_TIME", "LANG"}) {
    const char* value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): callers may not change the environment.
    if (value != nullptr && *value != '\0') {
      return value;
    }
  }
  return "C";
}

icu::Locale userLocale(const std::string& name) {
  const auto language = name.substr(0, name.find_first_of(".@"));
  if (language == "C" || language == "POSIX") {
    return icu::Locale::getUS();
  }
  auto locale = icu::Locale::createFromName(language.c_str());
  for (const auto& [modifier, script] : scripts) {
    if (name.ends_with(modifier)) {
      return icu::Locale::createFromName(
          (std::string{locale.getLanguage()} + '_' + script + '_' + locale.getCountry()).c_str());
    }
  }
  return locale;
}

} // namespace orvan::internal
