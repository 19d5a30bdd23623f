#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanStore/connection.h"
#include "application/import/ledger/source_progress.h"

namespace orvan {

enum class SourceKind { mail, calendar, cards };

/// "mail", "calendar" or "cards", as the store has it.
std::string_view nameOf(SourceKind kind) noexcept;

/// What the user wants kept up to date.
struct RememberedSource {
  /// Never that of another source, removed ones included.
  std::int64_t number;
  SourceKind kind;
  /// Absolute and without links.
  std::filesystem::path path;
  SourceAccount account;
  /// How often it is read, as a rule: what was read longer ago than that is stale.
  std::chrono::seconds usualInterval;
  std::optional<Instant> lastTriedAt;
  std::optional<Instant> lastSucceededAt;
  /// A sentence; there when the last reading failed.
  std::optional<std::string> lastFault;
};

enum class SourceState { current, stale, neverRead, failing };
std::string_view nameOf(SourceState state) noexcept;

SourceState stateOf(const RememberedSource& source, Instant asOf) noexcept;

/// What they are remembered with when nothing else is said.
inline constexpr std::chrono::seconds usualUsualInterval = std::chrono::days{1};

// All of these run within the caller's transaction.

/// By number.
std::vector<RememberedSource> rememberedSources(Connection& connection);

void rememberSource(SourceKind kind, const std::filesystem::path& path, std::chrono::seconds usualInterval, Instant now,
                    Connection& connection);
void setUsualInterval(std::int64_t number, std::chrono::seconds usualInterval, Connection& connection);

/// What was imported from it stays, and with it the account that it belongs to.
void forgetSource(std::int64_t number, Connection& connection);

// The last reading, in the source's own row and as the library reads it.
void recordReadingSucceeded(const RememberedSource& source, Instant now, Connection& connection);
void recordReadingFailed(const RememberedSource& source, std::string_view fault, Instant now, Connection& connection);

} // namespace orvan
