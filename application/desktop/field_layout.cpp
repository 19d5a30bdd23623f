#include "application/desktop/field_layout.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace orvan {
namespace {

constexpr double daysAtLeftEdge = 730;
constexpr double leastRadius = 3;
constexpr double greatestRadius = 15;
/// So much exchanged has the largest dot, where nobody exchanges more.
constexpr double leastForGreatest = 40;
constexpr double gap = 1.5;

using Circles = std::vector<FieldDot>;

bool isFree(QPointF centre, double radius, const Circles& others) {
  return std::ranges::none_of(others, [&](const FieldDot& other) {
    return std::hypot(other.centre.x() - centre.x(), other.centre.y() - centre.y()) <
           other.radius + radius + gap - 1e-6;
  });
}

/// The place nearest to the middle of the band at which a dot touches none of the others.
std::optional<QPointF> freePlace(double x, double radius, const Circles& others, const QRectF& band) {
  const auto middle = band.center().y();
  std::vector<double> heights{middle};
  for (const auto& other : others) {
    const auto across = other.centre.x() - x;
    const auto distance = other.radius + radius + gap;
    if (std::abs(across) < distance) {
      const auto up = std::sqrt(distance * distance - across * across);
      heights.push_back(other.centre.y() - up);
      heights.push_back(other.centre.y() + up);
    }
  }
  std::ranges::sort(heights, {}, [middle](double height) { return std::abs(height - middle); });
  for (const auto height : heights) {
    const QPointF centre{x, height};
    if (height - radius >= band.top() && height + radius <= band.bottom() && isFree(centre, radius, others)) {
      return centre;
    }
  }
  return std::nullopt;
}

class FieldMaker {
 public:
  FieldMaker(const std::vector<FieldEntry>& entries, QSizeF size, double unit, double titleHeight)
      : entries_(entries), size_(size), unit_(unit), titleHeight_(titleHeight) {
    for (const auto& entry : entries) {
      most_ = std::max(most_, entry.exchanged);
    }
  }

  FieldLayout make() {
    FieldLayout layout;
    layout.bands = bands();
    // Smaller dots rather than fewer.
    for (shrinking_ = 1; shrinking_ > 0.45; shrinking_ *= 0.85) {
      layout.dots = dotsWithin(layout.bands);
      if (layout.dots.size() == entries_.size()) {
        break;
      }
    }
    addNames(layout);
    return layout;
  }

 private:
  double radiusOf(const FieldEntry& entry) const {
    const auto part = std::sqrt(std::max(entry.exchanged, 0.0) / most_);
    return unit_ * shrinking_ * (leastRadius + (greatestRadius - leastRadius) * part);
  }

  /// As high as the dots of each need, and never so low that one has no room.
  std::array<QRectF, bandsOfField> bands() const {
    std::array<double, bandsOfField> shares{};
    for (const auto& entry : entries_) {
      const auto radius = radiusOf(entry);
      shares.at(static_cast<std::size_t>(entry.band)) += radius * radius;
    }
    double sum = 0;
    for (auto& share : shares) {
      share = std::sqrt(share);
      sum += share;
    }
    const auto least = titleHeight_ + 2.4 * greatestRadius * unit_;
    const auto toShare = std::max(0.0, size_.height() - least * bandsOfField);
    std::array<QRectF, bandsOfField> bands;
    double top = 0;
    for (std::size_t band = 0; band < bandsOfField; ++band) {
      const auto part = sum > 0 ? shares.at(band) / sum : 1.0 / bandsOfField;
      bands.at(band) = {0, top, size_.width(), least + toShare * part};
      top = bands.at(band).bottom();
    }
    return bands;
  }

  Circles dotsWithin(const std::array<QRectF, bandsOfField>& bands) const {
    Circles all;
    for (std::size_t band = 0; band < bandsOfField; ++band) {
      const auto dots = dotsOf(static_cast<FieldBand>(band), bands.at(band).adjusted(0, titleHeight_, 0, -gap));
      all.insert(all.end(), dots.begin(), dots.end());
    }
    std::ranges::sort(all, {}, &FieldDot::entry);
    return all;
  }

  /// The large ones first, so that they lie in the middle.
  Circles dotsOf(FieldBand band, const QRectF& area) const {
    std::vector<std::size_t> members;
    for (std::size_t entry = 0; entry < entries_.size(); ++entry) {
      if (entries_[entry].band == band) {
        members.push_back(entry);
      }
    }
    std::ranges::sort(members, {}, [this](std::size_t entry) { return std::pair{-entries_[entry].exchanged, entry}; });
    Circles dots;
    for (const auto entry : members) {
      const auto radius = radiusOf(entries_[entry]);
      const auto reach = greatestRadius * unit_;
      const auto room = std::max(0.0, size_.width() - 2 * reach);
      const auto x = reach + room * (1 - distanceFromToday(entries_[entry].daysSinceContact));
      if (const auto centre = freePlace(x, radius, dots, area)) {
        dots.push_back({entry, *centre, radius, std::nullopt});
      }
    }
    return dots;
  }

  void addNames(FieldLayout& layout) const {
    std::vector<QRectF> taken;
    for (auto& dot : layout.dots) {
      for (const auto& place : placesForName(dot)) {
        if (hasRoom(place, dot, layout, taken)) {
          dot.name = place;
          taken.push_back(place);
          break;
        }
      }
    }
  }

  std::array<QRectF, 4> placesForName(const FieldDot& dot) const {
    const auto size = entries_[dot.entry].nameSize;
    const auto away = dot.radius + 3 * unit_;
    const QSizeF half = size / 2;
    return {QRectF{{dot.centre.x() + away, dot.centre.y() - half.height()}, size},
            QRectF{{dot.centre.x() - away - size.width(), dot.centre.y() - half.height()}, size},
            QRectF{{dot.centre.x() - half.width(), dot.centre.y() + dot.radius}, size},
            QRectF{{dot.centre.x() - half.width(), dot.centre.y() - dot.radius - size.height()}, size}};
  }

  bool hasRoom(const QRectF& place, const FieldDot& owner, const FieldLayout& layout,
               const std::vector<QRectF>& taken) const {
    const auto& band = layout.bands.at(static_cast<std::size_t>(entries_[owner.entry].band));
    const auto around = place.adjusted(-2 * unit_, 0, 2 * unit_, 0);
    return band.adjusted(0, titleHeight_, 0, 0).contains(place) &&
           std::ranges::none_of(taken, [&around](const QRectF& other) { return other.intersects(around); }) &&
           std::ranges::none_of(layout.dots, [&](const FieldDot& dot) {
             const auto side = 2 * dot.radius;
             const QRectF square{dot.centre - QPointF{dot.radius, dot.radius}, QSizeF{side, side}};
             return dot.entry != owner.entry && square.intersects(around);
           });
  }

  const std::vector<FieldEntry>& entries_;
  QSizeF size_;
  double unit_;
  double titleHeight_;
  double most_ = leastForGreatest;
  double shrinking_ = 1;
};

} // namespace

double distanceFromToday(double daysSinceContact) {
  return std::log1p(std::clamp(daysSinceContact, 0.0, daysAtLeftEdge)) / std::log1p(daysAtLeftEdge);
}

FieldLayout layOutField(const std::vector<FieldEntry>& entries, QSizeF size, double unit, double titleHeight) {
  return FieldMaker(entries, size, unit, titleHeight).make();
}

} // namespace orvan
