#pragma once

#include <QString>
#include <filesystem>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"
#include "application/sources/source_adding.h"
#include "application/sources/source_recognizer.h"

namespace orvan {

/// What became of a source that the user wants to be read.
struct SourceAddition {
  RecognizedSource source;
  AddedSource::Outcome outcome;
  /// Of a refused one, what is in its way.
  std::filesystem::path other;
};

/// On the store's thread, within a transaction.
std::vector<SourceAddition> addSources(const std::vector<RecognizedSource>& sources, Instant now,
                                       Connection& connection);

/// A sentence.
QString inWords(const SourceAddition& addition);

} // namespace orvan
