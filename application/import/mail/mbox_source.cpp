#include "application/import/mail/mbox_source.h"

#include "application/import/mail/text_lines.h"

namespace orvan {

MboxSource::MboxSource(const std::filesystem::path& path) : lines_{path}, parser_{BodyLines::fromEscaped} {}

std::optional<MailItem> MboxSource::next() {
  if (skipTextBeforeFirstMail()) {
    return MailSkip{MailSkipReason::notAMailbox};
  }
  if (!lines_.current()) {
    return std::nullopt;
  }
  skipSeparator();
  readMail();
  return parser_.parse(mail_);
}

std::uint64_t MboxSource::bytesRead() const noexcept {
  return lines_.position();
}

std::uint64_t MboxSource::bytesTotal() const noexcept {
  return lines_.fileSize();
}

bool MboxSource::atSeparator() const noexcept {
  const auto& piece = *lines_.current();
  return piece.startsLine && lines_.followsBlankLine() && piece.text.starts_with("From ");
}

/// Whether there was any: between two mails the reader always stands at a separator.
bool MboxSource::skipTextBeforeFirstMail() {
  bool foundText = false;
  for (; lines_.current() && !atSeparator(); lines_.advance()) {
    foundText = foundText || !isBlankLine(lines_.current()->text);
  }
  return foundText;
}

void MboxSource::skipSeparator() {
  do {
    lines_.advance();
  } while (lines_.current() && !lines_.current()->startsLine);
}

void MboxSource::readMail() {
  mail_.clear();
  for (; lines_.current() && !atSeparator(); lines_.advance()) {
    mail_.append(*lines_.current());
  }
}

} // namespace orvan
