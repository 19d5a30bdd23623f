#include "application/desktop/field_layout.h"

#include <gtest/gtest.h>

#include <cmath>

namespace orvan {
namespace {

TEST(FieldLayout, LaysHundredsOfPeopleAndTheirNamesBesideEachOther) {
  std::vector<FieldEntry> entries;
  for (std::size_t number = 0; number < 240; ++number) {
    const auto age = std::fmod(static_cast<double>(number) * 37.7, 730);
    entries.push_back({static_cast<FieldBand>(number % bandsOfField),
                       number % 5 == 0 ? 3 : age,
                       300.0 / static_cast<double>(number + 1),
                       {90, 14}});
  }
  const auto layout = layOutField(entries, {996, 340}, 1, 16);
  EXPECT_GT(layout.dots.size(), 200U);
  EXPECT_TRUE(layout.dots.front().name) << "the largest has a name";
  for (std::size_t place = 0; place < layout.dots.size(); ++place) {
    const auto& dot = layout.dots[place];
    const auto& band = layout.bands.at(static_cast<std::size_t>(entries[dot.entry].band));
    const QRectF square{dot.centre - QPointF{dot.radius, dot.radius}, QSizeF{2 * dot.radius, 2 * dot.radius}};
    EXPECT_TRUE(band.contains(square));
    for (std::size_t next = place + 1; next < layout.dots.size(); ++next) {
      const auto& other = layout.dots[next];
      const auto way = other.centre - dot.centre;
      EXPECT_GT(std::hypot(way.x(), way.y()), dot.radius + other.radius);
      EXPECT_FALSE(dot.name && other.name && dot.name->intersects(*other.name));
      EXPECT_FALSE(dot.name && dot.name->contains(other.centre));
    }
  }
}

} // namespace
} // namespace orvan
