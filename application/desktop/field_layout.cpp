#include "application/desktop/field_layout.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace orvan {
namespace {

constexpr double daysAtLeftEdge = 730;
constexpr double leastRadius = 3;
constexpr double greatestRadius = edgeOfField;
/// So much exchanged has the largest dot, where nobody exchanges more.
constexpr double leastForGreatest = 40;
constexpr double gap = 2;
constexpr double tolerance = 1e-6;

constexpr double leastShrinking = 0.55;

using Dots = std::vector<FieldDot>;

bool touches(QPointF centre, double radius, const QRectF& name) {
  const auto across = std::max({name.left() - centre.x(), 0.0, centre.x() - name.right()});
  const auto down = std::max({name.top() - centre.y(), 0.0, centre.y() - name.bottom()});
  return std::hypot(across, down) < radius + gap - tolerance;
}

bool touch(const FieldDot& dot, const FieldDot& other) {
  const auto way = other.centre - dot.centre;
  return std::hypot(way.x(), way.y()) < other.radius + dot.radius + gap - tolerance ||
         (other.name && touches(dot.centre, dot.radius, *other.name)) ||
         (dot.name &&
          (touches(other.centre, other.radius, *dot.name) || (other.name && dot.name->intersects(*other.name))));
}

bool isFree(const FieldDot& dot, const Dots& others) {
  return std::ranges::none_of(others, [&dot](const FieldDot& other) { return touch(dot, other); });
}

/// From where to where a dot with its name reaches.
std::pair<double, double> widthOf(const FieldDot& dot) {
  const auto left = dot.centre.x() - dot.radius - gap;
  const auto right = dot.centre.x() + dot.radius + gap;
  return dot.name ? std::pair{std::min(left, dot.name->left()), std::max(right, dot.name->right())}
                  : std::pair{left, right};
}

/// Those that may be in the way of a dot, at whatever height.
Dots thoseAboveAndBeneath(const FieldDot& dot, const Dots& all) {
  const auto [left, right] = widthOf(dot);
  Dots near;
  std::ranges::copy_if(all, std::back_inserter(near), [left, right](const FieldDot& other) {
    const auto [otherLeft, otherRight] = widthOf(other);
    return otherLeft < right && left < otherRight;
  });
  return near;
}

void moveTo(double height, FieldDot& dot) {
  if (dot.name) {
    dot.name->translate(0, height - dot.centre.y());
  }
  dot.centre.setY(height);
}

/// Heights at which a dot with its name may just pass above or beneath another.
void addHeightsBeside(const FieldDot& other, const FieldDot& dot, std::vector<double>& heights) {
  const auto add = [&heights](double height, double distance) {
    heights.push_back(height - distance);
    heights.push_back(height + distance);
  };
  const auto across = other.centre.x() - dot.centre.x();
  const auto distance = other.radius + dot.radius + gap;
  if (std::abs(across) < distance) {
    add(other.centre.y(), std::sqrt(distance * distance - across * across));
  }
  const auto halfName = dot.name ? dot.name->height() / 2 : 0;
  if (dot.name && other.centre.x() + other.radius + gap > dot.name->left() &&
      other.centre.x() - other.radius - gap < dot.name->right()) {
    add(other.centre.y(), other.radius + halfName + gap);
  }
  if (other.name) {
    add(other.centre.y(), other.name->height() / 2 + std::max(dot.radius + gap, halfName));
  }
}

/// Moves a dot to the free place that is nearest to the middle of the band; false when there is none.
bool settle(FieldDot& dot, const Dots& all, const QRectF& band) {
  const auto others = thoseAboveAndBeneath(dot, all);
  const auto middle = band.center().y();
  std::vector<double> heights{middle};
  for (const auto& other : others) {
    addHeightsBeside(other, dot, heights);
  }
  std::erase_if(heights,
                [&](double height) { return height - dot.radius < band.top() || height + dot.radius > band.bottom(); });
  std::ranges::sort(heights, {}, [middle](double height) { return std::abs(height - middle); });
  return std::ranges::any_of(heights, [&](double height) {
    moveTo(height, dot);
    return (!dot.name || band.contains(*dot.name)) && isFree(dot, others);
  });
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
    // Rather smaller dots than fewer, or than none with a name; all are drawn to one measure.
    for (shrinking_ = 1; shrinking_ > leastShrinking; shrinking_ *= 0.85) {
      layout.dots = dotsWithin(layout.bands);
      if (layout.dots.size() == entries_.size()) {
        break;
      }
    }
    if (layout.dots.size() < entries_.size()) {
      leastOfNames_ = 0;
      layout.dots = dotsWithin(layout.bands);
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

  Dots dotsWithin(const std::array<QRectF, bandsOfField>& bands) const {
    Dots all;
    for (std::size_t band = 0; band < bandsOfField; ++band) {
      const auto dots = dotsOf(static_cast<FieldBand>(band), bands.at(band).adjusted(0, titleHeight_, 0, -gap));
      all.insert(all.end(), dots.begin(), dots.end());
    }
    std::ranges::sort(all, {}, &FieldDot::entry);
    return all;
  }

  /// With as many names as leave room for the dots.
  Dots dotsOf(FieldBand band, const QRectF& area) const {
    const auto members = membersOf(band);
    Dots dots;
    for (const auto partOfNames : {0.35, 0.25, 0.17, leastOfNames_}) {
      dots = dotsOf(members, partOfNames * area.width() * area.height(), area);
      if (dots.size() == members.size()) {
        break;
      }
    }
    return dots;
  }

  /// The large ones first, so that they lie in the middle and have names.
  std::vector<std::size_t> membersOf(FieldBand band) const {
    std::vector<std::size_t> members;
    for (std::size_t entry = 0; entry < entries_.size(); ++entry) {
      if (entries_[entry].band == band) {
        members.push_back(entry);
      }
    }
    std::ranges::sort(members, {}, [this](std::size_t entry) { return std::pair{-entries_[entry].exchanged, entry}; });
    return members;
  }

  Dots dotsOf(const std::vector<std::size_t>& members, double areaForNames, const QRectF& area) const {
    Dots dots;
    for (const auto entry : members) {
      const auto& nameSize = entries_[entry].nameSize;
      areaForNames -= nameSize.width() * nameSize.height();
      if (auto dot = settledDot(entry, areaForNames > 0, dots, area)) {
        dots.push_back(*std::move(dot));
      }
    }
    return dots;
  }

  std::optional<FieldDot> settledDot(std::size_t entry, bool wantsName, const Dots& others, const QRectF& area) const {
    const auto edge = greatestRadius * unit_;
    const auto room = std::max(0.0, size_.width() - 2 * edge);
    const auto x = edge + room * (1 - distanceFromToday(entries_[entry].daysSinceContact));
    FieldDot dot{entry, {x, area.center().y()}, radiusOf(entries_[entry]), std::nullopt};
    for (const auto& name : wantsName ? namesBeside(dot) : std::vector<QRectF>{}) {
      dot.name = name;
      if (settle(dot, others, area)) {
        return dot;
      }
      moveTo(area.center().y(), dot);
    }
    dot.name.reset();
    // Where many were in touch at the same time, a little beside it says as much.
    for (const auto aside : {0.0, -1.0, 1.0, -2.0, 2.0, -3.0, 3.0}) {
      dot.centre.setX(std::clamp(x + aside * (dot.radius + gap), edge, edge + room));
      if (settle(dot, others, area)) {
        return dot;
      }
    }
    return std::nullopt;
  }

  std::vector<QRectF> namesBeside(const FieldDot& dot) const {
    const auto size = entries_[dot.entry].nameSize;
    const auto away = dot.radius + 3 * unit_;
    const auto top = dot.centre.y() - size.height() / 2;
    return {{{dot.centre.x() + away, top}, size}, {{dot.centre.x() - away - size.width(), top}, size}};
  }

  /// Where the small ones have left room.
  void addNames(FieldLayout& layout) const {
    for (auto& dot : layout.dots) {
      const auto band =
          layout.bands.at(static_cast<std::size_t>(entries_[dot.entry].band)).adjusted(0, titleHeight_, 0, 0);
      for (const auto& name : dot.name ? std::vector<QRectF>{} : namesBeside(dot)) {
        auto named = dot;
        named.name = name;
        const bool isUnhindered = std::ranges::none_of(
            layout.dots, [&](const FieldDot& other) { return other.entry != dot.entry && touch(named, other); });
        if (band.contains(name) && isUnhindered) {
          dot.name = name;
          break;
        }
      }
    }
  }

  const std::vector<FieldEntry>& entries_;
  QSizeF size_;
  double unit_;
  double titleHeight_;
  double most_ = leastForGreatest;
  double shrinking_ = 1;
  /// What part of a band's area the names of the large dots may have at the least.
  double leastOfNames_ = 0.1;
};

} // namespace

double distanceFromToday(double daysSinceContact) {
  return std::log1p(std::clamp(daysSinceContact, 0.0, daysAtLeftEdge)) / std::log1p(daysAtLeftEdge);
}

FieldLayout layOutField(const std::vector<FieldEntry>& entries, QSizeF size, double unit, double titleHeight) {
  return FieldMaker(entries, size, unit, titleHeight).make();
}

} // namespace orvan
