#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store_error.h"

#include <string>

namespace orvan {
namespace {

class Category final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.attention-disposition-store"; }

  std::string message(int value) const override {
    switch (static_cast<AttentionDispositionStoreError>(value)) {
      case AttentionDispositionStoreError::invalidKeyLength:
        return "invalidKeyLength";
      case AttentionDispositionStoreError::plaintextDatabaseRejected:
        return "plaintextDatabaseRejected";
      case AttentionDispositionStoreError::cannotOpenEncryptedStore:
        return "cannotOpenEncryptedStore";
      case AttentionDispositionStoreError::canonicalSchemaUnavailable:
        return "canonicalSchemaUnavailable";
    }
    return "unknown";
  }
};

} // namespace

std::error_code make_error_code(AttentionDispositionStoreError error) noexcept {
  static const Category category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
