#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"

#include <gtest/gtest.h>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up_internal.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_internal.h"

namespace orvan {
namespace {

using internal::AttentionCatchUpItemMaker;
using internal::AttentionWhyNowItemMaker;
using Kind = AttentionWhyNowItem::Kind;
using Reference = AttentionWhyNowEvidenceReference;

struct Reason {
  Kind kind = Kind::openThread;
  std::string timestamp = "2026-03-01T10:00:00Z";
  std::string headline = "Headline";
  std::vector<Reference> references = {Reference::interaction("i-9"), Reference::sourceEvent("se-3"),
                                       Reference::thread("t-1")};
  bool referencesAreValid = true;
  bool timestampIsValid = true;
};

AttentionWhyNowItem whyNow(const Reason& reason) {
  return AttentionWhyNowItemMaker::memberwise(reason.kind, reason.timestamp, reason.headline, {reason.headline},
                                              reason.references, reason.referencesAreValid, reason.timestampIsValid);
}

std::optional<std::string> keyOf(const Reason& reason, std::string_view personKey = "p-42") {
  return AttentionCatchUpItemMaker::itemKey(personKey, whyNow(reason));
}

TEST(ItemKey, ListsPersonKindTimestampAndReferencesBehindTheirLengths) {
  EXPECT_EQ(keyOf({}),
            "4:p-42|10:openThread|20:2026-03-01T10:00:00Z|15:interaction:i-9|16:sourceEvent:se-3|10:thread:t-1");
  EXPECT_EQ(
      keyOf({.kind = Kind::commitment, .references = {Reference::claimEvidence("ce-5"), Reference::openLoop("ol-2")}}),
      "4:p-42|10:commitment|20:2026-03-01T10:00:00Z|18:claimEvidence:ce-5|13:openLoop:ol-2");
  EXPECT_EQ(keyOf({.kind = Kind::changedContext, .references = {Reference::interaction("i")}}, "Zoë"),
            "4:Zoë|14:changedContext|20:2026-03-01T10:00:00Z|13:interaction:i");
  EXPECT_EQ(keyOf({.kind = Kind::upcomingInteraction, .references = {Reference::thread("a|1:b")}}, "p:1|x"),
            "5:p:1|x|19:upcomingInteraction|20:2026-03-01T10:00:00Z|12:thread:a|1:b");
}

TEST(ItemKey, IsAbsentForAnInvalidReasonOrPerson) {
  EXPECT_FALSE(keyOf({.referencesAreValid = false}));
  EXPECT_FALSE(keyOf({.timestampIsValid = false}));
  EXPECT_FALSE(keyOf({}, ""));
  EXPECT_FALSE(keyOf({}, "p-42 "));
  EXPECT_FALSE(keyOf({.references = {}}));
  EXPECT_FALSE(keyOf({.references = {Reference::thread(""), Reference::thread(" t")}}));
}

TEST(ItemKey, LeavesOutReferencesWithUnusableIdentifiers) {
  EXPECT_EQ(keyOf({.references = {Reference::openLoop(""), Reference::thread("t\n"), Reference::thread("t")}}),
            keyOf({.references = {Reference::thread("t")}}));
}

TEST(ItemKey, ChangesWithTheReasonAndNotWithItsWords) {
  EXPECT_EQ(keyOf({}), keyOf({.headline = "Other words"}));
  EXPECT_NE(keyOf({}), keyOf({.kind = Kind::changedContext}));
  EXPECT_NE(keyOf({}), keyOf({.timestamp = "2026-03-01T11:00:00+01:00"}));
  EXPECT_NE(keyOf({.references = {Reference::thread("a"), Reference::thread("b")}}),
            keyOf({.references = {Reference::thread("b"), Reference::thread("a")}}));
}

TEST(CatchUpItem, CarriesRequestsThatAgreeWithIt) {
  const auto item = AttentionCatchUpItemMaker::make("key", "p-42", " Ada ", whyNow({}));
  EXPECT_EQ(item.displayName(), " Ada ");
  EXPECT_EQ(item.id(), item.itemKey());
  const auto references = whyNow({}).evidenceReferences();
  EXPECT_EQ(item.routeRequest(), AttentionRouteRequest("key", "p-42", references, AttentionRouteKind::personFocus));
  EXPECT_EQ(item.actionRequest(AttentionItemAction::dismiss()),
            AttentionItemActionRequest("key", "p-42", references, AttentionItemAction::dismiss()));
}

TEST(CatchUpItem, IsMadeWithItsKeyOrNotAtAll) {
  EXPECT_EQ(AttentionCatchUpItemMaker::make("p-42", "Ada", whyNow({})),
            AttentionCatchUpItemMaker::make(keyOf({}).value_or(""), "p-42", "Ada", whyNow({})));
  EXPECT_FALSE(AttentionCatchUpItemMaker::make("p-42 ", "Ada", whyNow({})));
}

TEST(CatchUpItem, OpensThePreparationForCommitmentsAndMeetings) {
  const auto routeOf = [](Kind kind) {
    return AttentionCatchUpItemMaker::make("key", "p-42", "Ada", whyNow({.kind = kind})).routeRequest().kind();
  };
  EXPECT_EQ(routeOf(Kind::changedContext), AttentionRouteKind::personFocus);
  EXPECT_EQ(routeOf(Kind::commitment), AttentionRouteKind::personPrep);
  EXPECT_EQ(routeOf(Kind::upcomingInteraction), AttentionRouteKind::personPrep);
}

} // namespace
} // namespace orvan
