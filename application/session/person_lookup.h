#pragma once

#include <string>
#include <vector>

#include "OrvanObservatory/projection_reader.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// The key of the person that a user means by `text`: somebody's key, or else a name or address, in any case of its
/// ASCII letters, that only one person has. People the user never dealt with are found too, for what was decided about
/// them may still be asked for.
///
/// Runs within the caller's read. Throws Error with SessionError::personUnknown or personAmbiguous, and StoreError.
std::string personKeyCalled(const std::string& text, Connection& connection);

/// Those of `people` whose name or an address holds `text` in any case, in their order. Everybody when `text` is empty.
/// Runs within the caller's read; throws StoreError.
std::vector<ProjectedPerson> peopleMatching(const std::string& text, const std::vector<ProjectedPerson>& people,
                                            Connection& connection);

} // namespace orvan
