#pragma once

#include <cstdint>

namespace orvan::bench {

/// Counts the page misses of every connection that the process opens from now on; once, before the first.
void countPageMisses();

/// How many there were so far, those of closed connections included. While no connection is at work.
std::uintmax_t pageMisses();

} // namespace orvan::bench
