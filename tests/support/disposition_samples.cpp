#include "tests/support/disposition_samples.h"

#include <array>
#include <chrono>
#include <utility>

#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"
#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using Kind = AttentionWhyNowItem::Kind;
using Reference = AttentionWhyNowEvidenceReference;

} // namespace

const Instant actionTime = std::chrono::sys_days{std::chrono::year{2026} / 3 / 5} + 14h + 7min + 9s;

AttentionCatchUpItem sampleItem(std::string itemKey, std::string personKey, Kind kind,
                                std::vector<Reference> references) {
  auto whyNow = internal::AttentionWhyNowItemMaker::memberwise(kind, "2026-03-01T10:00:00Z", "A reason", {},
                                                               std::move(references), true, true);
  return internal::AttentionCatchUpItemMaker::make(std::move(itemKey), std::move(personKey), "Ada", std::move(whyNow));
}

AttentionCatchUpItem numberedItem(int number) {
  const auto text = std::to_string(number);
  return sampleItem(
      "item-" + text, numberedPerson(number), Kind::openThread,
      {Reference::interaction("i-" + text), Reference::sourceEvent("se-" + text), Reference::thread("t-" + text)});
}

AttentionItemAction numberedAction(int number) {
  const std::array actions{AttentionItemAction::snooze(actionTime + number * 60s + 24h), AttentionItemAction::dismiss(),
                           AttentionItemAction::resolve()};
  return actions.at(static_cast<std::size_t>(number % 3));
}

AttentionItemState numberedState(int number) {
  return AttentionItemDispositionTransition::apply(numberedAction(number), AttentionItemState::active(), "", actionTime)
      .state();
}

std::string numberedPerson(int number) {
  return "person-" + std::to_string(number % 7);
}

AttentionCatchUpItem contestedItem(int place) {
  return sampleItem("contested-" + std::to_string(place), "contested", Kind::commitment, {});
}

} // namespace orvan
