#include "application/sources/source_adding.h"

#include <algorithm>
#include <filesystem>

#include "application/sources/source_fault.h"

namespace orvan {
namespace {

bool isInside(const std::filesystem::path& path, const std::filesystem::path& folder) {
  const auto [end, rest] = std::ranges::mismatch(folder, path);
  return end == folder.end();
}

} // namespace

AddedSource addSource(const RecognizedSource& source, std::chrono::seconds usualInterval, Instant now,
                      Connection& connection) {
  using enum AddedSource::Outcome;
  for (const auto& other : rememberedSources(connection)) {
    const auto number = std::to_string(other.number);
    if (other.path == source.path) {
      return {known, other.number, ""};
    }
    if (other.kind == source.kind && isInside(source.path, other.path)) {
      return {refused, other.number, "It lies inside source " + number + ", which brings it in already."};
    }
    if (other.kind == source.kind && isInside(other.path, source.path)) {
      auto refusal = "Source " + number + " lies inside it; take that off the list first ('orvan sources remove ";
      refusal += number + "').";
      return {refused, other.number, std::move(refusal)};
    }
  }
  rememberSource(source.kind, source.path, usualInterval, now, connection);
  return {added, rememberedSources(connection).back().number, ""};
}

bool isBroughtIn(const DiscoveredSource& source, const std::vector<RememberedSource>& known) {
  return std::ranges::any_of(known, [&](const RememberedSource& other) {
    return other.path == source.path || (other.kind == source.kind && isInside(source.path, other.path));
  });
}

std::optional<std::string> sentenceOnSourceToAdd(const std::error_code& code) {
  const auto sentence = sentenceOnSource(code);
  const bool isSomethingElse = sentence && code != SourceFault::becameSomethingElse &&
                               *sentence == make_error_code(SourceFault::becameSomethingElse).message();
  return isSomethingElse ? code.message() : sentence;
}

} // namespace orvan
