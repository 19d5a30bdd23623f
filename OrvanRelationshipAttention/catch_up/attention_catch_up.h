#pragma once

/// The catch-up list: one item for each person with a reason to get back in touch, less what the user snoozed,
/// dismissed or resolved.
///
/// Nothing here keeps state, reads a clock or touches a store: people, dispositions and the moment of evaluation are
/// passed in, and everything may be called from any thread.

#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"     // IWYU pragma: export
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_selector.h" // IWYU pragma: export
#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"  // IWYU pragma: export
