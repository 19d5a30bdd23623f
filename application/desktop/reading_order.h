#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQmlIntegration>

namespace orvan {

/// Has assistive technology meet what lies in a list in the order in which it is seen, from top to bottom. A view makes
/// its rows as they are needed, and what stands beneath them before any row; the order in which things are made is the
/// one that is read aloud. Belongs to Qt's thread.
class ReadingOrder : public QObject {
  Q_OBJECT
  QML_ELEMENT
  /// What holds the rows; may go before this does.
  Q_PROPERTY(QQuickItem* of READ of WRITE setOf NOTIFY changed FINAL)

 public:
  using QObject::QObject;

  QQuickItem* of() const { return of_; }
  void setOf(QQuickItem* of);

 Q_SIGNALS:
  void changed();

 private:
  void sort();

  QPointer<QQuickItem> of_;
  bool isDue_ = false;
};

} // namespace orvan
