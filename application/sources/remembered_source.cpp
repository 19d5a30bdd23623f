#include "application/sources/remembered_source.h"

#include "OrvanPlatform/internet_date_time.h"
#include "application/import/ledger/stable_id.h"

namespace orvan {
namespace {

/// Short, because every source event names its account.
constexpr std::size_t accountLength = 8;

std::optional<Instant> instantIn(const Query& row, Column column) {
  const auto text = row.optionalText(column);
  return text ? parseInternetDateTime(*text) : std::nullopt;
}

SourceKind kindNamed(std::string_view name) noexcept {
  return name == "calendar" ? SourceKind::calendar : name == "cards" ? SourceKind::cards : SourceKind::mail;
}

/// The same path has the same account when it is remembered again.
std::string accountIDOf(const std::filesystem::path& path) {
  return "source-" + stableID(path.native(), accountLength);
}

} // namespace

std::string_view nameOf(SourceKind kind) noexcept {
  switch (kind) {
    case SourceKind::mail:
      return "mail";
    case SourceKind::calendar:
      return "calendar";
    case SourceKind::cards:
      return "cards";
  }
  return "mail";
}

std::string_view nameOf(SourceState state) noexcept {
  switch (state) {
    case SourceState::current:
      return "current";
    case SourceState::stale:
      return "stale";
    case SourceState::neverRead:
      return "neverRead";
    case SourceState::failing:
      return "failing";
  }
  return "stale";
}

SourceState stateOf(const RememberedSource& source, Instant asOf) noexcept {
  if (source.lastFault) {
    return SourceState::failing;
  }
  if (!source.lastSucceededAt) {
    return SourceState::neverRead;
  }
  return asOf - *source.lastSucceededAt < source.usualInterval ? SourceState::current : SourceState::stale;
}

std::vector<RememberedSource> rememberedSources(Connection& connection) {
  std::vector<RememberedSource> sources;
  auto rows = connection.query(R"sql(
SELECT id, kind, path, source_account_id, usual_interval_seconds, last_tried_at, last_succeeded_at, last_fault
FROM remembered_source
ORDER BY id
)sql");
  while (rows.next()) {
    const auto kind = kindNamed(rows.text(Column{1}));
    const auto fault = rows.optionalText(Column{7});
    sources.push_back(
        {rows.integer(Column{0}),
         kind,
         std::filesystem::path{rows.text(Column{2})},
         {std::string{rows.text(Column{3})}, std::string{nameOf(kind)}, "refresh_" + std::string{nameOf(kind)}},
         std::chrono::seconds{rows.integer(Column{4})},
         instantIn(rows, Column{5}),
         instantIn(rows, Column{6}),
         fault ? std::optional<std::string>{*fault} : std::nullopt});
  }
  return sources;
}

void rememberSource(SourceKind kind, const std::filesystem::path& path, std::chrono::seconds usualInterval, Instant now,
                    Connection& connection) {
  connection.execute(R"sql(
INSERT INTO remembered_source (kind, path, source_account_id, usual_interval_seconds, added_at)
VALUES (?, ?, ?, ?, ?)
)sql",
                     nameOf(kind), path.native(), accountIDOf(path), usualInterval.count(),
                     formatInternetDateTime(now));
}

void setUsualInterval(std::int64_t number, std::chrono::seconds usualInterval, Connection& connection) {
  connection.execute("UPDATE remembered_source SET usual_interval_seconds = ? WHERE id = ?", usualInterval.count(),
                     number);
}

void forgetSource(std::int64_t number, Connection& connection) {
  connection.execute("DELETE FROM remembered_source WHERE id = ?", number);
}

void recordReadingSucceeded(const RememberedSource& source, Instant now, Connection& connection) {
  const auto at = formatInternetDateTime(now);
  recordImportStarted(source.account, at, connection);
  recordImportSucceeded(source.account, at, connection);
  connection.execute(
      "UPDATE remembered_source SET last_tried_at = ?1, last_succeeded_at = ?1, last_fault = NULL WHERE id = ?2", at,
      source.number);
}

void recordReadingFailed(const RememberedSource& source, std::string_view fault, Instant now, Connection& connection) {
  const auto at = formatInternetDateTime(now);
  recordImportStarted(source.account, at, connection);
  connection.execute("UPDATE remembered_source SET last_tried_at = ?, last_fault = ? WHERE id = ?", at, fault,
                     source.number);
}

} // namespace orvan
