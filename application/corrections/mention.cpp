#include "application/corrections/mention.h"

namespace orvan {
namespace {

bool isOfAWord(char byte) noexcept {
  const auto code = static_cast<unsigned char>(byte);
  return code >= 0x80U || (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

} // namespace

bool isMentioned(std::string_view name, std::string_view text) noexcept {
  if (name.empty()) {
    return false;
  }
  for (auto begin = text.find(name); begin != std::string_view::npos; begin = text.find(name, begin + 1)) {
    const auto end = begin + name.size();
    const bool beginsWord = begin == 0 || !isOfAWord(text[begin - 1]);
    const bool endsWord = end == text.size() || !isOfAWord(text[end]);
    if (beginsWord && endsWord) {
      return true;
    }
  }
  return false;
}

} // namespace orvan
