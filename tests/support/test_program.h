#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace orvan {

/// A program that runs for the length of a test; killed with it.
class TestProgram {
 public:
  /// `variables` come on top of this process's environment. Its standard output can be read line by line; its standard
  /// error goes to `errorFile`, or where this process's goes.
  TestProgram(const std::vector<std::string>& words, const std::map<std::string, std::string>& variables = {},
              const std::string& errorFile = {});
  ~TestProgram();
  TestProgram(const TestProgram&) = delete;
  TestProgram& operator=(const TestProgram&) = delete;

  std::string outputLine();
  pid_t process() const noexcept { return process_; }
  /// Sends the signal; does not wait.
  void signal(int number) const;
  /// Waits for its end and returns its exit status, or 128 and the signal that ended it. Only once.
  int end();

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

} // namespace orvan
