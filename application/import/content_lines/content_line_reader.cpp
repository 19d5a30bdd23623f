#include "application/import/content_lines/content_line_reader.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/white_space.h"

namespace orvan {
namespace {

constexpr std::size_t longestLine = 256UZ * 1024UZ;
constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

constexpr int endOfFile = std::char_traits<char>::eof();

std::size_t colonOf(std::string_view line) {
  bool quoted = false;
  for (std::size_t at = 0; at < line.size(); ++at) {
    quoted = quoted != (line[at] == '"');
    if (line[at] == ':' && !quoted) {
      return at;
    }
  }
  return line.size();
}

} // namespace

std::string ContentLine::name() const {
  std::string name = text.substr(0, text.find_first_of(";:"));
  std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return name;
}

std::string ContentLine::value() const {
  const auto colon = colonOf(text);
  return colon == text.size() ? std::string{} : std::string{trimmed(std::string_view{text}.substr(colon + 1))};
}

ContentLineReader::ContentLineReader(const std::filesystem::path& file, std::error_code unreadable)
    : unreadable_(unreadable) {
  std::error_code unreachable;
  if (std::filesystem::is_regular_file(file, unreachable)) {
    stream_.open(file, std::ios::binary);
  }
  if (!stream_.is_open()) {
    throw Error(unreadable_, "opening a file of content lines");
  }
}

/// The stream's buffer, which is read directly for speed, throws an exception of its own when the system fails.
std::optional<ContentLine> ContentLineReader::next() try { return readLine(); } catch (const std::ios_base::failure&) {
  throw Error(unreadable_, "reading a file of content lines");
}

std::optional<ContentLine> ContentLineReader::readLine() {
  ContentLine line{.offset = position_, .text = {}, .cut = false};
  if (stream_.rdbuf()->sgetc() == endOfFile) {
    return std::nullopt;
  }
  readPhysicalLine(line);
  for (int ahead = stream_.rdbuf()->sgetc(); ahead == ' ' || ahead == '\t'; ahead = stream_.rdbuf()->sgetc()) {
    take();
    readPhysicalLine(line);
  }
  if (line.offset == 0 && line.text.starts_with(byteOrderMark)) {
    line.text.erase(0, byteOrderMark.size());
  }
  return line;
}

void ContentLineReader::readPhysicalLine(ContentLine& line) {
  for (int c = take(); c != endOfFile && c != '\n'; c = take()) {
    if (c == '\r' || c == '\0') {
      continue;
    }
    if (line.text.size() == longestLine) {
      line.cut = true;
    } else {
      line.text.push_back(static_cast<char>(c));
    }
  }
}

void ContentLineReader::seek(std::uint64_t offset) {
  stream_.clear();
  stream_.seekg(static_cast<std::streamoff>(offset));
  if (!stream_) {
    throw Error(unreadable_, "reading a file of content lines again");
  }
  position_ = offset;
}

int ContentLineReader::take() {
  const int c = stream_.rdbuf()->sbumpc();
  position_ += c == endOfFile ? 0U : 1U;
  return c;
}

} // namespace orvan
