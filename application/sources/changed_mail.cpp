#include "application/sources/changed_mail.h"

#include <algorithm>
#include <array>
#include <system_error>
#include <utility>
#include <variant>

#include "OrvanPlatform/error.h"
#include "application/import/ledger/stable_id.h"
#include "application/import/mail/mail_file.h"
#include "application/import/recognition/source_recognition.h"
#include "application/sources/source_fault.h"

namespace orvan {
namespace {

/// What a file of a Maildir counts as where progress is shown.
constexpr std::uint64_t usualMailSize = 8 * std::uint64_t{1024};
/// A program that writes a mail is not silent for so long.
constexpr std::int64_t quietTime = 10'000'000'000;

constexpr std::int64_t digestedBytes = 4096;
constexpr std::string_view separatorStart = "From ";

/// Thunderbird notes in the mails themselves which were read.
std::string withoutStatusLines(std::string_view block) {
  std::string kept;
  while (!block.empty()) {
    const auto length = std::min(block.find('\n'), block.size() - 1) + 1;
    if (!block.starts_with("X-Mozilla-")) {
      kept += block.substr(0, length);
    }
    block.remove_prefix(length);
  }
  return kept;
}

/// Stands for the lines before `end`, where a mail begins; nothing when none begins there.
std::optional<std::string> digestBefore(std::int64_t end, const std::filesystem::path& file) {
  const auto begin = std::max(end - digestedBytes, std::int64_t{0});
  std::ifstream stream(file, std::ios::binary);
  stream.seekg(begin);
  std::string block(static_cast<std::size_t>(end - begin) + separatorStart.size(), '\0');
  stream.read(block.data(), static_cast<std::streamsize>(block.size()));
  if (stream.gcount() != static_cast<std::streamsize>(block.size()) || !block.ends_with(separatorStart)) {
    return std::nullopt;
  }
  const auto firstWholeLine = begin == 0 ? 0 : std::min(block.find('\n') + 1, block.size());
  constexpr std::size_t digestLength = 24;
  return stableID(withoutStatusLines(std::string_view{block}.substr(firstWholeLine)), digestLength);
}

/// Stands for a mail's file as long as it is called so, in "new" as in "cur". One that is passed over for its flags is
/// looked at again when these change.
std::int64_t keyOfFile(const Mailbox& folder, const std::string& name, const std::optional<MailSkip>& skip) {
  const auto maildir = std::filesystem::path{folder.name}.parent_path().native();
  const auto mark = !skip ? "" : skip->reason == MailSkipReason::draft ? "\nD" : "\nT";
  return static_cast<std::int64_t>(mailKeyOf(maildir + "\n" + std::string{lastingName(name)} + mark));
}

/// Nothing when the folder cannot be listed.
std::optional<std::vector<std::string>> filesIn(const std::filesystem::path& folder) {
  std::error_code error;
  std::vector<std::string> names;
  for (std::filesystem::directory_iterator entry{folder, error}, end; !error && entry != end; entry.increment(error)) {
    if (!entry->path().filename().native().starts_with('.')) {
      names.push_back(entry->path().filename().native());
    }
  }
  if (error) {
    return std::nullopt;
  }
  std::ranges::sort(names);
  return names;
}

bool isSkippedAsUnreadable(const MailItem& item) noexcept {
  const auto* skip = std::get_if<MailSkip>(&item);
  return skip != nullptr && skip->reason == MailSkipReason::unreadable;
}

} // namespace

ChangedMail::ChangedMail(std::vector<Mailbox> mailboxes, SourcePositions positions, std::set<std::string> ownAddresses,
                         Instant systemNow)
    : ownAddresses_(std::move(ownAddresses)),
      systemNow_(systemNow.time_since_epoch() / std::chrono::nanoseconds{1}),
      fileParser_(BodyLines::asSent, ownAddresses_) {
  // A mail that a program moves from "new" to "cur" meanwhile is not missed when "new" is listed first.
  std::ranges::sort(mailboxes, {}, [](const Mailbox& mailbox) {
    const bool isListedLast = mailbox.form == Mailbox::Form::files && mailbox.path.filename() == "cur";
    return std::pair<bool, const std::string&>{isListedLast, mailbox.name};
  });
  for (const auto& mailbox : mailboxes) {
    if (auto change = changeOf(mailbox, positions)) {
      amountTotal_ += mailbox.form == Mailbox::Form::mbox
                          ? static_cast<std::uint64_t>(std::max(change->status.size - change->startAt, std::int64_t{0}))
                          : 0;
      changed_.push_back(*std::move(change));
    }
  }
}

std::optional<ChangedMail::Change> ChangedMail::changeOf(const Mailbox& mailbox, const SourcePositions& positions) {
  const auto status = FileStatus::of(mailbox.path);
  const auto known = positions.find(mailbox.name);
  if (known == positions.end()) {
    return Change{mailbox, status};
  }
  const auto& position = known->second;
  if (position.status == status) {
    return std::nullopt;
  }
  if (mailbox.form == Mailbox::Form::files) {
    return Change{mailbox, status};
  }
  if (isGrown(mailbox, status, position)) {
    return Change{mailbox, status, position.readUpTo, position.status.modifiedAt == 0};
  }
  if (position.readUpTo > 0) {
    readAnew_.push_back(mailbox.name);
  }
  return Change{mailbox, status};
}

bool ChangedMail::isGrown(const Mailbox& mailbox, const FileStatus& status, const SourcePosition& position) const {
  return status.inode == position.status.inode && status.size >= position.readUpTo && !position.digest.empty() &&
         digestBefore(position.readUpTo, mailbox.path) == position.digest;
}

std::optional<MailItem> ChangedMail::next() {
  while (true) {
    if (!mbox_ && !isFolderOpen_) {
      if (nextChange_ == changed_.size()) {
        return std::nullopt;
      }
      open();
    }
    if (auto item = nextOfCurrent()) {
      return item;
    }
  }
}

std::uint64_t ChangedMail::amountRead() const noexcept {
  const auto current = mbox_ ? mbox_->amountRead() - static_cast<std::uint64_t>(changed_[nextChange_].startAt)
                             : nextFile_ * usualMailSize;
  return amountDone_ + current;
}

void ChangedMail::open() {
  const auto& change = changed_[nextChange_];
  if (change.mailbox.form == Mailbox::Form::files) {
    openFolder();
    return;
  }
  try {
    requireFileOrFolder(change.mailbox.path, SourceFault::gone);
    if (change.startAt == 0) {
      requireMbox(change.mailbox.path);
    }
    mbox_.emplace(change.mailbox.path, ownAddresses_, static_cast<std::uint64_t>(change.startAt));
    isFirstOfMbox_ = true;
  } catch (const Error& error) {
    const auto sentence = sentenceOnSource(error.code());
    if (!sentence) {
      throw;
    }
    troubles_.push_back({change.mailbox.name, *sentence});
    close();
  }
}

void ChangedMail::openFolder() {
  const auto& change = changed_[nextChange_];
  auto names = filesIn(change.mailbox.path);
  if (!names) {
    troubles_.push_back({change.mailbox.name, make_error_code(SourceFault::notPermitted).message()});
    close();
    return;
  }
  std::erase_if(*names, [&](const std::string& name) {
    return knownFiles_.contains(keyOfFile(change.mailbox, name, skipForFlags(name)));
  });
  fileNames_ = *std::move(names);
  amountTotal_ += fileNames_.size() * usualMailSize;
  isFolderOpen_ = true;
  isFolderWhole_ = true;
}

void ChangedMail::close() {
  amountDone_ = amountRead();
  mbox_.reset();
  isFolderOpen_ = false;
  fileNames_.clear();
  nextFile_ = 0;
  ++nextChange_;
}

std::optional<MailItem> ChangedMail::nextOfCurrent() {
  if (isFolderOpen_) {
    return nextOfFolder();
  }
  if (!mbox_) {
    return std::nullopt;
  }
  try {
    return nextOfMbox();
  } catch (const Error& error) {
    const auto sentence = sentenceOnSource(error.code());
    if (!sentence) {
      throw;
    }
    troubles_.push_back({changed_[nextChange_].mailbox.name, *sentence});
    close();
    return std::nullopt;
  }
}

std::optional<MailItem> ChangedMail::nextOfMbox() {
  const auto& change = changed_[nextChange_];
  auto item = mbox_->next();
  if (!item) {
    endMbox(true);
    return std::nullopt;
  }
  if (auto* mail = std::get_if<MailMessage>(&*item)) {
    mail->isReadAgain = change.beginsWithKnown && isFirstOfMbox_;
  }
  isFirstOfMbox_ = false;
  if (!mbox_->isAtEnd()) {
    keepMbox({0, change.status.inode, 0}, mbox_->beginningOfNext());
    return item;
  }
  // A header that is there in part would make another mail of it.
  const bool isTaken = mbox_->isLatestHeaderComplete() || change.status.modifiedAt <= systemNow_ - quietTime;
  endMbox(isTaken);
  return isTaken ? std::move(item) : std::nullopt;
}

/// The last mail is taken for complete when the file has been quiet for a while.
void ChangedMail::endMbox(bool isLastMailTaken) {
  const auto& change = changed_[nextChange_];
  const auto status = FileStatus::of(change.mailbox.path);
  const bool isQuiet = status == change.status && status.modifiedAt <= systemNow_ - quietTime;
  keepMbox({change.status.size, change.status.inode, isQuiet && isLastMailTaken ? change.status.modifiedAt : 0},
           mbox_->beginningOfLatest());
  close();
}

void ChangedMail::keepMbox(const FileStatus& status, std::uint64_t readUpTo) {
  toKeep_[changed_[nextChange_].mailbox.name] = {status, static_cast<std::int64_t>(readUpTo), {}};
}

std::optional<MailItem> ChangedMail::nextOfFolder() {
  const auto& change = changed_[nextChange_];
  if (nextFile_ == fileNames_.size()) {
    const bool isSettled = isFolderWhole_ && !isRecent(change.status.modifiedAt, systemNow_);
    toKeep_[change.mailbox.name] = {
        {change.status.size, change.status.inode, isSettled ? change.status.modifiedAt : 0}, 0, {}};
    close();
    return std::nullopt;
  }
  const auto& name = fileNames_[nextFile_++];
  const auto skip = skipForFlags(name);
  auto item = skip ? MailItem{*skip} : readMailFile(change.mailbox.path / name, fileParser_, space_);
  if (isSkippedAsUnreadable(item)) {
    isFolderWhole_ = false;
    return item;
  }
  const auto key = keyOfFile(change.mailbox, name, skip);
  knownFiles_.insert(key);
  filesToKeep_.push_back(key);
  return item;
}

KeptAlong ChangedMail::whatToKeep(std::int64_t source) {
  for (const auto& change : changed_) {
    const auto kept = toKeep_.find(change.mailbox.name);
    if (kept != toKeep_.end() && change.mailbox.form == Mailbox::Form::mbox) {
      kept->second.digest = digestBefore(kept->second.readUpTo, change.mailbox.path).value_or("");
    }
  }
  if (toKeep_.empty() && filesToKeep_.empty()) {
    return {};
  }
  return [source, positions = std::exchange(toKeep_, {}), files = std::exchange(filesToKeep_, {})](Connection& store) {
    for (const auto& [name, position] : positions) {
      keepPosition(source, name, position, store);
    }
    keepFiles(source, files, store);
  };
}

} // namespace orvan
