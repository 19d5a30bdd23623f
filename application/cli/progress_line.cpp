#include "application/cli/progress_line.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <iostream>
#include <mutex>

namespace orvan {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr std::chrono::seconds betweenLines{1};
/// Before that, an estimate would jump about.
constexpr Seconds soonestEstimate{3};

std::string whole(double number) {
  return std::to_string(static_cast<std::int64_t>(std::round(number)));
}

std::string inWords(Seconds remaining) {
  constexpr double step = 5;
  constexpr double minute = 60;
  constexpr double hour = 60 * minute;
  const double seconds = remaining.count();
  if (seconds < step) {
    return "a few seconds";
  }
  if (seconds < minute - step) {
    return "about " + whole(std::ceil(seconds / step) * step) + " s";
  }
  return seconds < 1.5 * hour ? "about " + whole(std::max(seconds / minute, 1.0)) + " min"
                              : "about " + whole(seconds / hour) + " h";
}

} // namespace

std::string progressText(const ImportProgress& progress, std::string_view items, Seconds elapsed) {
  auto text = std::to_string(progress.items) + " " + std::string{items};
  const double share =
      progress.amountTotal == 0
          ? 0
          : std::min(static_cast<double>(progress.amountRead) / static_cast<double>(progress.amountTotal), 1.0);
  if (progress.amountTotal > 0) {
    text += ", " + whole(std::floor(share * 100)) + " %";
  }
  if (share == 1) {
    return text + ", storing the last of them";
  }
  if (elapsed >= betweenLines) {
    text += ", " + whole(static_cast<double>(progress.items) / elapsed.count()) + " a second";
  }
  if (elapsed >= soonestEstimate && share > 0) {
    text += ", " + inWords(elapsed * ((1 - share) / share)) + " left";
  }
  return text;
}

ProgressLine::ProgressLine(const ImportWatch& watch, std::string_view items) : watch_(watch), items_(items) {
  if (isatty(STDERR_FILENO) != 0) {
    thread_ = std::jthread([this](const std::stop_token& end) { run(end); });
  }
}

ProgressLine::~ProgressLine() {
  if (thread_.joinable()) {
    thread_.request_stop();
    thread_.join();
    std::cerr << "\r\033[K" << std::flush;
  }
}

void ProgressLine::run(const std::stop_token& end) {
  std::mutex mutex;
  std::condition_variable_any ended;
  std::unique_lock lock(mutex);
  while (!ended.wait_for(lock, end, betweenLines, [&end] { return end.stop_requested(); })) {
    // A line that is too long for the terminal is cut off by it: one that went on below could not be written over.
    std::cerr << "\r\033[K\033[?7l" << text() << "\033[?7h" << std::flush;
  }
}

std::string ProgressLine::text() const {
  const auto progress = watch_.progress();
  return watch_.isStopRequested() ? "Stopping after " + std::to_string(progress.items) + " " + std::string{items_} +
                                        " (once more ends at once) ..."
                                  : progressText(progress, items_, std::chrono::steady_clock::now() - start_);
}

} // namespace orvan
