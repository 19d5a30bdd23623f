#pragma once

#include <functional>
#include <string>
#include <vector>

namespace orvan {

/// How a program came to its end.
struct ProgramEnd {
  enum class Kind {
    /// With exit code 0.
    succeeded,
    /// With another one, or it could not be started.
    failed,
    /// By a signal.
    killed,
  };

  Kind kind;
  /// What it wrote to its standard output.
  std::string output;
};

/// Runs one program at a time. Used from the thread of one executor; destroying it kills what runs, and nobody is told.
class ProgramRunner {
 public:
  using Ended = std::move_only_function<void(ProgramEnd)>;

  virtual ~ProgramRunner() = default;

  /// Runs the program that the first word is the path of, with the others as its arguments. `ended` is called once, on
  /// the executor and never inside this call. Until then nothing else may be run.
  virtual void run(std::vector<std::string> words, Ended ended) = 0;

  /// Kills what runs; its end is told as any other. Nothing happens when nothing runs.
  virtual void kill() = 0;
};

} // namespace orvan
