#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "application/sources/changed_mail.h"
#include "application/sources/source_fault.h"

namespace orvan {

/// What the store keeps of why a source could not be read: the first of what was wrong, and how much more there was.
struct KeptFault {
  /// Its path below the source's; empty for the source itself.
  std::string name;
  SourceFault fault;
  std::size_t countMore;
};

/// As the store keeps it: sentences for the user. Of `troubles` there is at least one.
std::string keptFaultText(const std::vector<SourceTrouble>& troubles);

/// For a program that says it in other words. Nothing of what a program with other sentences has kept.
std::optional<KeptFault> parseKeptFault(std::string_view text);

} // namespace orvan
