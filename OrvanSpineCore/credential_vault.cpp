#include "OrvanSpineCore/credential_vault.h"

#include <string>
#include <utility>

namespace orvan {
namespace {

class CredentialVaultCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "credential vault"; }
  std::string message(int code) const override {
    switch (static_cast<CredentialVaultError>(code)) {
      case CredentialVaultError::keyMissing:
        return "the vault holds no store key";
      case CredentialVaultError::vaultLocked:
        return "the vault is locked";
      case CredentialVaultError::vaultUnavailable:
        return "no vault is available";
      case CredentialVaultError::accessFailed:
        return "the vault could not be read or written";
      case CredentialVaultError::keyFileNotPrivate:
        return "the key file can be read by others than its owner";
      case CredentialVaultError::keyExists:
        return "there is a key already";
      case CredentialVaultError::keyFileNotRegular:
        return "the key file is a folder, a pipe or a device";
    }
    return "unknown vault error";
  }
};

} // namespace

std::error_code make_error_code(CredentialVaultError error) noexcept {
  static const CredentialVaultCategory category;
  return {static_cast<int>(error), category};
}

CredentialVault::CredentialVault(std::shared_ptr<const CredentialSource> source) : source_(std::move(source)) {}

std::optional<SecretBytes> CredentialVault::loadLocalStoreKey() const {
  return source_->loadLocalStoreKey();
}

} // namespace orvan
