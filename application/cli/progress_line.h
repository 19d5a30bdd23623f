#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <thread>

#include "application/import/ledger/import_watch.h"

namespace orvan {

/// Measured from the beginning of an import.
struct ImportTimes {
  std::chrono::duration<double> now;
  /// When the latest batch was stored.
  std::chrono::duration<double> latestBatch;
};

/// "96000 messages, 12 %, 18000 a second, about 2 min left". `items` names what is counted. Reading runs ahead of
/// storing and tells little of how long the rest takes, so the time left is known once a batch is stored.
std::string progressText(const ImportProgress& progress, std::string_view items, ImportTimes times);

/// One line on the terminal that says every second how far an import is, and that its end was asked for. Nothing when
/// standard error is no terminal. Nobody else may write there meanwhile; the destructor takes the line away.
class ProgressLine {
 public:
  /// `watch` and the text of `items` must outlive this.
  ProgressLine(const ImportWatch& watch, std::string_view items);
  ~ProgressLine();
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

 private:
  void run(const std::stop_token& end);
  std::string text();

  const ImportWatch& watch_;
  std::string_view items_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  // Of the thread.
  std::int64_t itemsStored_ = 0;
  std::chrono::duration<double> latestBatch_{0};
  /// Not running when there is no terminal.
  std::jthread thread_;
};

} // namespace orvan
