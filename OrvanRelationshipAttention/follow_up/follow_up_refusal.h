#pragma once

#include <exception>

#include "OrvanSpineCore/effect_reason_token.h"

namespace orvan {

/// Why a follow-up is not taken on.
enum class FollowUpRefusal { emptyTitle, dueInThePast, unknownFollowUp };

/// The token that tells the application of a refusal.
EffectReasonToken token(FollowUpRefusal refusal) noexcept;

/// Thrown when a follow-up is written under an id that belongs to another source object or person.
class FollowUpScopeMismatch final : public std::exception {
 public:
  const char* what() const noexcept override { return "the follow-up belongs to another object or person"; }
};

} // namespace orvan
