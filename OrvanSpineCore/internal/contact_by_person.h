#pragma once

#include "OrvanStore/connection.h"

namespace orvan::internal {

/// What tells of one person alone how contact went week by week and when the last mail went each way, in the tables
/// that tell it of everybody. What was imported before is told from the interactions. Within the caller's transaction.
void createWhatTellsOfContactByPerson(Connection& connection);

} // namespace orvan::internal
