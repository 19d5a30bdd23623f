#pragma once

#include <gmime/gmime.h>

#include <memory>

namespace orvan {

/// Releases one reference of a GMime object.
struct ReleaseObject {
  void operator()(void* object) const noexcept { g_object_unref(object); }
};

/// Frees a text that GLib allocated.
struct FreeText {
  void operator()(char* text) const noexcept { g_free(text); }
};

struct ReleaseDate {
  void operator()(GDateTime* date) const noexcept { g_date_time_unref(date); }
};

using GMimeAddresses = std::unique_ptr<InternetAddressList, ReleaseObject>;
using GMimeMediaType = std::unique_ptr<GMimeContentType, ReleaseObject>;
using GMimeDate = std::unique_ptr<GDateTime, ReleaseDate>;
using GMimeText = std::unique_ptr<char, FreeText>;

/// GMime's tables, which every GMime call needs, made by the first caller on any thread. They stay until the program
/// ends: other users of GMime in the program may still need them.
inline void prepareGMime() {
  static const bool prepared = (g_mime_init(), true);
  static_cast<void>(prepared);
}

} // namespace orvan
