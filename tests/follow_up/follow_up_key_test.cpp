#include "OrvanRelationshipAttention/follow_up/internal/follow_up_key.h"

#include <gtest/gtest.h>

#include <sstream>

namespace orvan::internal {
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
  std::istringstream nearMisses{
      "\n|\n5:hello|3:abcd\nhello|abc\na|b|c\n5:hello|3:abc|\n5:hello\n:hello|3:abc\n5 :hello|3:abc\n0x5:hello|3:abc\n"
      "-5:hello|3:abc\n+-5:hello|3:abc\n1:é|1:a\n99999999999999999999:a|1:b\n5.0:hello|3:abc\nfu-v25\nFU-V25:x\n"
      " fu-v25:x\nfu-v26:x\nf-1"};
  for (std::string text; std::getline(nearMisses, text);) {
    EXPECT_FALSE(isLegacyFollowUpKey(text)) << text;
  }
}

} // namespace
} // namespace orvan::internal
