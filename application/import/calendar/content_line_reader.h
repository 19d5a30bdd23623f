#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

namespace orvan {

/// One logical line of a calendar file: continuation lines are joined to it.
struct ContentLine {
  /// Where the line begins in the file.
  std::uint64_t offset;
  /// Without its line ends. Holds no NUL, which the calendar parser would take for the end.
  std::string text;
  /// The line was longer than any line we need, and `text` holds its beginning only.
  bool cut;

  /// The property's name in upper case.
  std::string name() const;
  /// What follows the first colon outside quotes, without blanks around it.
  std::string value() const;
};

/// Reads content lines, of bounded length however long the file's own lines are.
class ContentLineReader {
 public:
  /// Throws Error(CalendarSourceError::cannotRead).
  explicit ContentLineReader(const std::filesystem::path& file);

  /// The next line, or nothing at the end. Throws Error(CalendarSourceError::cannotRead).
  std::optional<ContentLine> next();
  /// Goes on at a line's offset.
  void seek(std::uint64_t offset);

 private:
  std::optional<ContentLine> readLine();
  void readPhysicalLine(ContentLine& line);
  int take();

  std::ifstream stream_;
  std::uint64_t position_ = 0;
};

} // namespace orvan
