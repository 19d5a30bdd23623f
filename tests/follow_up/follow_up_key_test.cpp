#include "OrvanRelationshipAttention/follow_up/follow_up_key.h"

#include <gtest/gtest.h>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

TEST(FollowUpKey, CountsBytesSoThatNoTwoPairsShareAKey) {
  EXPECT_EQ(followUpKey("abc", "p1"), "3:abc|2:p1");
  EXPECT_EQ(followUpKey("é", ""), "2:é|0:");
  EXPECT_NE(followUpKey("a|1:b", "c"), followUpKey("a", "b|1:c"));
}

TEST(FollowUpKey, IsKnownAmongIdentifiersByItsForm) {
  for (const char* key :
       {"5:hello|3:abc", "2:é|0:", "0:|0:", "05:hello|+3:abc", "3:a:b|1::", "fu-v25:", "fu-v25:x|y"}) {
    EXPECT_TRUE(isLegacyFollowUpKey(key)) << key;
  }
  EXPECT_TRUE(isLegacyFollowUpKey(followUpKey("source", "Zoë")));
}

TEST(FollowUpKey, NearMissesAreNotKnown) {
  for (const char* text : {"",
                           "|",
                           "5:hello|3:abcd",
                           "hello|abc",
                           "a|b|c",
                           "5:hello|3:abc|",
                           "5:hello",
                           ":hello|3:abc",
                           "5 :hello|3:abc",
                           "0x5:hello|3:abc",
                           "-5:hello|3:abc",
                           "+-5:hello|3:abc",
                           "1:é|1:a",
                           "99999999999999999999:a|1:b",
                           "5.0:hello|3:abc",
                           "fu-v25",
                           "FU-V25:x",
                           " fu-v25:x",
                           "fu-v26:x",
                           "f-1"}) {
    EXPECT_FALSE(isLegacyFollowUpKey(text)) << text;
  }
}

TEST(FollowUpKey, AppearsInLogsAsTheBeginningOfItsDigest) {
  EXPECT_EQ(followUpKeyHash(""), "e3b0c44298fc");
  EXPECT_EQ(followUpKeyHash("abc"), "ba7816bf8f01");
}

TEST(MinuteStamp, DropsWhatLiesBelowTheMinute) {
  const Instant instant = *parseInternetDateTime("2026-03-04T10:41:59+01:00") + std::chrono::milliseconds{900};
  EXPECT_EQ(iso8601Minute(instant), "2026-03-04T09:41Z");
}

} // namespace
} // namespace orvan
