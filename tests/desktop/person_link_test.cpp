#include "application/desktop/person_link.h"

#include <gtest/gtest.h>

namespace orvan {
namespace {

TEST(PersonLink, HoldsAKeyAndNothingThatCouldBeANameOrAnAddress) {
  EXPECT_EQ(personKeyIn("orvan://person/p-2l7i7jzafzu6b"), "p-2l7i7jzafzu6b");
  EXPECT_EQ(personKeyIn("orvan://person/p-2l7i7jzafzu6b-2/"), "p-2l7i7jzafzu6b-2");
  for (const auto* text : {"p-2l7i7jzafzu6b", "orvan:p-2l7i7jzafzu6b", "orvan://person/", "orvan://person/p-",
                           "orvan://person/Ada", "orvan://person/ada@hill.example", "orvan://person/p-2l7i?x=1",
                           "orvan://person/p-2l7i/../x", "orvan://store/p-2l7i", "orvan://person/p-%61"}) {
    EXPECT_EQ(personKeyIn(text), std::nullopt) << text;
  }
}

} // namespace
} // namespace orvan
