#include "application/import/mail/mbox_source.h"

#include <utility>

#include "application/import/mail/from_line.h"
#include "application/import/mail/text_lines.h"

namespace orvan {

MboxSource::MboxSource(const std::filesystem::path& path, std::set<std::string> ownAddresses, std::uint64_t startAt)
    : startAt_{startAt},
      lines_{path, startAt},
      parser_{BodyLines::fromEscaped, std::move(ownAddresses)},
      latest_{startAt},
      separator_{startAt} {}

std::optional<MailItem> MboxSource::next() {
  if (!isInMail_ && skipTextBeforeFirstMail()) {
    return MailSkip{MailSkipReason::notAMailbox};
  }
  if (!isInMail_) {
    return std::nullopt;
  }
  latest_ = separator_;
  readMail();
  return parser_.parse(mail_);
}

std::uint64_t MboxSource::amountRead() const noexcept {
  return lines_.position();
}

std::uint64_t MboxSource::amountTotal() const noexcept {
  return lines_.fileSize();
}

/// Whether there was any.
bool MboxSource::skipTextBeforeFirstMail() {
  bool foundText = false;
  while (lines_.current() && !isInMail_) {
    if (mayBeSeparator()) {
      isInMail_ = passSeparator();
      foundText = foundText || !isInMail_;
    } else {
      foundText = foundText || !isBlankLine(lines_.current()->text);
      lines_.advance();
    }
  }
  return foundText;
}

/// Up to and past the next separator, or to the end of the file.
void MboxSource::readMail() {
  mail_.clear();
  while (lines_.current()) {
    if (!mayBeSeparator()) {
      mail_.append(*lines_.current());
      lines_.advance();
    } else if (passSeparator()) {
      return;
    } else {
      mail_.append({passedLine_, true});
    }
  }
  isInMail_ = false;
}

bool MboxSource::mayBeSeparator() const noexcept {
  const auto& piece = *lines_.current();
  return piece.startsLine && piece.text.starts_with("From ") &&
         (lines_.followsBlankLine() || isDatedFromLine(piece.text));
}

/// Whether the line is a separator shows in the one after it, so it is passed either way, and kept in `passedLine_` for
/// when it is not.
bool MboxSource::passSeparator() {
  const auto position = lines_.position();
  const bool beginsFile = position == startAt_;
  const bool followsBlankLine = lines_.followsBlankLine();
  passedLine_ = lines_.current()->text;
  lines_.advance();
  while (beginsFile && lines_.current() && !lines_.current()->startsLine) {
    lines_.advance();
  }
  const auto* following = lines_.current();
  const bool isDated = isDatedFromLine(passedLine_);
  const bool fieldFollows = following != nullptr && following->startsLine && beginsHeaderField(following->text);
  const bool separates = beginsFile || (followsBlankLine ? isDated || fieldFollows : isDated && fieldFollows);
  if (separates) {
    separator_ = position;
  }
  return separates;
}

} // namespace orvan
