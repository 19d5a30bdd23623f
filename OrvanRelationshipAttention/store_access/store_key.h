#pragma once

#include <functional>
#include <system_error>

#include "OrvanPlatform/secret_bytes.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanStore/connection.h"

namespace orvan {

/// Yields the store key, afresh at each call. May be called from any thread; throws when there is no key to be had.
using StoreKeyProvider = std::function<SecretBytes()>;

/// Asks `vault`; its errors pass through, and a vault without a key gives CredentialVaultError::keyMissing.
StoreKeyProvider makeStoreKeyProvider(CredentialVault vault);

/// The first act on a new connection: hands it the key. A key that is not 32 bytes long throws Error with
/// `invalidKeyLength`. The key's bytes are zeroed on every way out.
void keyConnection(Connection& connection, const StoreKeyProvider& provider, std::error_code invalidKeyLength);

/// Whether the engine behind `connection` is SQLCipher, as it tells itself.
bool isSQLCipher(Connection& connection);

} // namespace orvan
