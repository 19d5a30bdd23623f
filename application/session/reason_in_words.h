#pragma once

#include <string>

#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

namespace orvan {

/// The whole reason in one line: its headline and what it rests on.
std::string reasonInWords(const AttentionWhyNowItem& item);

} // namespace orvan
