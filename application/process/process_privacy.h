#pragma once

namespace orvan {

/// From now on neither a crash dump nor another of the user's programs can take what this process holds in memory, and
/// files it creates are its owner's alone.
void keepMemoryOutOfCrashDumps() noexcept;

} // namespace orvan
