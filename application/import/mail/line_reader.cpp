#include "application/import/mail/line_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "OrvanPlatform/error.h"
#include "application/import/mail/mail_source_error.h"
#include "application/import/mail/text_lines.h"

namespace orvan {
namespace {

constexpr std::size_t bufferSize = 128 * std::size_t{1024};

MailSourceError openingError(int systemError) noexcept {
  switch (systemError) {
    case ENOENT:
    case ENOTDIR:
      return MailSourceError::notFound;
    case EACCES:
    case EPERM:
      return MailSourceError::notPermitted;
    case EISDIR:
      return MailSourceError::isAFolder;
    default:
      return MailSourceError::readFailed;
  }
}

std::uint64_t sizeOfFile(int descriptor, const std::filesystem::path& path) {
  struct stat status{};
  if (fstat(descriptor, &status) != 0) {
    throw Error{MailSourceError::readFailed, path.string()};
  }
  if (S_ISDIR(status.st_mode)) {
    throw Error{MailSourceError::isAFolder, path.string()};
  }
  return S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
}

} // namespace

LineReader::File::File(const std::filesystem::path& path)
    : descriptor{open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)} {
  if (descriptor < 0) {
    throw Error{openingError(errno), path.string()};
  }
}

LineReader::File::~File() {
  close(descriptor);
}

LineReader::LineReader(const std::filesystem::path& path, std::uint64_t startAt)
    : file_{path},
      buffer_{std::make_unique_for_overwrite<char[]>(bufferSize)},
      position_{startAt},
      fileSize_{sizeOfFile(file_.descriptor, path)} {
  if (startAt > 0 && lseek(file_.descriptor, static_cast<off_t>(startAt), SEEK_SET) < 0) {
    throw Error{MailSourceError::readFailed, path.string()};
  }
  findPiece(true);
}

void LineReader::advance() {
  const std::size_t length = piece_.text.size();
  const bool endsLine = piece_.text.ends_with('\n');
  if (endsLine) {
    followsBlankLine_ = currentLineIsBlank_;
  }
  position_ += length;
  unread_.remove_prefix(length);
  findPiece(endsLine);
}

void LineReader::findPiece(bool startsLine) {
  std::size_t lineBreak = unread_.find('\n');
  while (lineBreak == std::string_view::npos && unread_.size() < bufferSize && !atEnd_) {
    const std::size_t searched = unread_.size();
    fill();
    lineBreak = unread_.find('\n', searched);
  }
  piece_ = {unread_.substr(0, lineBreak == std::string_view::npos ? lineBreak : lineBreak + 1), startsLine};
  if (startsLine) {
    currentLineIsBlank_ = isBlankLine(piece_.text);
  }
}

void LineReader::fill() {
  if (!unread_.empty()) {
    std::memmove(buffer_.get(), unread_.data(), unread_.size());
  }
  const std::size_t kept = unread_.size();
  ssize_t count = 0;
  do {
    count = read(file_.descriptor, buffer_.get() + kept, bufferSize - kept);
  } while (count < 0 && errno == EINTR);
  if (count < 0) {
    throw Error{MailSourceError::readFailed, "Reading mail"};
  }
  atEnd_ = count == 0;
  unread_ = {buffer_.get(), kept + static_cast<std::size_t>(count)};
}

} // namespace orvan
