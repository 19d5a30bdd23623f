#include "application/corrections/person_correction_error.h"

#include <string>

namespace orvan {
namespace {

class PersonCorrectionCategory final : public std::error_category {
 public:
  const char* name() const noexcept override { return "orvan.person_correction"; }

  std::string message(int value) const override {
    switch (static_cast<PersonCorrectionError>(value)) {
      case PersonCorrectionError::samePerson:
        return "samePerson";
      case PersonCorrectionError::hiddenAndShown:
        return "hiddenAndShown";
      case PersonCorrectionError::addressUnknown:
        return "addressUnknown";
      case PersonCorrectionError::onlyAddress:
        return "onlyAddress";
      case PersonCorrectionError::nameEmpty:
        return "nameEmpty";
    }
    return "unknown";
  }
};

} // namespace

std::error_code make_error_code(PersonCorrectionError error) noexcept {
  static const PersonCorrectionCategory category;
  return {static_cast<int>(error), category};
}

} // namespace orvan
