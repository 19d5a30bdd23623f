#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <QtQmlIntegration>
#include <functional>
#include <memory>
#include <optional>

#include "OrvanPlatform/instant.h"
#include "application/desktop/import_run.h"
#include "application/desktop/qt_executor.h"
#include "application/session/session_settings.h"

namespace orvan {

/// How the reading of mail, calendars and contacts stands, as the window tells it. Belongs to Qt's thread; what reads
/// has a thread of its own.
///
/// Destroy it before the loop. It asks what reads to stop, and waits until what was read is written.
class ReadingModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The first start has it.")
  Q_PROPERTY(State state READ state NOTIFY stateChanged FINAL)
  Q_PROPERTY(bool isReading READ isReading NOTIFY stateChanged FINAL)
  /// Whether what is known is known in part only, as far as this window knows.
  Q_PROPERTY(bool isAnythingUnread READ isAnythingUnread NOTIFY stateChanged FINAL)
  /// What is read, or what became of it: a sentence.
  Q_PROPERTY(QString text READ text NOTIFY progressed FINAL)
  /// How much and how fast; may be empty.
  Q_PROPERTY(QString detail READ detail NOTIFY progressed FINAL)
  /// Of all that is to be read, from 0 to 1; less than 0 when it is not known.
  Q_PROPERTY(double share READ share NOTIFY progressed FINAL)

 public:
  enum State {
    /// There is nothing to tell.
    Quiet,
    /// An earlier reading, of this program or before, left something.
    Unfinished,
    Reading,
    Stopping,
    Stopped,
    /// Something could not be read. The rest was.
    Troubled,
    /// The store could not be written to.
    Failed
  };
  Q_ENUM(State)

  /// `now` tells the moment to be taken for now.
  ReadingModel(QtLoop& loop, SessionSettings settings, std::function<Instant()> now, QObject* parent = nullptr);

  State state() const noexcept { return state_; }
  bool isReading() const noexcept { return state_ == Reading || state_ == Stopping; }
  bool isAnythingUnread() const noexcept { return isAnythingUnread_; }
  QString text() const;
  QString detail() const;
  double share() const;

  /// Reads what is new, or goes on where an earlier reading stopped. Nothing happens while one is under way.
  Q_INVOKABLE void readNew();
  /// What was read is kept.
  Q_INVOKABLE void stop();
  /// Says no more of what became of it.
  Q_INVOKABLE void forget();
  /// Offers to go on with what was not read to its end.
  void offerToGoOn();
  /// Of the latest reading.
  const ImportEnd& end() const noexcept { return end_; }

 Q_SIGNALS:
  void stateChanged();
  void progressed();
  void ended();

 private:
  void take(ImportEnd end);
  void setState(State state);

  QtLoop& loop_;
  SessionSettings settings_;
  std::function<Instant()> now_;
  State state_ = Quiet;
  bool isAnythingUnread_ = false;
  ImportEnd end_;
  QTimer tick_;
  std::unique_ptr<ImportRun> run_;
};

} // namespace orvan
