#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <array>
#include <cstddef>
#include <optional>
#include <vector>

namespace orvan {

/// The bands of a field of people, from above.
enum class FieldBand { waitingForUser, nobodyWaits, waitingForThem };
inline constexpr std::size_t bandsOfField = 3;

/// Today and two years ago lie so many units from the edges, so that the largest dot has room there.
inline constexpr double edgeOfField = 12;

/// Somebody to find a place for.
struct FieldEntry {
  FieldBand band;
  double daysSinceContact;
  /// How much was exchanged: the area of the dot.
  double exchanged;
  /// How large the name is as it would be written.
  QSizeF nameSize;
};

struct FieldDot {
  /// Of `entries`.
  std::size_t entry;
  QPointF centre;
  double radius;
  /// Where the name stands; nothing where there is no room for it.
  std::optional<QRectF> name;
};

/// Where everything lies, with today at the right. Nothing overlaps.
struct FieldLayout {
  /// In the order of the entries; those are missing for whom there was no room.
  std::vector<FieldDot> dots;
  std::array<QRectF, bandsOfField> bands;
};

/// How far from the right edge, in parts of the width, contact of so many days ago lies: 0 for now, 1 for two years and
/// all before. In between by the logarithm, because a week tells much of yesterday and nothing of last year.
double distanceFromToday(double daysSinceContact);

/// Lays out people within `size`. `unit` is the length of a pixel of usual text, and `titleHeight` what each band keeps
/// free at its top. Those with whom most is exchanged get a name first. Takes time with the square of the number of
/// entries; meant for some hundreds.
FieldLayout layOutField(const std::vector<FieldEntry>& entries, QSizeF size, double unit, double titleHeight);

} // namespace orvan
