#pragma once

#include <map>
#include <string>
#include <vector>

namespace orvan {

/// Texts as exec() takes them: pointers to each, and a null pointer at the end.
class ExecTexts {
 public:
  explicit ExecTexts(std::vector<std::string> texts);
  ExecTexts(const ExecTexts&) = delete;
  ExecTexts& operator=(const ExecTexts&) = delete;
  ~ExecTexts() = default;

  /// Valid while this lives.
  char* const* get() const noexcept { return pointers_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

/// This process's environment with `variables` on top of it, in the form NAME=value. Nothing may change the environment
/// at the same time.
std::vector<std::string> environmentWith(const std::map<std::string, std::string>& variables);

} // namespace orvan
