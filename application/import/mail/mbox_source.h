#pragma once

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

#include "application/import/mail/line_reader.h"
#include "application/import/mail/mail_parser.h"
#include "application/import/mail/mail_source.h"
#include "application/import/mail/raw_mail.h"

namespace orvan {

/// The mails of one mbox file, in the order of the file.
///
/// A mail begins after a line that starts with "From ". The first line of the file needs no more than that. A line
/// after a blank one, as the form demands, must end in a date or be followed by a header field, because not every
/// program escapes such lines in text. Some programs write no blank line: then it must have both. Lines that were
/// escaped with
/// ">" are read as they were before. Lines may end in LF or CR LF, the last one in neither.
class MboxSource final : public MailSource {
 public:
  /// Opens the file. Throws Error with a MailSourceError; its text names `path` as given. `ownAddresses` are
  /// for the parser: see MailParser.
  ///
  /// Reading can begin at a mail that an earlier reading found, at the first byte of its separator.
  explicit MboxSource(const std::filesystem::path& path, std::set<std::string> ownAddresses = {},
                      std::uint64_t startAt = 0);

  std::optional<MailItem> next() override;
  std::uint64_t amountRead() const noexcept override;
  std::uint64_t amountTotal() const noexcept override;

  /// Where the separator of the mail begins that next() gave last, and that of the mail that it gives next.
  std::uint64_t beginningOfLatest() const noexcept { return latest_; }
  std::uint64_t beginningOfNext() const noexcept { return separator_; }
  /// Whether next() has given the last mail: a program that is writing the file may not be done with it.
  bool isAtEnd() const noexcept { return !isInMail_; }
  /// Whether the header of the mail that next() gave last came to its end.
  bool isLatestHeaderComplete() const noexcept { return mail_.isHeaderComplete(); }

 private:
  bool skipTextBeforeFirstMail();
  void readMail();
  bool mayBeSeparator() const noexcept;
  bool passSeparator();

  std::uint64_t startAt_;
  LineReader lines_;
  MailParser parser_;
  RawMail mail_;
  std::string passedLine_;
  /// A separator was passed, and the mail after it was not yet read.
  bool isInMail_ = false;
  std::uint64_t latest_;
  std::uint64_t separator_;
};

} // namespace orvan
