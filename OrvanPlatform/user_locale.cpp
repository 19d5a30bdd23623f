#include "OrvanPlatform/user_locale.h"

#include <cstdlib>

namespace orvan {

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
  return icu::Locale::createFromName(language.c_str());
}

} // namespace orvan
