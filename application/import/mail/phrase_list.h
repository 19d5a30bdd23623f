#pragma once

#include <string_view>
#include <vector>

namespace orvan {

/// Words and phrases to recognise: lower case, one blank between words, straight apostrophes, no other marks.
class PhraseList {
 public:
  /// `table` has one phrase between each two "|" or line breaks, and outlives the list. A phrase that ends in "*" may
  /// go on within a word, as scripts without blanks need.
  explicit PhraseList(std::string_view table);

  bool contains(std::string_view words) const;
  /// Whether one of the phrases stands at the start of `words`.
  bool beginOf(std::string_view words) const;
  bool containsWordOf(std::string_view words) const;

 private:
  std::vector<std::string_view> phrases_;
  std::vector<std::string_view> stems_;
};

} // namespace orvan
