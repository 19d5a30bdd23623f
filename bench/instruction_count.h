#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvan::bench {

/// Runs this very program again with `arguments` under Valgrind and tells how many instructions it executed between the
/// beginning and the end of its countedWork; the same number at each run. `folder` takes Valgrind's files. Nothing when
/// Valgrind is not installed or the program failed.
std::optional<std::int64_t> instructionsOf(const std::vector<std::string>& arguments,
                                           const std::filesystem::path& folder);

/// Runs `work` as what is counted.
void countedWork(const std::function<void()>& work);

} // namespace orvan::bench
