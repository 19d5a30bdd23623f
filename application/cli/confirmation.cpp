#include "application/cli/confirmation.h"

#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string_view>

namespace orvan {

bool canAsk() {
  return isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0;
}

/// On standard error, because standard output may go elsewhere, as with --json.
bool isConfirmed(const std::string& question) {
  if (!canAsk()) {
    return false;
  }
  std::cout.flush();
  std::cerr << question << " [y/N] " << std::flush;
  std::string answer;
  std::getline(std::cin, answer);
  std::ranges::transform(answer, answer.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return answer == "y" || answer == "yes";
}

} // namespace orvan
