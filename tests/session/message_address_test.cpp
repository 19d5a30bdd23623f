#include "application/session/message_address.h"

#include <gtest/gtest.h>

namespace orvan {
namespace {

TEST(MessageAddress, HoldsNothingThatAnAddressOrAShellWouldReadDifferently) {
  EXPECT_EQ(messageAddressOf("a-1._~b@hill.example"), "mid:a-1._~b@hill.example");
  EXPECT_EQ(messageAddressOf("a/b%2F+c$(d)#?&e \"\n\xc3\xa9@h"),
            "mid:a%2Fb%252F%2Bc%24%28d%29%23%3F%26e%20%22%0A%C3%A9@h");
}

} // namespace
} // namespace orvan
