#include "OrvanRelationshipAttention/catch_up/attention_catch_up_selector.h"

#include <gmock/gmock.h>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"

namespace orvan {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Record = AttentionItemDispositionRecord;
using Selector = AttentionCatchUpSelector;
using State = AttentionItemState;

const Instant now = std::chrono::sys_days{std::chrono::year{2026} / 3 / 5} + 14h;
const std::string march = "2026-03-01T10:00:00Z";
const std::string later = "2026-03-02T10:00:00Z";

/// A bundle with an open thread at `occurredAt`, none when it is empty.
AttentionEvidenceBundle bundle(std::string personKey, std::string occurredAt = march,
                               std::optional<ChangedContextEvidence> changedContext = std::nullopt) {
  std::vector<OpenThreadEvidence> threads;
  if (!occurredAt.empty()) {
    threads.emplace_back("t", "mail", "i", "se", std::move(occurredAt));
  }
  return {std::move(personKey), "", 30, threads, {}, std::move(changedContext), {}, {}, std::nullopt, 0};
}

ChangedContextEvidence resumption(std::vector<std::string> interactions) {
  return {21, "2026-01-01T10:00:00Z", later, std::move(interactions), 1};
}

AttentionCatchUpPerson person(const std::string& key, std::string name = "Ada") {
  return {key, std::move(name), bundle(key)};
}

/// The person keys and names of the list.
std::vector<std::string> listed(const std::vector<AttentionCatchUpPerson>& people,
                                const std::vector<Record>& records = {}) {
  std::vector<std::string> entries;
  for (const auto& item : Selector::select(people, records, now)) {
    entries.push_back(item.personKey() + ' ' + item.displayName());
  }
  return entries;
}

std::string keyOf(const AttentionCatchUpPerson& someone) {
  return Selector::select(std::vector{someone}, {}, now).at(0).itemKey();
}

TEST(CatchUpList, KeepsTheOrderOfThePeopleAndLeavesOutWhomItCannotShow) {
  EXPECT_THAT(listed({}), IsEmpty());
  EXPECT_THAT(listed({person("c"),
                      person("no name", " \n"),
                      person("a"),
                      {"no reason", "Ada", bundle("no reason", "")},
                      person("b", "\u00a0Ada King\r\n"),
                      person(""),
                      person("a "),
                      {"d", "Ada", bundle("d ")}}),
              ElementsAre("c Ada", "a Ada", "b Ada King"));
}

TEST(CatchUpList, ShowsAPersonOnceForTheFirstEntryThatQualifies) {
  EXPECT_THAT(listed({person("a", " "), person("a", "First"), person("b"), person("a", "Second")}),
              ElementsAre("a First", "b Ada"));
  const AttentionCatchUpPerson renewed{"a", "Renewed", bundle("a", later)};
  EXPECT_THAT(listed({person("a"), renewed}, {{keyOf(person("a")), State::resolved()}}), ElementsAre("a Renewed"))
      << "an entry whose reason is hidden does not use up the person";
}

TEST(CatchUpList, DoesNotFallBackToAnotherReason) {
  EXPECT_THAT(listed({{"a", "Ada", bundle("a", march, resumption({}))}}), IsEmpty());
  const AttentionCatchUpPerson ada{"a", "Ada", bundle("a", march, resumption({"i"}))};
  EXPECT_THAT(listed({ada}, {{keyOf(ada), State::dismissed()}}), IsEmpty());
}

TEST(Dispositions, HideTheItemTheyAreAboutAndNoOther) {
  const auto key = keyOf(person("a"));
  const auto isListed = [&](State state) { return !listed({person("a")}, {{key, state}}).empty(); };
  EXPECT_FALSE(isListed(State::dismissed()));
  EXPECT_FALSE(isListed(State::resolved()));
  EXPECT_FALSE(isListed(State::snoozed(now + 1us)));
  EXPECT_TRUE(isListed(State::snoozed(now)));
  EXPECT_TRUE(isListed(State::active()));
  EXPECT_THAT(listed({person("b"), {"a", "Ada", bundle("a", later)}}, {{key, State::dismissed()}}),
              ElementsAre("b Ada", "a Ada"));
}

TEST(Dispositions, OfOneKeyCountByTheirStoredState) {
  const auto key = keyOf(person("a"));
  const auto isListed = [&](State first, State second) {
    return !listed({person("a")}, {{key, first}, {key, second}}).empty();
  };
  const auto over = State::snoozed(now - 1h);
  const auto running = State::snoozed(now + 1h);
  EXPECT_FALSE(isListed(State::dismissed(), State::active()));
  EXPECT_TRUE(isListed(State::active(), over));
  EXPECT_FALSE(isListed(State::active(), running));
  EXPECT_FALSE(isListed(over, State::dismissed()));
  EXPECT_FALSE(isListed(State::resolved(), over));
  EXPECT_TRUE(isListed(over, running)) << "of two snoozes the first listed counts";
  EXPECT_FALSE(isListed(running, over));
}

TEST(Revalidation, HoldsForTheSameReasonKeyPersonAndReferencesInOrder) {
  const auto item = Selector::select(std::vector{person("a")}, {}, now).at(0);
  const auto references = item.whyNow().evidenceReferences();
  const auto stands = [&](const AttentionEvidenceBundle& current) {
    return Selector::revalidate(item.itemKey(), "a", references, current);
  };
  EXPECT_TRUE(stands(bundle("a")));
  EXPECT_TRUE(stands(bundle("someone else"))) << "the bundle's own person key plays no part";
  EXPECT_FALSE(stands(bundle("a", "")));
  EXPECT_FALSE(stands(bundle("a", later)));
  EXPECT_FALSE(stands(bundle("a", march, resumption({"i"}))));
  const std::vector reversed(references.rbegin(), references.rend());
  EXPECT_FALSE(Selector::revalidate(item.itemKey(), "a", reversed, bundle("a")));
  EXPECT_FALSE(Selector::revalidate(item.itemKey(), "a", std::span{references}.first(2), bundle("a")));
  EXPECT_FALSE(Selector::revalidate(item.itemKey(), "b", references, bundle("a")));
}

} // namespace
} // namespace orvan
