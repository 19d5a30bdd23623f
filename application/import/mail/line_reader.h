#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>

namespace orvan {

/// Reads a file line by line through one fixed buffer. A line longer than the buffer arrives in several pieces, so a
/// file without any line break costs no more memory than another.
class LineReader {
 public:
  struct Piece {
    /// With its line break, except at the end of the file or when the line goes on in the next piece. Valid until the
    /// next call of advance().
    std::string_view text;
    bool startsLine = false;
  };

  /// Opens `path` and begins at that byte, where a line has to begin. Throws Error with a MailSourceError; its text
  /// names `path` as given.
  explicit LineReader(const std::filesystem::path& path, std::uint64_t startAt = 0);

  /// The piece at the current position, null at the end of the file. Looking does not move.
  const Piece* current() const noexcept { return piece_.text.empty() ? nullptr : &piece_; }
  /// Whether the line before the current one is blank; true on the first line.
  bool followsBlankLine() const noexcept { return followsBlankLine_; }
  /// Moves to the next piece. Throws Error when the file cannot be read on.
  void advance();

  /// Bytes before the current piece.
  std::uint64_t position() const noexcept { return position_; }
  /// The file's size when it was opened; 0 when it has none, as a pipe.
  std::uint64_t fileSize() const noexcept { return fileSize_; }

 private:
  class File {
   public:
    explicit File(const std::filesystem::path& path);
    ~File();
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    int descriptor;
  };

  void findPiece(bool startsLine);
  void fill();

  File file_;
  std::unique_ptr<char[]> buffer_;
  /// What was read and not yet passed, within the buffer.
  std::string_view unread_;
  /// Empty at the end of the file.
  Piece piece_;
  bool followsBlankLine_ = true;
  bool currentLineIsBlank_ = false;
  bool atEnd_ = false;
  std::uint64_t position_;
  std::uint64_t fileSize_;
};

} // namespace orvan
