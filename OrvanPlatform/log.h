#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvan {

/// One named value of a log line. All fields are public: never give one a key or personal text.
struct LogField {
  std::string name;
  std::string value;
};

/// One line as it reaches the log: always at the default level (a notice, in the words of syslog).
struct LogEntry {
  std::string subsystem;
  std::string category;
  /// What happened, followed by " name=value" for each field.
  std::string message;
  std::vector<LogField> fields;
};

/// Where log lines go. May be called from any thread; never throws and never waits for a reader.
class LogSink {
 public:
  virtual ~LogSink() = default;
  virtual void write(const LogEntry& entry) noexcept = 0;
};

/// The system journal when there is one, else JSON lines on standard error.
std::shared_ptr<LogSink> systemLogSink();

/// The system journal when there is one, else nothing: for a program whose standard error is for people to read.
std::shared_ptr<LogSink> journalOrNoLogSink();

/// One JSON object a line on a file descriptor, which stays the caller's: "subsystem", "category", "level", "message"
/// and each field by its name. A line is lost, and nothing else happens, when the descriptor takes no more.
std::shared_ptr<LogSink> jsonLinesLogSink(int descriptor);

/// The log of one category. Cheap to copy; copies write to the same sink.
class LogChannel {
 public:
  LogChannel(std::shared_ptr<LogSink> sink, std::string category);

  /// Writes "event name=value name=value".
  void write(std::string_view event, std::initializer_list<LogField> fields = {}) const;

 private:
  std::shared_ptr<LogSink> sink_;
  std::string category_;
};

} // namespace orvan
