#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanSpineCore/persisted_follow_up.h"
#include "OrvanStore/connection.h"

/// How stored follow-ups are read. A row without text in a required column fails with StoreFault::columnIsNull or
/// columnIsNotText.
namespace orvan::internal {

std::optional<PersistedFollowUp> loadFollowUp(Connection& connection, std::string_view id);
/// The pair's newest row.
std::optional<PersistedFollowUp> loadFollowUp(Connection& connection, std::string_view sourceObjectID,
                                              std::string_view personID);
/// The scheduled ones about a source object, ordered by person.
std::vector<PersistedFollowUp> scheduledFollowUps(Connection& connection, std::string_view sourceObjectID);

/// Live follow-ups are those that are scheduled and whose source object is there and not tombstoned.
std::vector<PersistedFollowUp> liveFollowUps(Connection& connection);
/// Those of them that have this id, or this pair: the same rows, found through an index, because each of many
/// registrations asks.
std::optional<PersistedFollowUp> liveFollowUp(Connection& connection, std::string_view id);
std::vector<PersistedFollowUp> liveFollowUps(Connection& connection, std::string_view sourceObjectID,
                                             std::string_view personID);

/// The open loop that mirrors a follow-up: the row's own, else the one its id gives.
std::string storedOpenLoopID(Connection& connection, std::string_view followUpID);
std::optional<std::string> openLoopDetectedAt(Connection& connection, std::string_view openLoopID);

} // namespace orvan::internal
