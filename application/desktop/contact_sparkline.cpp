#include "application/desktop/contact_sparkline.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstddef>

namespace orvan {
namespace {

/// A week with as many mails has a bar of the whole height even if there was never a busier one: a lone mail is to look
/// like one.
constexpr double leastOfAFullBar = 5;
constexpr qreal leastHeight = 2;

/// What part of the height the meetings have, where there are any.
constexpr qreal partOfMeetings = 0.14;

double busiestWeekOf(const ContactHistory& history) {
  const auto most = std::max(std::ranges::max(history.mailsTo), std::ranges::max(history.mailsFrom));
  return std::max(leastOfAFullBar, static_cast<double>(most));
}

} // namespace

ContactSparkline::ContactSparkline(QQuickItem* parent) : QQuickPaintedItem(parent) {
  connect(this, &ContactSparkline::changed, this, [this] { update(); });
}

void ContactSparkline::setPicture(const ContactPicture& picture) {
  if (picture_ != picture) {
    picture_ = picture;
    Q_EMIT changed();
  }
}

void ContactSparkline::geometryChange(const QRectF& now, const QRectF& before) {
  QQuickPaintedItem::geometryChange(now, before);
  Q_EMIT changed();
}

qreal ContactSparkline::edgeOf(std::int64_t week) const {
  const auto place = static_cast<qreal>(week - picture_.history().firstWeek);
  return std::round(width() * std::clamp(place / static_cast<qreal>(weeksOfHistory), 0.0, 1.0));
}

QRectF ContactSparkline::quietArea() const {
  const auto& stretch = picture_.quietStretch();
  if (!stretch) {
    return {};
  }
  const auto left = edgeOf(stretch->firstWeek);
  return {left, 0, edgeOf(stretch->firstWeek + stretch->weeks) - left, height()};
}

qreal ContactSparkline::quietX() const {
  const auto area = quietArea();
  return isMirrored_ ? width() - area.right() : area.left();
}

qreal ContactSparkline::quietWidth() const {
  return quietArea().width();
}

void ContactSparkline::paint(QPainter* painter) {
  if (!picture_.hasContact()) {
    return;
  }
  if (isMirrored_) {
    painter->translate(width(), 0);
    painter->scale(-1, 1);
  }
  painter->fillRect(quietArea(), shade_);
  paintBars(*painter);
  paintMeetings(*painter);
}

/// As high as the square root of the count: so one busy week leaves the others visible, and still is the highest, which
/// a cap would not tell. Both sides share a scale, to be compared.
void ContactSparkline::paintBars(QPainter& painter) const {
  const auto& history = picture_.history();
  const auto line = std::round(height() * (picture_.meetings() > 0 ? 1 - partOfMeetings : 1) / 2);
  const auto busiest = busiestWeekOf(history);
  const auto heightOf = [line, busiest](std::int64_t count) {
    return count <= 0 ? 0
                      : std::max(leastHeight, std::round((line - 1) * std::sqrt(static_cast<double>(count) / busiest)));
  };
  painter.fillRect(QRectF{0, line, width(), 1}, shade_);
  for (std::size_t place = 0; place < weeksOfHistory; ++place) {
    const auto week = history.firstWeek + static_cast<std::int64_t>(place);
    const auto left = edgeOf(week);
    const auto width = std::max(1.0, std::floor(this->width() / static_cast<qreal>(weeksOfHistory)) - 1);
    const auto own = heightOf(history.mailsTo[place]);
    painter.fillRect(QRectF{left, line - own, width, own}, ownColor_);
    painter.fillRect(QRectF{left, line + 1, width, heightOf(history.mailsFrom[place])}, theirColor_);
  }
}

void ContactSparkline::paintMeetings(QPainter& painter) const {
  const auto& history = picture_.history();
  const auto radius = std::max(1.5, height() * partOfMeetings / 4);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(theirColor_);
  for (std::size_t place = 0; place < weeksOfHistory; ++place) {
    if (history.meetings[place] > 0) {
      const auto week = history.firstWeek + static_cast<std::int64_t>(place);
      const auto middle = (edgeOf(week) + edgeOf(week + 1)) / 2;
      painter.drawEllipse(QPointF{middle, height() - radius - 1}, radius, radius);
    }
  }
}

} // namespace orvan
