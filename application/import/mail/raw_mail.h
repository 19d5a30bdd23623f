#pragma once

#include <string>
#include <string_view>

#include "application/import/mail/line_reader.h"

namespace orvan {

/// The lines of one mail as they lie in the file, as far as the importer looks at them: whole header lines up to 256
/// KiB, and 1 MiB of the body. What goes beyond is dropped. Reused from mail to mail, so that its memory is, too.
class RawMail {
 public:
  void clear() noexcept;
  /// Takes the mail's next piece. The first blank line ends the header.
  void append(const LineReader::Piece& piece);

  /// Whether the blank line that ends the header has come.
  bool isHeaderComplete() const noexcept { return !inHeader_; }
  std::string_view header() const noexcept { return header_; }
  std::string_view body() const noexcept { return body_; }

 private:
  std::string header_;
  std::string body_;
  bool inHeader_ = true;
  bool headerIsFull_ = false;
};

} // namespace orvan
