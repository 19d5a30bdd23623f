#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"

#include <gtest/gtest.h>

namespace orvan {
namespace {

using namespace std::chrono_literals;
using Action = AttentionItemAction;
using Record = AttentionItemDispositionRecord;
using State = AttentionItemState;
using Transition = AttentionItemDispositionTransition;

const Instant asOf = std::chrono::sys_days{std::chrono::year{2026} / 3 / 5} + 14h;

TEST(ItemState, IsThatOfItsOwnRecordUntilTheSnoozeEnds) {
  const auto stateOf = [](State stored) { return Transition::state("key", Record{"key", stored}, asOf); };
  EXPECT_EQ(stateOf(State::dismissed()), State::dismissed());
  EXPECT_EQ(stateOf(State::resolved()), State::resolved());
  EXPECT_EQ(stateOf(State::snoozed(asOf + 1us)), State::snoozed(asOf + 1us));
  EXPECT_EQ(stateOf(State::snoozed(asOf)), State::active());
  EXPECT_EQ(stateOf(State::snoozed(asOf - 1us)), State::active());
  EXPECT_EQ(Transition::state("a", std::nullopt, asOf), State::active());
  EXPECT_EQ(Transition::state("a", Record("b", State::dismissed()), asOf), State::active());
}

State after(Action action, State current) {
  const auto record = Transition::apply(action, current, "key", asOf);
  EXPECT_EQ(record.itemKey(), "key");
  return record.state();
}

TEST(Actions, OnAnActiveOrSnoozedItem) {
  EXPECT_EQ(after(Action::snooze(asOf + 1us), State::active()), State::snoozed(asOf + 1us));
  EXPECT_EQ(after(Action::snooze(asOf), State::active()), State::active());
  EXPECT_EQ(after(Action::snooze(asOf), State::snoozed(asOf)), State::active()) << "the old snooze is over";
  const auto running = State::snoozed(asOf + 2h);
  EXPECT_EQ(after(Action::snooze(asOf + 1h), running), State::snoozed(asOf + 1h));
  EXPECT_EQ(after(Action::snooze(asOf + 3h), running), State::snoozed(asOf + 3h));
  EXPECT_EQ(after(Action::snooze(asOf - 1h), running), running);
  for (const auto& current : {State::active(), running}) {
    EXPECT_EQ(after(Action::dismiss(), current), State::dismissed());
    EXPECT_EQ(after(Action::resolve(), current), State::resolved());
  }
}

TEST(Actions, ChangeNothingOnceAnItemIsDismissedOrResolved) {
  for (const auto& last : {State::dismissed(), State::resolved()}) {
    for (const auto& action : {Action::snooze(asOf + 1h), Action::snooze(asOf), Action::dismiss(), Action::resolve()}) {
      EXPECT_EQ(after(action, last), last);
    }
  }
}

} // namespace
} // namespace orvan
