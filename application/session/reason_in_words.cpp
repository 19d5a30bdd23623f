#include "application/session/reason_in_words.h"

namespace orvan {

std::string reasonInWords(const AttentionWhyNowItem& item) {
  std::string words{item.headline()};
  for (const auto& line : item.evidenceLines()) {
    words += " " + line;
  }
  return words;
}

} // namespace orvan
