#include "application/process/exec_texts.h"

#include <unistd.h>

#include <string_view>
#include <utility>

namespace orvan {

ExecTexts::ExecTexts(std::vector<std::string> texts) : texts_(std::move(texts)) {
  pointers_.reserve(texts_.size() + 1);
  for (auto& text : texts_) {
    pointers_.push_back(text.data());
  }
  pointers_.push_back(nullptr);
}

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& variables) {
  std::vector<std::string> texts;
  for (char** at = environ; *at != nullptr; ++at) {
    const std::string_view text{*at};
    if (!variables.contains(std::string{text.substr(0, text.find('='))})) {
      texts.emplace_back(text);
    }
  }
  for (const auto& [name, value] : variables) {
    texts.push_back(std::string{name}.append("=").append(value));
  }
  return texts;
}

} // namespace orvan
