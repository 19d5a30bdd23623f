#pragma once

#include <chrono>
#include <string_view>

#include "OrvanSpineCore/encrypted_store.h"

namespace orvan {

/// One line on the terminal that says how far the copying of a store is, once that takes longer than a moment. Nothing
/// where standard error is no terminal.
class CopyProgressLine {
 public:
  /// The text of `doing` must outlive this.
  explicit CopyProgressLine(std::string_view doing);
  /// Takes the line away.
  ~CopyProgressLine();
  CopyProgressLine(const CopyProgressLine&) = delete;
  CopyProgressLine& operator=(const CopyProgressLine&) = delete;

  /// Refers to this.
  CopyProgress progress();

 private:
  using Clock = std::chrono::steady_clock;

  void show(std::int64_t copied, std::int64_t total);

  std::string_view doing_;
  bool isTerminal_;
  Clock::time_point next_;
  bool isShown_ = false;
};

} // namespace orvan
