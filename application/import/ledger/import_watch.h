#pragma once

#include <atomic>
#include <cstdint>

namespace orvan {

/// How far an import has read.
struct ImportProgress {
  /// Messages of a mailbox, or events of a calendar.
  std::int64_t items = 0;
  /// In what the source measures itself by: bytes, files or events. A total of 0 is not known.
  std::uint64_t amountRead = 0;
  std::uint64_t amountTotal = 0;

  bool operator==(const ImportProgress&) const = default;
};

/// Lets other threads look at an import while it runs, and end it early. One watch may serve several imports, one after
/// the other. All of it may be called from any thread, and requestStop() from a signal handler too.
class ImportWatch {
 public:
  /// The three numbers need not be of quite the same moment.
  ImportProgress progress() const noexcept { return {items_, amountRead_, amountTotal_}; }

  /// The import reads no further, keeps what it has read so far, and returns once that is written. A request stays: an
  /// import that begins later reads nothing.
  void requestStop() noexcept { isStopRequested_ = true; }
  bool isStopRequested() const noexcept { return isStopRequested_; }

  /// For the importers.
  void tell(const ImportProgress& progress) noexcept {
    items_ = progress.items;
    amountRead_ = progress.amountRead;
    amountTotal_ = progress.amountTotal;
  }

 private:
  static_assert(std::atomic<bool>::is_always_lock_free, "A signal handler can wait for no lock.");

  std::atomic<std::int64_t> items_ = 0;
  std::atomic<std::uint64_t> amountRead_ = 0;
  std::atomic<std::uint64_t> amountTotal_ = 0;
  std::atomic<bool> isStopRequested_ = false;
};

} // namespace orvan
