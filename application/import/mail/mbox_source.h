#pragma once

#include <filesystem>

#include "application/import/mail/line_reader.h"
#include "application/import/mail/mail_parser.h"
#include "application/import/mail/mail_source.h"
#include "application/import/mail/raw_mail.h"

namespace orvan {

/// The mails of one mbox file, in the order of the file.
///
/// A mail begins at a line that starts with "From ", at the start of the file or after a blank line; lines that were
/// escaped with ">" for that reason are read as they were before. Lines may end in LF or CR LF, the last one in
/// neither.
class MboxSource final : public MailSource {
 public:
  /// Opens the file. Throws Error with a MailSourceError; its text names `path` as given.
  explicit MboxSource(const std::filesystem::path& path);

  std::optional<MailItem> next() override;
  std::uint64_t bytesRead() const noexcept override;
  std::uint64_t bytesTotal() const noexcept override;

 private:
  bool atSeparator() const noexcept;
  bool skipTextBeforeFirstMail();
  void skipSeparator();
  void readMail();

  LineReader lines_;
  MailParser parser_;
  RawMail mail_;
};

} // namespace orvan
