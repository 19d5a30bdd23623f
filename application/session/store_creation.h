#pragma once

#include "application/session/session_settings.h"
#include "application/store/store_key.h"

namespace orvan {

enum class KeyOrigin { made, found };

/// Makes the folders for store and key where there are none, private to the user, the key if there is none, and an
/// empty encrypted store. Returns whether the key is new; the user does well to keep a copy of that.
///
/// Throws Error: ApplicationStoreError::storeExists, or keyMissingForStore when that store lacks its key, which must
/// never get a new one; SessionError::cannotMakeFolder; what the key file and ApplicationStore::create throw.
///
/// The key is kept in `place`; one that is there already is brought there.
KeyOrigin createStoreAndKey(const SessionSettings& settings, KeyPlace place = KeyPlace::file);

/// Makes the folders alone. Throws SessionError::cannotMakeFolder, and folderNotPrivate when others can look into the
/// store's.
void createStoreFolders(const SessionSettings& settings);

} // namespace orvan
