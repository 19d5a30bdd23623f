#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

#include "application/desktop/contact_picture.h"

namespace orvan {

/// Draws two years of contact week by week: what the user wrote above a line, what the other wrote below it, meetings
/// as dots beneath, and a quiet stretch shaded. Time runs to the right, or to the left when mirrored. Painted, because
/// other ways draw nothing, or smear the weeks, where there is no graphics card.
class ContactSparkline : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(orvan::ContactPicture picture READ picture WRITE setPicture NOTIFY changed FINAL)
  Q_PROPERTY(QColor ownColor MEMBER ownColor_ NOTIFY changed FINAL)
  Q_PROPERTY(QColor theirColor MEMBER theirColor_ NOTIFY changed FINAL)
  Q_PROPERTY(QColor shade MEMBER shade_ NOTIFY changed FINAL)
  Q_PROPERTY(bool isMirrored MEMBER isMirrored_ NOTIFY changed FINAL)
  /// Where the shaded stretch lies, mirrored or not; nowhere has no width.
  Q_PROPERTY(qreal quietX READ quietX NOTIFY changed FINAL)
  Q_PROPERTY(qreal quietWidth READ quietWidth NOTIFY changed FINAL)

 public:
  explicit ContactSparkline(QQuickItem* parent = nullptr);

  const ContactPicture& picture() const noexcept { return picture_; }
  void setPicture(const ContactPicture& picture);
  qreal quietX() const;
  qreal quietWidth() const;

  void paint(QPainter* painter) override;

 Q_SIGNALS:
  void changed();

 protected:
  void geometryChange(const QRectF& now, const QRectF& before) override;

 private:
  /// The left edge of a week, unless mirrored, on a whole pixel.
  qreal edgeOf(std::int64_t week) const;
  QRectF quietArea() const;
  void paintBars(QPainter& painter) const;
  void paintMeetings(QPainter& painter) const;

  ContactPicture picture_;
  QColor ownColor_;
  QColor theirColor_;
  QColor shade_;
  bool isMirrored_ = false;
};

} // namespace orvan
