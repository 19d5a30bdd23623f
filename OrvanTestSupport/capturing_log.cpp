#include "OrvanTestSupport/capturing_log.h"

namespace orvan {

void CapturingLog::write(const LogEntry& entry) noexcept {
  const MutexLock lock{mutex_};
  entries_.push_back(entry);
}

std::vector<LogEntry> CapturingLog::entries() const {
  const MutexLock lock{mutex_};
  return entries_;
}

std::vector<std::string> CapturingLog::messages() const {
  const MutexLock lock{mutex_};
  std::vector<std::string> texts;
  texts.reserve(entries_.size());
  for (const auto& entry : entries_) {
    texts.push_back(entry.message);
  }
  return texts;
}

void CapturingLog::clear() {
  const MutexLock lock{mutex_};
  entries_.clear();
}

} // namespace orvan
