#pragma once

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>

namespace orvan {

/// How an import shares the store with other programs.
enum class ImportPace {
  /// As fast as it goes: others may wait for seconds.
  swift,
  /// Others wait for a second or so now and then, and it takes up to twice as long.
  considerate,
};

/// How many mails go into the next batch. One thread asks, another one tells how long the last took.
///
/// Programs wait for each other's writing five seconds at most. At a considerate pace a batch keeps the store for about
/// a second, whatever the machine. It never gets very small, because what a batch writes is mostly pages that the next
/// one writes again: half as many mails take far more than half the time.
class BatchSize {
 public:
  BatchSize(std::size_t most, ImportPace pace)
      : pace_(pace), most_(most), size_(pace == ImportPace::swift ? most : std::min(most, first)) {}

  std::size_t get() const noexcept { return size_; }

  void tellWritten(std::size_t mails, std::chrono::duration<double> took) noexcept {
    // A short batch, such as a source's last one, tells nothing of longer ones.
    if (pace_ == ImportPace::swift || mails < fewest) {
      return;
    }
    const double scale = wanted / std::max(took, wanted / growth);
    const auto fitting = static_cast<std::size_t>(static_cast<double>(mails) * scale);
    size_ = std::min(std::max(fitting, fewest), most_);
  }

 private:
  static constexpr std::size_t first = 16 * std::size_t{1024};
  static constexpr std::size_t fewest = 8 * std::size_t{1024};
  static constexpr std::chrono::duration<double> wanted{1};
  static constexpr double growth = 1.5;

  ImportPace pace_;
  std::size_t most_;
  std::atomic<std::size_t> size_;
};

} // namespace orvan
