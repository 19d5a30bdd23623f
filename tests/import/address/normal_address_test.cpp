#include "application/import/address/normal_address.h"

#include <gtest/gtest.h>

namespace orvan {
namespace {

TEST(NormalAddress, IsTheSameHoweverTheAddressIsWritten) {
  for (const auto& [written, normal] : {
           std::pair{"Zoe.M+x@Example.ORG", "zoe.m+x@example.org"},
           {" MAILTO:Zoe@example.org\t", "zoe@example.org"},
           {"'zoe@example.org'", "zoe@example.org"},
           {"o'neil@example.org", "o'neil@example.org"},
           {"ZOË@example.org", "zoë@example.org"},
           {"zoe\u0308@example.org", "zoë@example.org"},
           {"I@example.org", "i@example.org"},
           {"info@MÜLLER.example", "info@xn--mller-kva.example"},
           {"info@mu\u0308ller.example", "info@xn--mller-kva.example"},
           {"info@XN--mller-kva.example", "info@xn--mller-kva.example"},
           {"info@müller。example", "info@xn--mller-kva.example"},
           {"info@straße.example", "info@xn--strae-oqa.example"},
           {"odd@Ü..", "odd@ü.."},
           {"a@b@c.example", "a@b@c.example"},
       }) {
    EXPECT_EQ(normalAddress(written), normal) << written;
  }
}

TEST(NormalAddress, IsThatOfOneMailboxOnly) {
  for (const char* written : {"", "zoe", "@example.org", "zoe@", "''", "mailto:", "zoe @example.org",
                              "Zoe <zoe@example.org>", "a@example.org,b@example.org", "\"zoe\"@example.org"}) {
    EXPECT_EQ(normalAddress(written), std::nullopt) << written;
  }
}

} // namespace
} // namespace orvan
