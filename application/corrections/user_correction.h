#pragma once

#include <string>

#include "OrvanPlatform/instant.h"
#include "application/corrections/change.h"

namespace orvan {

/// What a correction is about: somebody as a whole, what was concluded about them, or which address is theirs.
enum class CorrectionTarget { person, claim, identityMembership };

/// Notes that the user corrected something, which a person's evidence counts; the row is watched, so that taking the
/// action back removes it. Within the caller's transaction; throws StoreError.
void noteCorrection(CorrectionTarget target, const std::string& targetID, Instant now, ChangeRecorder& recorder,
                    Connection& connection);

} // namespace orvan
