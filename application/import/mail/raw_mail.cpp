#include "application/import/mail/raw_mail.h"

#include <algorithm>

#include "application/import/mail/text_lines.h"

namespace orvan {
namespace {

constexpr std::size_t longestHeader = 256 * std::size_t{1024};
constexpr std::size_t longestBody = 1024 * std::size_t{1024};

} // namespace

void RawMail::clear() noexcept {
  header_.clear();
  body_.clear();
  inHeader_ = true;
  headerIsFull_ = false;
}

void RawMail::append(const LineReader::Piece& piece) {
  if (!inHeader_) {
    body_.append(piece.text.substr(0, longestBody - std::min(body_.size(), longestBody)));
  } else if (piece.startsLine && isBlankLine(piece.text)) {
    inHeader_ = false;
  } else if (!headerIsFull_ && header_.size() + piece.text.size() <= longestHeader) {
    header_.append(piece.text);
  } else {
    // A later, shorter line must not follow the gap: it could go on a field that was left out.
    headerIsFull_ = true;
  }
}

} // namespace orvan
