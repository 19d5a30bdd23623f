#include "application/cli/progress_line.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <iostream>
#include <mutex>
#include <optional>

namespace orvan {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr std::chrono::seconds betweenLines{1};

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

double shareRead(SourceAmount amount) {
  return amount.total == 0 ? 0 : std::min(static_cast<double>(amount.read) / static_cast<double>(amount.total), 1.0);
}

/// As fast as batches were stored so far; nothing before there is one.
std::optional<Seconds> timeLeft(const ImportProgress& progress, ImportTimes times) {
  const double share = shareRead(progress.amount);
  if (progress.itemsStored == 0 || share == 0) {
    return std::nullopt;
  }
  const double items = static_cast<double>(progress.itemsRead) / share;
  return times.latestBatch * (items / static_cast<double>(progress.itemsStored)) - times.now;
}

double itemsPerSecond(const ImportProgress& progress, ImportTimes times) {
  return progress.itemsStored == 0 ? static_cast<double>(progress.itemsRead) / times.now.count()
                                   : static_cast<double>(progress.itemsStored) / times.latestBatch.count();
}

} // namespace

std::string progressText(const ImportProgress& progress, std::string_view items, ImportTimes times) {
  auto text = std::to_string(progress.itemsRead) + " " + std::string{items};
  const double share = shareRead(progress.amount);
  if (share == 1) {
    text += " read, storing the last of them";
  } else {
    text += (share > 0 ? ", " + whole(std::floor(share * 100)) + " %" : "") + ", " +
            whole(itemsPerSecond(progress, times)) + " a second";
  }
  const auto left = timeLeft(progress, times);
  return left ? text + ", " + inWords(*left) + " left" : text;
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
    std::cerr << "\r\033[K\033[?7l" + text() + "\033[?7h" << std::flush;
  }
}

std::string ProgressLine::text() {
  const auto progress = watch_.progress();
  const Seconds now = std::chrono::steady_clock::now() - start_;
  if (watch_.isStopRequested()) {
    return "Stopping after " + std::to_string(progress.itemsRead) + " " + std::string{items_} +
           " (once more ends at once) ...";
  }
  if (progress.itemsStored != itemsStored_) {
    itemsStored_ = progress.itemsStored;
    latestBatch_ = now;
  }
  return progressText(progress, items_, {now, latestBatch_});
}

} // namespace orvan
