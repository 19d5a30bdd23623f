#include "application/desktop/contact_field.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace orvan {
namespace {

constexpr qreal longestName = 200;
/// A dot is found from a little beside it.
constexpr qreal reach = 6;

FieldBand bandOf(WaitingSide waiting) {
  switch (waiting) {
    case WaitingSide::user:
      return FieldBand::waitingForUser;
    case WaitingSide::them:
      return FieldBand::waitingForThem;
    case WaitingSide::nobody:
      break;
  }
  return FieldBand::nobodyWaits;
}

QColor withAlpha(QColor color, float alpha) {
  color.setAlphaF(color.alphaF() * alpha);
  return color;
}

} // namespace

ContactField::ContactField(QQuickItem* parent) : QQuickPaintedItem(parent) {
  connect(this, &ContactField::changed, this, &ContactField::polish);
}

void ContactField::setOverview(OverviewModel* overview) {
  if (overview_ == overview) {
    return;
  }
  if (overview_ != nullptr) {
    overview_->disconnect(this);
  }
  overview_ = overview;
  if (overview_ != nullptr) {
    connect(overview_, &OverviewModel::changed, this, &ContactField::changed);
  }
  Q_EMIT changed();
}

void ContactField::geometryChange(const QRectF& now, const QRectF& before) {
  QQuickPaintedItem::geometryChange(now, before);
  polish();
}

qreal ContactField::lineHeight() const {
  return std::ceil(QFontMetricsF(font_).height());
}

qreal ContactField::heightOfDots() const {
  return std::max(0.0, height() - lineHeight() - 4);
}

void ContactField::updatePolish() {
  const QFontMetricsF metrics(font_);
  std::vector<FieldEntry> entries;
  names_.clear();
  if (overview_ != nullptr) {
    for (const auto& person : overview_->people()) {
      names_.push_back(metrics.elidedText(person.name, Qt::ElideRight, longestName * unit_));
      entries.push_back({bandOf(person.waiting),
                         person.daysSinceContact,
                         person.exchanged,
                         {std::ceil(metrics.horizontalAdvance(names_.back())) + 2, lineHeight()}});
    }
  }
  layout_ = layOutField(entries, {width(), heightOfDots()}, unit_, lineHeight() + 2);
  if (isMirrored_) {
    for (auto& dot : layout_.dots) {
      dot.centre.setX(mirroredX(dot.centre.x()));
      if (dot.name) {
        dot.name->moveLeft(mirroredX(dot.name->left(), dot.name->width()));
      }
    }
  }
  update();
  Q_EMIT laidOut();
}

qreal ContactField::mirroredX(qreal x, qreal width) const {
  return isMirrored_ ? this->width() - x - width : x;
}

const OverviewPerson* ContactField::person(int place) const {
  if (overview_ == nullptr || place < 0 || place >= drawnCount()) {
    return nullptr;
  }
  const auto entry = layout_.dots[static_cast<std::size_t>(place)].entry;
  return entry < overview_->people().size() ? &overview_->people()[entry] : nullptr;
}

int ContactField::personAt(qreal x, qreal y) const {
  int found = -1;
  qreal nearest = reach * unit_;
  for (int place = 0; place < drawnCount(); ++place) {
    const auto& dot = layout_.dots[static_cast<std::size_t>(place)];
    const auto distance =
        dot.name && dot.name->contains(x, y) ? 0 : std::hypot(dot.centre.x() - x, dot.centre.y() - y) - dot.radius;
    if (distance < nearest) {
      nearest = distance;
      found = place;
    }
  }
  return found;
}

int ContactField::neighbourOf(int person, int across, int down) const {
  if (this->person(person) == nullptr) {
    return drawnCount() > 0 ? 0 : -1;
  }
  const auto from = layout_.dots[static_cast<std::size_t>(person)].centre;
  int found = person;
  qreal least = std::numeric_limits<qreal>::max();
  for (int place = 0; place < drawnCount(); ++place) {
    const auto way = layout_.dots[static_cast<std::size_t>(place)].centre - from;
    const auto along = way.x() * across + way.y() * down;
    const auto beside = std::abs(way.x() * down) + std::abs(way.y() * across);
    if (place != person && along > 0 && along + 2 * beside < least) {
      least = along + 2 * beside;
      found = place;
    }
  }
  return found;
}

QRectF ContactField::areaOf(int person) const {
  if (this->person(person) == nullptr) {
    return {};
  }
  const auto& dot = layout_.dots[static_cast<std::size_t>(person)];
  return {dot.centre.x() - dot.radius, dot.centre.y() - dot.radius, 2 * dot.radius, 2 * dot.radius};
}

QString ContactField::keyOf(int person) const {
  const auto* found = this->person(person);
  return found != nullptr ? found->personKey : QString{};
}

QString ContactField::nameOf(int person) const {
  const auto* found = this->person(person);
  return found != nullptr ? found->name : QString{};
}

QString ContactField::factsOf(int person) const {
  const auto* found = this->person(person);
  return found != nullptr ? found->facts : QString{};
}

void ContactField::paint(QPainter* painter) {
  painter->setFont(font_);
  painter->setRenderHint(QPainter::Antialiasing);
  paintBands(*painter);
  paintScale(*painter);
  for (int place = 0; place < drawnCount(); ++place) {
    if (person(place) != nullptr) {
      paintDot(*painter, layout_.dots[static_cast<std::size_t>(place)]);
    }
  }
}

void ContactField::paintBands(QPainter& painter) const {
  const std::array<QString, bandsOfField> titles{tr("They wait for you"), tr("Nobody waits"), tr("You wrote last")};
  for (std::size_t band = 0; band < bandsOfField; ++band) {
    const auto& area = layout_.bands.at(band);
    const auto shade = withAlpha(textColor_, band == 1 ? 0.0F : 0.035F);
    painter.fillRect(area, shade);
    painter.setPen(withAlpha(textColor_, 0.68F));
    const auto side = isMirrored_ ? Qt::AlignRight : Qt::AlignLeft;
    painter.drawText(area.adjusted(8, 3, -8, 0), static_cast<int>(side | Qt::AlignTop | Qt::AlignAbsolute),
                     titles.at(band));
  }
}

/// What lies where, beneath the bands; as many of the marks as have room beside each other.
void ContactField::paintScale(QPainter& painter) const {
  struct Mark {
    double days;
    QString label;
  };
  const std::array marks{Mark{0, tr("today")},        Mark{730, tr("two years ago")}, Mark{30, tr("a month ago")},
                         Mark{365, tr("a year ago")}, Mark{7, tr("a week ago")},      Mark{90, tr("3 months ago")}};
  const auto edge = edgeOfField * unit_;
  const auto line = lineHeight();
  std::vector<QRectF> taken;
  for (const auto& mark : marks) {
    const auto x = edge + (width() - 2 * edge) * (1 - distanceFromToday(mark.days));
    const auto length = QFontMetricsF(font_).horizontalAdvance(mark.label) + 2;
    const auto left = std::clamp(x - length / 2, 0.0, std::max(0.0, width() - length));
    const QRectF place{mirroredX(left, length), height() - line, length, line};
    const auto around = place.adjusted(-0.75 * line, 0, 0.75 * line, 0);
    if (std::ranges::any_of(taken, [&around](const QRectF& other) { return other.intersects(around); })) {
      continue;
    }
    taken.push_back(place);
    painter.setPen(withAlpha(textColor_, 0.68F));
    painter.drawText(place, Qt::AlignCenter, mark.label);
    painter.setPen(withAlpha(textColor_, 0.1F));
    painter.drawLine(QPointF{std::round(mirroredX(x)) + 0.5, 0},
                     QPointF{std::round(mirroredX(x)) + 0.5, heightOfDots()});
  }
}

void ContactField::paintDot(QPainter& painter, const FieldDot& dot) const {
  const auto standing = overview_->people()[dot.entry].standing;
  const bool isTie = standing != ContactStanding::acquainted;
  const auto color = standing == ContactStanding::driftedAway ? accent_ : withAlpha(textColor_, 0.42F);
  painter.setPen(isTie ? QPen(Qt::NoPen) : QPen(color, unit_));
  painter.setBrush(isTie ? QBrush(color) : QBrush(Qt::NoBrush));
  const auto radius = isTie ? dot.radius : dot.radius - unit_ / 2;
  painter.drawEllipse(dot.centre, radius, radius);
  if (dot.name) {
    painter.setPen(textColor_);
    painter.drawText(*dot.name, Qt::AlignCenter, names_[dot.entry]);
  }
}

} // namespace orvan
