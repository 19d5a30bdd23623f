#pragma once

#include <cstdint>
#include <fstream>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/mail/mail_parser.h"
#include "application/import/mail/mail_source.h"
#include "application/import/mail/mbox_source.h"
#include "application/import/mail/raw_mail.h"
#include "application/sources/mail_folders.h"
#include "application/sources/source_position.h"

namespace orvan {

/// What was wrong with one file or folder of a source, in a sentence.
struct SourceTrouble {
  /// Its path below the source's; empty for the source itself.
  std::string name;
  std::string sentence;
};

/// Of the mail that a source holds, what was not read yet.
///
/// A mailbox that only grew is read from the last mail on that was read: a program may have been in the middle of
/// writing that one. One that shrank, or is another file, is read whole. Of a Maildir's folders only those are listed
/// that changed, and of their files only those are read that are new. A mailbox or folder that cannot be read is a
/// trouble, and the others are read.
///
/// Belongs to one thread at a time.
class ChangedMail final : public MailSource {
 public:
  /// `systemNow` is the moment by which the file system dates what it keeps.
  ChangedMail(std::vector<Mailbox> mailboxes, SourcePositions positions, std::set<std::string> ownAddresses,
              Instant systemNow);

  /// Whether there is anything to be looked into at all.
  bool isAnything() const noexcept { return !changed_.empty(); }
  /// Before anything is read, and only then: the files that need not be read.
  void passOver(std::unordered_set<std::int64_t> files) { knownFiles_ = std::move(files); }

  std::optional<MailItem> next() override;
  std::uint64_t amountRead() const noexcept override;
  std::uint64_t amountTotal() const noexcept override { return amountTotal_; }

  /// What is to be kept with the mails that next() has given since the last call; nothing when that is nothing.
  KeptAlong whatToKeep(std::int64_t source);

  const std::vector<SourceTrouble>& troubles() const noexcept { return troubles_; }
  /// The names of mailboxes that had shrunk or been replaced.
  const std::vector<std::string>& readAnew() const noexcept { return readAnew_; }

 private:
  struct Change {
    Mailbox mailbox;
    FileStatus status;
    /// Of a mailbox that grew.
    std::int64_t startAt = 0;
    /// Whether its first mail may have been there in part when it was read.
    bool beginsWithKnown = false;
  };

  std::optional<Change> changeOf(const Mailbox& mailbox, const SourcePositions& positions);
  bool isGrown(const Mailbox& mailbox, const FileStatus& status, const SourcePosition& position) const;
  void open();
  void openFolder();
  void close();
  std::optional<MailItem> nextOfCurrent();
  std::optional<MailItem> nextOfMbox();
  std::optional<MailItem> nextOfFolder();
  void endMbox(bool isLastMailTaken);
  void keepMbox(const FileStatus& status, std::uint64_t readUpTo);

  std::set<std::string> ownAddresses_;
  std::int64_t systemNow_;
  std::vector<Change> changed_;
  std::size_t nextChange_ = 0;
  std::unordered_set<std::int64_t> knownFiles_;

  // What is being read: a mailbox or a folder.
  std::optional<MboxSource> mbox_;
  bool isFirstOfMbox_ = false;
  std::vector<std::string> fileNames_;
  std::size_t nextFile_ = 0;
  bool isFolderOpen_ = false;
  bool isFolderWhole_ = false;
  MailParser fileParser_;
  RawMail space_;

  SourcePositions toKeep_;
  std::vector<std::int64_t> filesToKeep_;
  std::vector<SourceTrouble> troubles_;
  std::vector<std::string> readAnew_;
  std::uint64_t amountDone_ = 0;
  std::uint64_t amountTotal_ = 0;
};

} // namespace orvan
