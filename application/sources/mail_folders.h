#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace orvan {

/// One file in mbox form, or one folder whose files are a mail each ("cur" or "new" of a Maildir).
struct Mailbox {
  enum class Form { mbox, files };

  Form form;
  std::filesystem::path path;
  /// Its path below the source's; empty when it is the source itself.
  std::string name;
};

/// What a file or a folder tree holds of mail.
struct MailFolders {
  std::vector<Mailbox> mailboxes;
  /// Folders of what was thrown away or not sent yet, by their names below the source.
  std::vector<std::string> leftOut;
  /// Files and folders that this user may not look into.
  std::vector<std::string> unreadable;
  /// A mail program has the folder open. What it writes is read all the same: it adds to the end of a mailbox, or puts
  /// a new file in the place of the old one.
  bool isInUse = false;
};

/// How an mbox file is told from others in a folder.
enum class MailboxTelling {
  /// By how its content begins.
  byContent,
  /// By its name, without a look at its content, so that now and then one is told that is none.
  byName,
};

/// Finds the mail at `path`: an mbox file, a Maildir, or a folder of these in any depth, as Thunderbird, KMail and
/// Evolution keep it. Of a Thunderbird profile only the mail is looked at. A link is followed, but nothing is found
/// twice. Throws Error with a SourceFault when the path itself cannot be looked at.
MailFolders findMailFolders(const std::filesystem::path& path, MailboxTelling telling);

/// How many bytes they have, as far as that can be told.
std::uintmax_t sizeOf(const std::vector<Mailbox>& mailboxes);

/// Throws Error with a SourceFault unless `path` is a file or a folder that can be looked at; `absent` is what it is
/// when it is not there.
enum class SourceFault;
void requireFileOrFolder(const std::filesystem::path& path, SourceFault absent);

} // namespace orvan
