#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "OrvanRelationshipAttention/why_now/attention_why_now_internal.h"

namespace orvan {
namespace {

using internal::AttentionWhyNowItemMaker;
using internal::canonicalized;
using testing::ElementsAre;
using testing::IsEmpty;
using Kind = AttentionWhyNowItem::Kind;
using Reference = AttentionWhyNowEvidenceReference;

TEST(References, AreOrderedByKindNameAndThenIdentifierBytes) {
  const auto canonical = canonicalized({Reference::thread("t1"), Reference::sourceEvent("s1"), Reference::openLoop("o"),
                                        Reference::interaction("\u00e9"), Reference::interaction("i2"),
                                        Reference::interaction("i10"), Reference::claimEvidence("z")});
  EXPECT_TRUE(canonical.valid);
  EXPECT_THAT(canonical.references,
              ElementsAre(Reference::claimEvidence("z"), Reference::interaction("i10"), Reference::interaction("i2"),
                          Reference::interaction("\u00e9"), Reference::openLoop("o"), Reference::sourceEvent("s1"),
                          Reference::thread("t1")));
}

TEST(References, AreKeptOnceForEachKindAndIdentifier) {
  const auto canonical = canonicalized(
      {Reference::openLoop("x"), Reference::claimEvidence("c"), Reference::openLoop("x"), Reference::thread("x")});
  EXPECT_TRUE(canonical.valid);
  EXPECT_THAT(canonical.references,
              ElementsAre(Reference::claimEvidence("c"), Reference::openLoop("x"), Reference::thread("x")));
}

TEST(References, AreAllSpoiledByOneBadIdentifier) {
  for (const char* bad : {"", " t1", "t1\n", "t1\u00a0"}) {
    const auto canonical = canonicalized({Reference::interaction("i1"), Reference::thread(bad)});
    EXPECT_FALSE(canonical.valid) << '"' << bad << '"';
    EXPECT_THAT(canonical.references, IsEmpty());
  }
  EXPECT_TRUE(canonicalized({}).valid);
}

TEST(References, HaveOneNameInMemoryAndAnotherInTheStore) {
  using Names = std::pair<std::string_view, std::string_view>;
  const auto names = [](const Reference& reference) {
    return std::pair{reference.keyName(), reference.storedReferenceKind()};
  };
  EXPECT_EQ(names(Reference::sourceEvent("x")), Names("sourceEvent", "source_event"));
  EXPECT_EQ(names(Reference::interaction("x")), Names("interaction", "interaction"));
  EXPECT_EQ(names(Reference::thread("x")), Names("thread", "thread"));
  EXPECT_EQ(names(Reference::openLoop("x")), Names("openLoop", "open_loop"));
  EXPECT_EQ(names(Reference::claimEvidence("x")), Names("claimEvidence", "claim_evidence"));
}

TEST(WhyNowItem, CarriesTheValidityOfItsReferencesAndTimestamp) {
  const auto check = [](const char* timestamp, bool isValid) {
    const auto item = AttentionWhyNowItemMaker::make(Kind::commitment, timestamp, "Headline", {"Line"},
                                                     {Reference::thread("t"), Reference::openLoop("o")});
    const auto with = [&](bool flag) {
      return AttentionWhyNowItemMaker::memberwise(Kind::commitment, timestamp, "Headline", {"Line"},
                                                  {Reference::openLoop("o"), Reference::thread("t")}, true, flag);
    };
    EXPECT_EQ(item, with(isValid)) << timestamp;
    EXPECT_NE(item, with(!isValid)) << timestamp;
  };
  check("2026-03-04T09:15:00Z", true);
  check("2026-03-04T09:15:00+01:00", true);
  for (const char* refused :
       {"", " 2026-03-04T09:15:00Z", "2026-03-04", "2026-03-04T09:15:00.250Z", "2026-03-04T09:15:00"}) {
    check(refused, false);
  }
}

} // namespace
} // namespace orvan
