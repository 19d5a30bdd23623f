#include "application/sources/source_position.h"

#include <sys/stat.h>

#include "OrvanStore/repeated_statement.h"

namespace orvan {
namespace {

constexpr std::int64_t second = 1'000'000'000;

void forgetWhatWasReadFor(std::int64_t source, const std::string& readFor, Connection& connection) {
  connection.execute("UPDATE remembered_source SET read_for = ?1 WHERE id = ?2 AND read_for IS NOT ?1", readFor,
                     source);
  if (connection.changes() > 0) {
    connection.execute("DELETE FROM source_position WHERE source_id = ?", source);
    connection.execute("DELETE FROM source_mail_file WHERE source_id = ?", source);
  }
}

} // namespace

FileStatus FileStatus::of(const std::filesystem::path& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) != 0) {
    return {};
  }
  return {status.st_size, static_cast<std::int64_t>(status.st_ino),
          status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec};
}

SourcePositions keptPositions(std::int64_t source, const std::string& readFor, Connection& connection) {
  forgetWhatWasReadFor(source, readFor, connection);
  SourcePositions positions;
  auto rows = connection.query(
      "SELECT name, size, inode, modified_at, read_up_to, digest FROM source_position WHERE source_id = ?", source);
  while (rows.next()) {
    positions.emplace(rows.text(Column{0}),
                      SourcePosition{{rows.integer(Column{1}), rows.integer(Column{2}), rows.integer(Column{3})},
                                     rows.integer(Column{4}),
                                     std::string{rows.text(Column{5})}});
  }
  return positions;
}

std::unordered_set<std::int64_t> keptFiles(std::int64_t source, Connection& connection) {
  std::unordered_set<std::int64_t> files;
  auto rows = connection.query("SELECT file_key FROM source_mail_file WHERE source_id = ?", source);
  while (rows.next()) {
    files.insert(rows.integer(Column{0}));
  }
  return files;
}

void keepPosition(std::int64_t source, const std::string& name, const SourcePosition& position,
                  Connection& connection) {
  connection.execute(R"sql(
INSERT OR REPLACE INTO source_position (source_id, name, size, inode, modified_at, read_up_to, digest)
SELECT id, ?2, ?3, ?4, ?5, ?6, ?7
FROM remembered_source
WHERE id = ?1
)sql",
                     source, name, position.status.size, position.status.inode, position.status.modifiedAt,
                     position.readUpTo, position.digest);
}

void keepFiles(std::int64_t source, const std::vector<std::int64_t>& files, Connection& connection) {
  RepeatedStatement insert(connection, R"sql(
INSERT OR IGNORE INTO source_mail_file (source_id, file_key)
SELECT id, ?2
FROM remembered_source
WHERE id = ?1
)sql");
  for (const auto file : files) {
    insert.execute(source, file);
  }
}

void forgetPosition(std::int64_t source, const std::string& name, Connection& connection) {
  connection.execute("DELETE FROM source_position WHERE source_id = ? AND name = ?", source, name);
}

bool isRecent(std::int64_t modifiedAt, std::int64_t now) noexcept {
  constexpr std::int64_t coarsest = 2 * second;
  return modifiedAt > now - coarsest;
}

} // namespace orvan
