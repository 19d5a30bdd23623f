#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"

#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"

namespace orvan {
namespace {

using State = AttentionItemState;

bool isFinal(const State& state) noexcept {
  return state.kind() == State::Kind::dismissed || state.kind() == State::Kind::resolved;
}

State next(const AttentionItemAction& action, const State& current, Instant asOf) noexcept {
  if (isFinal(current)) {
    return current;
  }
  if (const auto until = action.until()) {
    return *until > asOf ? State::snoozed(*until) : current;
  }
  return action.kind() == AttentionItemAction::Kind::dismiss ? State::dismissed() : State::resolved();
}

} // namespace

std::string_view caseName(AttentionItemState::Kind kind) noexcept {
  switch (kind) {
    case State::Kind::active:
      return "active";
    case State::Kind::snoozed:
      return "snoozed";
    case State::Kind::dismissed:
      return "dismissed";
    case State::Kind::resolved:
      return "resolved";
  }
  return {};
}

State internal::normalized(const State& state, Instant asOf) noexcept {
  const auto until = state.until();
  return until && *until <= asOf ? State::active() : state;
}

State AttentionItemDispositionTransition::state(std::string_view itemKey,
                                                const std::optional<AttentionItemDispositionRecord>& record,
                                                Instant asOf) {
  if (!record || record->itemKey() != itemKey) {
    return State::active();
  }
  return internal::normalized(record->state(), asOf);
}

AttentionItemDispositionRecord AttentionItemDispositionTransition::apply(const AttentionItemAction& action,
                                                                         const State& state, std::string itemKey,
                                                                         Instant asOf) {
  return {std::move(itemKey), next(action, internal::normalized(state, asOf), asOf)};
}

} // namespace orvan
