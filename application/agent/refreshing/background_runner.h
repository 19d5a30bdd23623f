#pragma once

#include <memory>
#include <string>
#include <vector>

#include "OrvanPlatform/executor.h"
#include "application/agent/refreshing/program_runner.h"

namespace orvan {

/// Runs programs so that the user does not feel them: they get the processor and the disk when nobody else wants them.
/// They read nothing, and what they write to standard error is dropped.
///
/// A program dies with the thread that started it, however that ends, and is in a process group of its own, which is
/// killed as a whole. One that writes more than 16 MiB is killed, too.
class BackgroundRunner final : public ProgramRunner {
 public:
  explicit BackgroundRunner(Executor executor);
  ~BackgroundRunner() override;
  BackgroundRunner(const BackgroundRunner&) = delete;
  BackgroundRunner& operator=(const BackgroundRunner&) = delete;

  void run(std::vector<std::string> words, Ended ended) override;
  void kill() noexcept override;

 private:
  class Run;

  Executor executor_;
  /// The latest one, which may have ended.
  std::weak_ptr<Run> run_;
};

} // namespace orvan
