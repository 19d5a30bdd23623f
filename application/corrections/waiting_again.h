#pragma once

#include <span>

#include "OrvanStore/connection.h"
#include "application/corrections/change.h"

namespace orvan {

/// Has the store say anew which conversations wait, after rules about single mails began or ended by these changes.
/// Within the caller's transaction; throws StoreError.
void waitAgainAsRulesSay(std::span<const Change> changes, Connection& connection);

} // namespace orvan
