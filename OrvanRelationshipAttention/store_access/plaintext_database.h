#pragma once

#include <filesystem>
#include <system_error>

namespace orvan {

/// Throws Error with `rejection` when the file at `path` is an SQLite database without encryption, which must never be
/// taken for the store. A missing file passes, and so does one too short to tell. A file that is there and cannot be
/// read throws Error with the system's reason.
void rejectPlaintextDatabase(const std::filesystem::path& path, std::error_code rejection);

} // namespace orvan
