#include "application/cli/copy_progress_line.h"

#include <unistd.h>

#include <iostream>

namespace orvan {
namespace {

constexpr std::chrono::milliseconds betweenCopyLines{500};

} // namespace

CopyProgressLine::CopyProgressLine(std::string_view doing)
    : doing_(doing), isTerminal_(isatty(STDERR_FILENO) != 0), next_(Clock::now() + betweenCopyLines) {}

CopyProgressLine::~CopyProgressLine() {
  if (isShown_) {
    std::cerr << "\r\033[K" << std::flush;
  }
}

CopyProgress CopyProgressLine::progress() {
  return [this](std::int64_t copied, std::int64_t total) { show(copied, total); };
}

void CopyProgressLine::show(std::int64_t copied, std::int64_t total) {
  const auto now = Clock::now();
  if (!isTerminal_ || now < next_ || total == 0) {
    return;
  }
  constexpr int whole = 100;
  std::cerr << "\r\033[K" << doing_ << ": " << copied * whole / total << " %" << std::flush;
  isShown_ = true;
  next_ = now + betweenCopyLines;
}

} // namespace orvan
