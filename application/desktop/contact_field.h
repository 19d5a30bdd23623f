#pragma once

#include <QColor>
#include <QFont>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QtQmlIntegration>

#include "application/desktop/field_layout.h"
#include "application/desktop/overview_model.h"

namespace orvan {

/// Draws the people of an overview: each a dot, the larger the more is exchanged, the further from today the longer ago
/// the last contact was, in three bands by who waits for whom. Those who drifted away have the accent. What is pointed
/// at is not drawn here, so that nothing is painted anew for it.
class ContactField : public QQuickPaintedItem {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(orvan::OverviewModel* overview READ overview WRITE setOverview NOTIFY changed FINAL)
  Q_PROPERTY(QColor textColor MEMBER textColor_ NOTIFY changed FINAL)
  Q_PROPERTY(QColor accent MEMBER accent_ NOTIFY changed FINAL)
  /// The length of a pixel of usual text.
  Q_PROPERTY(qreal unit MEMBER unit_ NOTIFY changed FINAL)
  Q_PROPERTY(QFont font MEMBER font_ NOTIFY changed FINAL)
  Q_PROPERTY(bool isMirrored MEMBER isMirrored_ NOTIFY changed FINAL)
  Q_PROPERTY(int drawnCount READ drawnCount NOTIFY laidOut FINAL)

 public:
  explicit ContactField(QQuickItem* parent = nullptr);

  OverviewModel* overview() const noexcept { return overview_; }
  void setOverview(OverviewModel* overview);
  int drawnCount() const noexcept { return static_cast<int>(layout_.dots.size()); }

  // People are named by the place of their dot. -1 is nobody.
  Q_INVOKABLE int personAt(qreal x, qreal y) const;
  /// Whoever is next in a direction: across is 1 to the right and -1 to the left, down 1 or -1. The same when there is
  /// nobody; from nobody, the first.
  Q_INVOKABLE int neighbourOf(int person, int across, int down) const;
  Q_INVOKABLE QRectF areaOf(int person) const;
  Q_INVOKABLE QString keyOf(int person) const;
  Q_INVOKABLE QString nameOf(int person) const;
  Q_INVOKABLE QString factsOf(int person) const;

  void paint(QPainter* painter) override;

 Q_SIGNALS:
  void changed();
  /// Places have changed, and who has them.
  void laidOut();

 protected:
  void geometryChange(const QRectF& now, const QRectF& before) override;
  void updatePolish() override;

 private:
  const OverviewPerson* person(int place) const;
  qreal lineHeight() const;
  qreal heightOfDots() const;
  qreal mirroredX(qreal x, qreal width = 0) const;
  void paintScale(QPainter& painter) const;
  void paintBands(QPainter& painter) const;
  void paintDot(QPainter& painter, const FieldDot& dot) const;

  QPointer<OverviewModel> overview_;
  QColor textColor_;
  QColor accent_;
  qreal unit_ = 1;
  QFont font_;
  bool isMirrored_ = false;
  FieldLayout layout_;
  /// As they are written: the long ones shortened.
  std::vector<QString> names_;
};

} // namespace orvan
