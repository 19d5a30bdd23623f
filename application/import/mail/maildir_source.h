#pragma once

#include <cstddef>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "application/import/mail/mail_parser.h"
#include "application/import/mail/mail_source.h"
#include "application/import/mail/raw_mail.h"

namespace orvan {

/// The mails of a Maildir: those in "cur" and "new" of the folder itself and of the folders right inside it
/// (".Sent/cur"), in the order of their paths. "tmp" is never read. Mails flagged as drafts or trashed are skips.
///
/// A mail that another program renames or removes meanwhile is a skip too.
class MaildirSource final : public MailSource {
 public:
  /// Lists the folders and counts their files, by which it measures itself. Throws Error with a MailSourceError; its
  /// text names `path` as given. `ownAddresses` are for the parser: see MailParser.
  explicit MaildirSource(const std::filesystem::path& path, std::set<std::string> ownAddresses = {});

  std::optional<MailItem> next() override;
  std::uint64_t amountRead() const noexcept override { return filesRead_; }
  std::uint64_t amountTotal() const noexcept override { return filesTotal_; }

 private:
  bool moveToNextFolder();
  MailItem readMail(const std::string& name);

  std::vector<std::filesystem::path> folders_;
  std::size_t nextFolder_ = 0;
  std::filesystem::path folder_;
  /// The names of the current folder's files, sorted, and the first that was not read yet.
  std::vector<std::string> names_;
  std::size_t nextName_ = 0;
  std::uint64_t filesRead_ = 0;
  std::uint64_t filesTotal_ = 0;
  MailParser parser_;
  RawMail mail_;
};

} // namespace orvan
