#pragma once

#include <system_error>

#include "OrvanStore/connection.h"

namespace orvan {

enum class ReminderSchemaError {
  /// The file decrypts and is marked as somebody else's.
  notOurs = 1,
};

std::error_code make_error_code(ReminderSchemaError error) noexcept;

/// Makes the reminders' tables in an empty file, inside the caller's transaction, and marks whose they are and their
/// version. What is in them is described beside their definitions.
void createReminderSchema(Connection& connection);

/// Brings the tables of an older version to this one's, inside the caller's transaction. Throws
/// ReminderFileError::newer or ReminderSchemaError::notOurs.
void bringReminderSchemaForward(Connection& connection);

} // namespace orvan

template <>
struct std::is_error_code_enum<orvan::ReminderSchemaError> : std::true_type {};
