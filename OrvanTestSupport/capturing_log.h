#pragma once

#include <string>
#include <vector>

#include "OrvanPlatform/log.h"
#include "OrvanPlatform/mutex.h"

namespace orvan {

/// A log that keeps its lines for a test to read.
class CapturingLog final : public LogSink {
 public:
  void write(const LogEntry& entry) noexcept override;

  std::vector<LogEntry> entries() const;
  /// The messages alone, oldest first.
  std::vector<std::string> messages() const;
  void clear();

 private:
  mutable Mutex mutex_;
  std::vector<LogEntry> entries_ ORVAN_GUARDED_BY(mutex_);
};

} // namespace orvan
