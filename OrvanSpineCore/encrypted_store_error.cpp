#include "OrvanSpineCore/encrypted_store_error.h"

#include <string>

namespace orvan {
namespace {

class Category final : public std::error_category {
 public:
  const char* name() const noexcept override { return "encrypted store"; }
  std::string message(int code) const override {
    switch (static_cast<EncryptedStoreError>(code)) {
      case EncryptedStoreError::storeMissing:
        return "there is no store";
      case EncryptedStoreError::storeExists:
        return "there is a store already";
      case EncryptedStoreError::notRegularFile:
        return "the store is no regular file";
      case EncryptedStoreError::notPrivate:
        return "the store is not its owner's alone";
      case EncryptedStoreError::plaintext:
        return "the file is a database without encryption";
      case EncryptedStoreError::invalidKeyLength:
        return "the key is not 32 bytes long";
      case EncryptedStoreError::engineCannotEncrypt:
        return "the engine cannot encrypt";
      case EncryptedStoreError::deletedStaysReadable:
        return "the engine does not overwrite what it deletes";
      case EncryptedStoreError::notCanonical:
        return "the store is not marked as one with the canonical tables";
      case EncryptedStoreError::empty:
        return "the store is empty";
      case EncryptedStoreError::schemaOlder:
        return "the store's tables are of an older version";
      case EncryptedStoreError::schemaNewer:
        return "the store's tables are of a newer version";
    }
    return "unknown store error";
  }
};

} // namespace

std::error_code make_error_code(EncryptedStoreError error) noexcept {
  static const Category category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
