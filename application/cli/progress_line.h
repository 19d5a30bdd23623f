#pragma once

#include <chrono>
#include <string>
#include <string_view>
#include <thread>

#include "application/import/ledger/import_watch.h"

namespace orvan {

/// "96000 messages, 12 %, 18000 a second, about 2 min left": what there is to tell after so long a time of reading.
/// `items` names what is counted.
std::string progressText(const ImportProgress& progress, std::string_view items, std::chrono::duration<double> elapsed);

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
  std::string text() const;

  const ImportWatch& watch_;
  std::string_view items_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  /// Not running when there is no terminal.
  std::jthread thread_;
};

} // namespace orvan
