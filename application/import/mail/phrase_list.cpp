#include "application/import/mail/phrase_list.h"

#include <algorithm>

#include "OrvanPlatform/white_space.h"

namespace orvan {

PhraseList::PhraseList(std::string_view table) {
  while (!table.empty()) {
    const auto entry = table.substr(0, table.find_first_of("|\n"));
    table.remove_prefix(std::min(entry.size() + 1, table.size()));
    const auto phrase = trimmed(entry);
    if (phrase.ends_with('*')) {
      stems_.push_back(phrase.substr(0, phrase.size() - 1));
    } else if (!phrase.empty()) {
      phrases_.push_back(phrase);
    }
  }
  std::ranges::sort(phrases_);
}

bool PhraseList::contains(std::string_view words) const {
  return std::ranges::binary_search(phrases_, words);
}

bool PhraseList::beginOf(std::string_view words) const {
  constexpr int mostWords = 8;
  std::size_t end = 0;
  for (int count = 0; count < mostWords && end != std::string_view::npos && end < words.size(); ++count) {
    end = words.find(' ', end + (count == 0 ? 0 : 1));
    if (contains(words.substr(0, end))) {
      return true;
    }
  }
  return std::ranges::any_of(stems_, [words](std::string_view stem) { return words.starts_with(stem); });
}

bool PhraseList::containsWordOf(std::string_view words) const {
  while (!words.empty()) {
    const auto word = words.substr(0, words.find(' '));
    if (contains(word)) {
      return true;
    }
    words.remove_prefix(std::min(word.size() + 1, words.size()));
  }
  return false;
}

} // namespace orvan
