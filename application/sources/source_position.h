#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// A file or folder as the file system has it.
struct FileStatus {
  std::int64_t size = 0;
  std::int64_t inode = 0;
  /// In nanoseconds since 1970.
  std::int64_t modifiedAt = 0;

  /// Nothing can be read of what is not there: all is 0 then.
  static FileStatus of(const std::filesystem::path& path);

  bool operator==(const FileStatus&) const = default;
};

/// How far a file or folder was read.
struct SourcePosition {
  /// What it was like when it was read. modifiedAt is 0 when it is to be looked at again whatever it is like.
  FileStatus status;
  /// In a mailbox, where the last mail begins; of a calendar, when it was read, in seconds since 1970.
  std::int64_t readUpTo = 0;
  std::string digest;
};

using SourcePositions = std::map<std::string, SourcePosition>;

// What is kept of a source between its readings. All of these run within the caller's transaction, and keep nothing of
// a source that was taken off the list meanwhile.

/// What was kept for `readFor`, which stands for what else decides how a source reads: the user's addresses. Where that
/// was something else, everything kept is forgotten.
SourcePositions keptPositions(std::int64_t source, const std::string& readFor, Connection& connection);
/// The files that hold one mail each.
std::unordered_set<std::int64_t> keptFiles(std::int64_t source, Connection& connection);

void keepPosition(std::int64_t source, const std::string& name, const SourcePosition& position, Connection& connection);
void keepFiles(std::int64_t source, const std::vector<std::int64_t>& files, Connection& connection);
void forgetPosition(std::int64_t source, const std::string& name, Connection& connection);

/// Whether something that changed then can change once more without a trace: times of files are not that fine.
bool isRecent(std::int64_t modifiedAt, std::int64_t now) noexcept;

} // namespace orvan
