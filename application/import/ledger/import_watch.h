#pragma once

#include <atomic>
#include <cstdint>

namespace orvan {

/// How much of a source is read, in what it measures itself by: bytes, files or events. A total of 0 is not known.
struct SourceAmount {
  std::uint64_t read = 0;
  std::uint64_t total = 0;

  bool operator==(const SourceAmount&) const = default;
};

/// How far an import is. Its items are the messages of a mailbox, or the events of a calendar.
struct ImportProgress {
  std::int64_t itemsRead = 0;
  /// Those of whole batches only.
  std::int64_t itemsStored = 0;
  SourceAmount amount;

  bool operator==(const ImportProgress&) const = default;
};

/// Lets other threads look at an import while it runs, and end it early. One watch may serve several imports, one after
/// the other. All of it may be called from any thread, and requestStop() from a signal handler too.
class ImportWatch {
 public:
  /// The numbers need not be of quite the same moment.
  ImportProgress progress() const noexcept { return {itemsRead_, itemsStored_, {amountRead_, amountTotal_}}; }

  /// The import reads no further, keeps what it has read so far, and returns once that is written. A request stays: an
  /// import that begins later reads nothing.
  void requestStop() noexcept { isStopRequested_ = true; }
  bool isStopRequested() const noexcept { return isStopRequested_; }

  // For the importers.
  void tellRead(std::int64_t items, SourceAmount amount) noexcept {
    itemsRead_ = items;
    amountRead_ = amount.read;
    amountTotal_ = amount.total;
  }
  void tellStored(std::int64_t items) noexcept { itemsStored_ = items; }

 private:
  static_assert(std::atomic<bool>::is_always_lock_free, "A signal handler can wait for no lock.");

  std::atomic<std::int64_t> itemsRead_ = 0;
  std::atomic<std::int64_t> itemsStored_ = 0;
  std::atomic<std::uint64_t> amountRead_ = 0;
  std::atomic<std::uint64_t> amountTotal_ = 0;
  std::atomic<bool> isStopRequested_ = false;
};

} // namespace orvan
