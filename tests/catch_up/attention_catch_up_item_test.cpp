#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"

#include <gtest/gtest.h>

#include "OrvanRelationshipAttention/catch_up/internal/attention_catch_up_item_maker.h"
#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

namespace orvan {
namespace {

using internal::AttentionCatchUpItemMaker;
using Kind = AttentionWhyNowItem::Kind;
using Reference = AttentionWhyNowEvidenceReference;

const std::vector someReferences{Reference::interaction("i-9"), Reference::sourceEvent("se-3"),
                                 Reference::thread("t-1")};

struct Reason {
  Kind kind = Kind::openThread;
  std::string timestamp = "2026-03-01T10:00:00Z";
  std::string headline = "Headline";
  std::vector<Reference> references = someReferences;
  bool referencesAreValid = true;
  bool timestampIsValid = true;
};

AttentionWhyNowItem whyNow(const Reason& reason) {
  return internal::AttentionWhyNowItemMaker::memberwise(reason.kind, reason.timestamp, reason.headline, {},
                                                        reason.references, reason.referencesAreValid,
                                                        reason.timestampIsValid);
}

std::optional<std::string> keyOf(const Reason& reason, std::string_view personKey = "p-42") {
  return AttentionCatchUpItemMaker::itemKey(personKey, whyNow(reason));
}

TEST(ItemKey, ListsPersonKindTimestampAndReferencesBehindTheirLengths) {
  EXPECT_EQ(keyOf({.headline = "Other words"}),
            "4:p-42|10:openThread|20:2026-03-01T10:00:00Z|15:interaction:i-9|16:sourceEvent:se-3|10:thread:t-1");
  EXPECT_EQ(keyOf({.kind = Kind::commitment, .references = {Reference::openLoop("o"), Reference::claimEvidence("c")}}),
            "4:p-42|10:commitment|20:2026-03-01T10:00:00Z|10:openLoop:o|15:claimEvidence:c");
  EXPECT_EQ(keyOf({.kind = Kind::changedContext, .timestamp = "then", .references = {Reference::thread("t")}}, "Zoë"),
            "4:Zoë|14:changedContext|4:then|8:thread:t");
  EXPECT_EQ(keyOf({.kind = Kind::upcomingInteraction, .references = {Reference::thread("a|1:b")}}, "p:1|x"),
            "5:p:1|x|19:upcomingInteraction|20:2026-03-01T10:00:00Z|12:thread:a|1:b");
}

TEST(ItemKey, LeavesOutUnusableReferencesAndIsAbsentWithoutAnyOrForAnInvalidReasonOrPerson) {
  EXPECT_EQ(keyOf({.references = {Reference::openLoop(""), Reference::thread("t\n"), Reference::thread("t")}}),
            keyOf({.references = {Reference::thread("t")}}));
  EXPECT_FALSE(keyOf({.references = {}}));
  EXPECT_FALSE(keyOf({.references = {Reference::thread(""), Reference::thread(" t")}}));
  EXPECT_FALSE(keyOf({.referencesAreValid = false}));
  EXPECT_FALSE(keyOf({.timestampIsValid = false}));
  EXPECT_FALSE(keyOf({}, ""));
  EXPECT_FALSE(keyOf({}, "p-42 "));
}

TEST(ItemKey, OfOnePersonTellsThatOfAnother) {
  EXPECT_EQ(AttentionCatchUpItem::itemKeyFor("Zoë", keyOf({}, "p:1|x").value(), "p:1|x"), keyOf({}, "Zoë"));
  EXPECT_FALSE(AttentionCatchUpItem::itemKeyFor("Zoë", keyOf({}, "p-42").value(), "p-4"));
}

TEST(CatchUpItem, CarriesItsKeyAndRequestsThatAgreeWithIt) {
  const auto item = AttentionCatchUpItemMaker::make("p-42", " Ada ", whyNow({})).value();
  const auto key = keyOf({}).value();
  EXPECT_EQ(item.displayName(), " Ada ");
  EXPECT_EQ(item.id(), key);
  EXPECT_EQ(item.itemKey(), key);
  EXPECT_EQ(item.routeRequest(), AttentionRouteRequest(key, "p-42", someReferences, AttentionRouteKind::personFocus));
  EXPECT_EQ(item.actionRequest(AttentionItemAction::dismiss()),
            AttentionItemActionRequest(key, "p-42", someReferences, AttentionItemAction::dismiss()));
  EXPECT_FALSE(AttentionCatchUpItemMaker::make("p-42 ", "Ada", whyNow({})));
}

TEST(CatchUpItem, OpensThePreparationForCommitmentsAndMeetings) {
  for (const auto& [kind, route] : {std::pair{Kind::changedContext, AttentionRouteKind::personFocus},
                                    {Kind::commitment, AttentionRouteKind::personPrep},
                                    {Kind::upcomingInteraction, AttentionRouteKind::personPrep}}) {
    const auto item = AttentionCatchUpItemMaker::make("key", "p-42", "Ada", whyNow({.kind = kind}));
    EXPECT_EQ(item.routeRequest().kind(), route) << caseName(kind);
  }
}

} // namespace
} // namespace orvan
