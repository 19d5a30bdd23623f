#include "OrvanRelationshipAttention/store_access/store_key.h"

#include <utility>

#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

constexpr std::size_t storeKeyLength = 32;

} // namespace

StoreKeyProvider makeStoreKeyProvider(CredentialVault vault) {
  return [vault = std::move(vault)] {
    auto key = vault.loadLocalStoreKey();
    if (!key) {
      throw Error(CredentialVaultError::keyMissing, "loading the store key");
    }
    return std::move(*key);
  };
}

void keyConnection(Connection& connection, const StoreKeyProvider& provider, std::error_code invalidKeyLength) {
  const SecretBytes key = provider();
  if (key.size() != storeKeyLength) {
    throw Error(invalidKeyLength, "keying the connection");
  }
  connection.key(key.bytes());
}

bool isSQLCipher(Connection& connection) {
  const auto version = connection.fetchOptionalText("PRAGMA cipher_version");
  return version && !version->empty();
}

} // namespace orvan
