#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

namespace orvan::internal {

/// The small sign that tells which way something opens. Painted, because a font may lack it or set it off its line.
class Chevron : public QQuickPaintedItem {
  Q_OBJECT
  QML_NAMED_ELEMENT(AttentionChevron)
  Q_PROPERTY(Direction direction READ direction WRITE setDirection NOTIFY directionChanged FINAL)
  Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged FINAL)

 public:
  enum Direction { Up, Down, Left, Right };
  Q_ENUM(Direction)

  explicit Chevron(QQuickItem* parent = nullptr);

  Direction direction() const noexcept { return direction_; }
  void setDirection(Direction direction);
  QColor color() const noexcept { return color_; }
  void setColor(const QColor& color);

  void paint(QPainter* painter) override;

 Q_SIGNALS:
  void directionChanged();
  void colorChanged();

 private:
  Direction direction_ = Down;
  QColor color_;
};

} // namespace orvan::internal
