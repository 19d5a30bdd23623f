#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>

namespace orvan {

/// One logical line of a calendar or of contact cards: continuation lines are joined to it.
struct ContentLine {
  /// Where the line begins in the file.
  std::uint64_t offset;
  /// Without its line ends. Holds no NUL, which a parser would take for the end.
  std::string text;
  /// The line was longer than any line we need, and `text` holds its beginning only.
  bool cut;

  /// The property's name in upper case.
  std::string name() const;
  /// What follows the first colon outside quotes, without blanks around it.
  std::string value() const;
};

/// Reads content lines (RFC 5545, RFC 6350), of bounded length however long the file's own lines are.
class ContentLineReader {
 public:
  /// Throws Error with `unreadable`, which also says that the file fails later.
  ContentLineReader(const std::filesystem::path& file, std::error_code unreadable);

  /// The next line, or nothing at the end. Throws Error.
  std::optional<ContentLine> next();
  /// Where the next line begins.
  std::uint64_t position() const noexcept { return position_; }
  /// Goes on at a line's offset.
  void seek(std::uint64_t offset);

 private:
  std::optional<ContentLine> readLine();
  void readPhysicalLine(ContentLine& line);
  int take();

  std::error_code unreadable_;
  std::ifstream stream_;
  std::uint64_t position_ = 0;
};

} // namespace orvan
