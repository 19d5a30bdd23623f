#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

#include <gmock/gmock.h>

#include "OrvanRelationshipAttention/why_now/internal/attention_why_now_item_maker.h"

namespace orvan {
namespace {

using internal::AttentionWhyNowItemMaker;
using internal::canonicalized;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = AttentionWhyNowItem::Kind;
using Reference = AttentionWhyNowEvidenceReference;

TEST(References, AreKeptOnceInTheOrderOfKindNameAndIdentifierBytes) {
  const auto canonical =
      canonicalized({Reference::thread("x"), Reference::sourceEvent("s1"), Reference::openLoop("x"),
                     Reference::interaction("\u00e9"), Reference::interaction("i2"), Reference::interaction("i10"),
                     Reference::openLoop("x"), Reference::claimEvidence("z")});
  EXPECT_TRUE(canonical.valid);
  EXPECT_THAT(canonical.references,
              ElementsAre(Reference::claimEvidence("z"), Reference::interaction("i10"), Reference::interaction("i2"),
                          Reference::interaction("\u00e9"), Reference::openLoop("x"), Reference::sourceEvent("s1"),
                          Reference::thread("x")));
}

TEST(References, AreAllSpoiledByOneBadIdentifier) {
  for (const char* bad : {"", " t1", "t1\n", "t1\u00a0"}) {
    const auto canonical = canonicalized({Reference::interaction("i1"), Reference::thread(bad)});
    EXPECT_FALSE(canonical.valid) << '"' << bad << '"';
    EXPECT_THAT(canonical.references, IsEmpty());
  }
  EXPECT_TRUE(canonicalized({}).valid);
}

TEST(WhyNowItem, CarriesTheValidityOfItsTimestamp) {
  for (const auto& [timestamp, isValid] : {std::pair{"2026-03-04T09:15:00Z", true},
                                           {"2026-03-04T09:15:00+01:00", true},
                                           {"", false},
                                           {" 2026-03-04T09:15:00Z", false},
                                           {"2026-03-04T09:15:00.250Z", false}}) {
    const auto item = AttentionWhyNowItemMaker::make(Kind::commitment, timestamp, "Headline", {"Line"},
                                                     {Reference::thread("t"), Reference::openLoop("o")});
    EXPECT_EQ(item,
              AttentionWhyNowItemMaker::memberwise(Kind::commitment, timestamp, "Headline", {"Line"},
                                                   {Reference::openLoop("o"), Reference::thread("t")}, true, isValid))
        << timestamp;
  }
}

} // namespace
} // namespace orvan
