#include "OrvanRelationshipAttention/catch_up/attention_catch_up_selector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

/// A bundle with an open thread at `occurredAt`, none when it is empty.
AttentionEvidenceBundle bundle(std::string personKey, std::string occurredAt = march,
                               std::optional<ChangedContextEvidence> changedContext = std::nullopt) {
  std::vector<OpenThreadEvidence> threads;
  if (!occurredAt.empty()) {
    threads.emplace_back("t", "mail", "i", "se", std::move(occurredAt));
  }
  return {std::move(personKey),
          "2026-03-05T14:00:00Z",
          30,
          threads,
          {},
          std::move(changedContext),
          {},
          {},
          std::nullopt,
          0};
}

AttentionCatchUpPerson person(const std::string& key, std::string name = "Ada") {
  return {key, std::move(name), bundle(key)};
}

/// The person keys of the list.
std::vector<std::string> listed(const std::vector<AttentionCatchUpPerson>& people,
                                const std::vector<Record>& records = {}) {
  std::vector<std::string> keys;
  for (const auto& item : Selector::select(people, records, now)) {
    keys.push_back(item.personKey());
  }
  return keys;
}

std::string keyOf(const AttentionCatchUpPerson& someone) {
  return Selector::select(std::vector{someone}, {}, now).at(0).itemKey();
}

TEST(CatchUpList, KeepsTheOrderOfThePeople) {
  EXPECT_THAT(listed({}), IsEmpty());
  EXPECT_THAT(listed({person("c"), person("a"), {"x", "No reason", bundle("x", "")}, person("b")}),
              ElementsAre("c", "a", "b"));
}

TEST(CatchUpList, ShowsNamesTrimmedAndLeavesOutBlankOnes) {
  const auto items = Selector::select(std::vector{person("a", " \n"), person("b", "\u00a0Ada King\r\n")}, {}, now);
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0].displayName(), "Ada King");
  EXPECT_EQ(items[0].whyNow().definingEventTimestamp(), march);
}

TEST(CatchUpList, LeavesOutUnusableKeysAndBundlesOfSomeoneElse) {
  EXPECT_THAT(listed({person(""), person("a "), {"b", "Ada", bundle("c")}, {"d", "Ada", bundle("d ")}}), IsEmpty());
}

TEST(CatchUpList, ShowsAPersonOnceForTheFirstEntryThatQualifies) {
  const auto items = Selector::select(
      std::vector{person("a", " "), person("a", "First"), person("b"), person("a", "Second")}, {}, now);
  ASSERT_EQ(items.size(), 2U);
  EXPECT_EQ(items[0].displayName(), "First");
  const AttentionCatchUpPerson renewed{"a", "Ada", bundle("a", "2026-03-02T10:00:00Z")};
  EXPECT_THAT(listed({person("a"), renewed}, {{keyOf(person("a")), State::resolved()}}), ElementsAre("a"))
      << "an entry whose reason is hidden does not use up the person";
}

TEST(CatchUpList, DoesNotFallBackToAnotherReason) {
  const ChangedContextEvidence nameless{21, "2026-01-01T10:00:00Z", "2026-03-02T10:00:00Z", {}, 1};
  EXPECT_THAT(listed({{"a", "Ada", bundle("a", march, nameless)}}), IsEmpty());
  const ChangedContextEvidence named{21, "2026-01-01T10:00:00Z", "2026-03-02T10:00:00Z", {"i"}, 1};
  const AttentionCatchUpPerson ada{"a", "Ada", bundle("a", march, named)};
  EXPECT_THAT(listed({ada}, {{keyOf(ada), State::dismissed()}}), IsEmpty());
}

TEST(Dispositions, HideTheItemTheyAreAbout) {
  const auto key = keyOf(person("a"));
  const auto isListed = [&](State state) { return !listed({person("a")}, {{key, state}}).empty(); };
  EXPECT_FALSE(isListed(State::dismissed()));
  EXPECT_FALSE(isListed(State::resolved()));
  EXPECT_FALSE(isListed(State::snoozed(now + 1us)));
  EXPECT_TRUE(isListed(State::snoozed(now)));
  EXPECT_TRUE(isListed(State::active()));
  EXPECT_THAT(listed({person("b")}, {{key, State::dismissed()}}), ElementsAre("b"));
}

TEST(Dispositions, OfAnOlderReasonDoNotHideANewOne) {
  const auto older = keyOf({"a", "Ada", bundle("a", "2026-02-01T10:00:00Z")});
  EXPECT_THAT(listed({person("a")}, {{older, State::dismissed()}}), ElementsAre("a"));
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

TEST(Revalidation, HoldsForTheSameReasonOnly) {
  const auto items = Selector::select(std::vector{person("a")}, {}, now);
  const auto& request = items.at(0).routeRequest();
  const auto stands = [&](const AttentionEvidenceBundle& current) {
    return Selector::revalidate(request.itemKey(), request.personKey(), request.evidenceReferences(), current);
  };
  EXPECT_TRUE(stands(bundle("a")));
  EXPECT_TRUE(stands(bundle("someone else"))) << "the bundle's own person key plays no part";
  EXPECT_FALSE(stands(bundle("a", "")));
  EXPECT_FALSE(stands(bundle("a", "2026-03-02T10:00:00Z")));
  EXPECT_FALSE(stands(bundle("a", march, ChangedContextEvidence{21, march, "2026-03-02T10:00:00Z", {"i"}, 1})));
}

TEST(Revalidation, ComparesKeyPersonAndReferencesInOrder) {
  const auto items = Selector::select(std::vector{person("a")}, {}, now);
  const auto& item = items.at(0);
  const auto references = item.whyNow().evidenceReferences();
  const std::vector reversed(references.rbegin(), references.rend());
  EXPECT_FALSE(Selector::revalidate(item.itemKey(), "a", reversed, bundle("a")));
  EXPECT_FALSE(Selector::revalidate(item.itemKey(), "a", std::span{references}.first(2), bundle("a")));
  EXPECT_FALSE(Selector::revalidate(item.itemKey(), "b", references, bundle("a")));
  EXPECT_FALSE(Selector::revalidate(item.itemKey(), "a ", references, bundle("a")));
}

} // namespace
} // namespace orvan
