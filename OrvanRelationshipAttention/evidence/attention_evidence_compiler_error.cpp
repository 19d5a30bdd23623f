#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler_error.h"

#include <string>

namespace orvan {
namespace {

class Category final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.attention-evidence-compiler"; }

  std::string message(int value) const override {
    switch (static_cast<AttentionEvidenceCompilerError>(value)) {
      case AttentionEvidenceCompilerError::invalidKeyLength:
        return "invalidKeyLength";
      case AttentionEvidenceCompilerError::plaintextDatabaseRejected:
        return "plaintextDatabaseRejected";
      case AttentionEvidenceCompilerError::cannotOpenEncryptedStore:
        return "cannotOpenEncryptedStore";
    }
    return "unknown";
  }
};

} // namespace

std::error_code make_error_code(AttentionEvidenceCompilerError error) noexcept {
  static const Category category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
