#pragma once

#include "application/session/session_settings.h"

namespace orvan {

enum class KeyOrigin { made, found };

/// Makes the folders for store and key where there are none, private to the user, the key if there is none, and an
/// empty encrypted store. Returns whether the key is new; the user does well to keep a copy of that.
///
/// Throws Error: ApplicationStoreError::storeExists, or keyMissingForStore when that store lacks its key, which must
/// never get a new one; SessionError::cannotMakeFolder; what the key file and ApplicationStore::create throw.
KeyOrigin createStoreAndKey(const SessionSettings& settings);

} // namespace orvan
