#include "OrvanRelationshipAttention/ui/internal/chevron.h"

#include <QLineF>
#include <QPainter>
#include <QPen>
#include <QPolygonF>
#include <algorithm>

namespace orvan::internal {
namespace {

qreal degreesFromDown(Chevron::Direction direction) noexcept {
  switch (direction) {
    case Chevron::Up:
      return 180;
    case Chevron::Left:
      return 90;
    case Chevron::Right:
      return -90;
    case Chevron::Down:
      break;
  }
  return 0;
}

} // namespace

Chevron::Chevron(QQuickItem* parent) : QQuickPaintedItem(parent) {
  setAntialiasing(true);
}

void Chevron::setDirection(Direction direction) {
  if (direction_ != direction) {
    direction_ = direction;
    update();
    Q_EMIT directionChanged();
  }
}

void Chevron::setColor(const QColor& color) {
  if (color_ != color) {
    color_ = color;
    update();
    Q_EMIT colorChanged();
  }
}

void Chevron::paint(QPainter* painter) {
  const qreal side = std::min(width(), height());
  painter->setPen(QPen(color_, side / 7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter->translate(width() / 2, height() / 2);
  painter->rotate(degreesFromDown(direction_));
  const qreal reach = side * 0.36;
  painter->drawPolyline(QPolygonF{{-reach, -reach / 2}, {0, reach / 2}, {reach, -reach / 2}});
}

} // namespace orvan::internal
