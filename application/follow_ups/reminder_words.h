#pragma once

#include <string_view>

#include "OrvanSpineCore/effect_reason_token.h"

namespace orvan {

/// Why something did not happen, as a clause for the user: "the desktop has asked whether reminders are allowed". It
/// holds nothing personal.
std::string_view inWords(EffectReasonToken token) noexcept;

} // namespace orvan
