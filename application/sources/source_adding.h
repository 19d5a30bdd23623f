#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"
#include "application/sources/remembered_source.h"
#include "application/sources/source_discovery.h"
#include "application/sources/source_recognizer.h"

namespace orvan {

/// What became of a source that was to be remembered.
struct AddedSource {
  enum class Outcome {
    added,
    /// It was remembered before, and stays as it was.
    known,
    /// See the refusal.
    refused,
  };

  Outcome outcome;
  /// The source's own, or that of the one which stands in its way.
  std::int64_t number;
  /// A sentence for the user; empty when it was not refused.
  std::string refusal;
};

/// Remembers a source, unless it is remembered already, or one of its kind lies inside or around it: nothing is to be
/// read twice. Within the caller's transaction.
AddedSource addSource(const RecognizedSource& source, std::chrono::seconds usualInterval, Instant now,
                      Connection& connection);

/// Whether what lies there is brought in by one of the sources already.
bool isBroughtIn(const DiscoveredSource& source, const std::vector<RememberedSource>& known);

/// What to say of a path at which nothing can be remembered: of a file that is something else, what it is; else what is
/// wrong with it as a source. Nothing for errors of anything else.
std::optional<std::string> sentenceOnSourceToAdd(const std::error_code& code);

} // namespace orvan
