#pragma once

#include <QObject>

namespace orvan {

/// Turns the signals that ask the program to end (SIGTERM, SIGINT, SIGHUP) into one of Qt's, so that it ends in order.
/// One for the process, on Qt's thread; when it goes, the signals mean what they meant before.
class EndingSignals final : public QObject {
  Q_OBJECT

 public:
  /// Where the system has no descriptor left, the signals stay as they are.
  explicit EndingSignals(QObject* parent = nullptr);
  ~EndingSignals() override;
  EndingSignals(const EndingSignals&) = delete;
  EndingSignals& operator=(const EndingSignals&) = delete;

 Q_SIGNALS:
  void asked();

 private:
  void read();
};

} // namespace orvan
