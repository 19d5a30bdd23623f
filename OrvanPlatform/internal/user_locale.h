#pragma once

#include <unicode/locid.h>

#include <string>

namespace orvan::internal {

/// The name of the locale that the user writes dates in, from the environment (LC_ALL, LC_TIME, LANG); "C" when
/// nothing says.
std::string userLocaleName();

/// The same as ICU knows it. "C" and "POSIX", which say nothing about how people write, read as United States English.
icu::Locale userLocale(const std::string& name);

} // namespace orvan::internal
