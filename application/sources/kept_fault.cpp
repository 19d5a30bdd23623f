#include "application/sources/kept_fault.h"

#include <charconv>
#include <system_error>

namespace orvan {
namespace {

constexpr std::string_view behindName = ": ";
constexpr std::string_view beforeCount = " And ";
constexpr std::string_view behindCount = " more.";

/// Removes it, if the text begins with it.
bool take(std::string_view beginning, std::string_view& text) {
  const bool isThere = text.starts_with(beginning);
  text.remove_prefix(isThere ? beginning.size() : 0);
  return isThere;
}

std::optional<std::size_t> parseCountMore(std::string_view text) {
  if (text.empty()) {
    return 0;
  }
  std::size_t count = 0;
  if (!take(beforeCount, text)) {
    return std::nullopt;
  }
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return error == std::errc{} && text == behindCount ? std::optional{count} : std::nullopt;
}

std::optional<KeptFault> parseAs(SourceFault fault, std::string_view text) {
  const auto sentence = make_error_code(fault).message();
  const auto begin = text.rfind(sentence);
  if (begin == std::string_view::npos) {
    return std::nullopt;
  }
  auto name = text.substr(0, begin);
  const auto countMore = parseCountMore(text.substr(begin + sentence.size()));
  if (!countMore || (!name.empty() && !name.ends_with(behindName))) {
    return std::nullopt;
  }
  name.remove_suffix(name.empty() ? 0 : behindName.size());
  return KeptFault{std::string{name}, fault, *countMore};
}

} // namespace

std::string keptFaultText(const std::vector<SourceTrouble>& troubles) {
  const auto& first = troubles.front();
  auto text = first.name;
  text += first.name.empty() ? "" : behindName;
  text += first.sentence;
  if (troubles.size() > 1) {
    text += beforeCount;
    text += std::to_string(troubles.size() - 1);
    text += behindCount;
  }
  return text;
}

std::optional<KeptFault> parseKeptFault(std::string_view text) {
  using enum SourceFault;
  for (const auto fault :
       {missing, gone, notPermitted, notAFile, holdsNothing, emptied, becameSomethingElse, tooLarge, cannotRead}) {
    if (auto kept = parseAs(fault, text)) {
      return kept;
    }
  }
  return std::nullopt;
}

} // namespace orvan
