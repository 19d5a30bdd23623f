#include "OrvanPlatform/human_date.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

class HumanDate : public testing::Test {
 protected:
  static void useSettings(const char* locale, const char* zone) {
    setenv("LC_ALL", locale, 1);
    setenv("TZ", zone, 1);
  }

  static std::string dateOf(const char* timestamp) { return humanDateText(*parseInternetDateTime(timestamp)); }
};

TEST_F(HumanDate, FollowsTheSettingsOfTheMomentItIsAsked) {
  useSettings("en_US.UTF-8", "UTC");
  EXPECT_EQ(dateOf("2026-03-04T23:30:00Z"), "Mar 4, 2026");
  useSettings("en_US.UTF-8", "Asia/Tokyo");
  EXPECT_EQ(dateOf("2026-03-04T23:30:00Z"), "Mar 5, 2026");
  useSettings("de_DE.UTF-8", "Asia/Tokyo");
  EXPECT_EQ(dateOf("2026-03-04T23:30:00Z"), "05.03.2026");
  useSettings("sr_RS.UTF-8@latin", "Asia/Tokyo");
  EXPECT_EQ(dateOf("2026-03-04T23:30:00Z"), "5. 3. 2026.");
  useSettings("C", "America/New_York");
  EXPECT_EQ(dateOf("2026-03-05T03:00:00+01:00"), "Mar 4, 2026");
}

} // namespace
} // namespace orvan
