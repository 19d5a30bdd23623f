#pragma once

#include <memory>
#include <utility>

#include "OrvanPlatform/log.h"

namespace orvan::internal {

/// The one log of the follow-up subsystem.
inline LogChannel followUpLog(std::shared_ptr<LogSink> sink) {
  return LogChannel{std::move(sink), "follow-up-scheduler"};
}

} // namespace orvan::internal
