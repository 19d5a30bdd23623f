#pragma once

#include <QStringList>

#include "application/desktop/settings_part.h"

namespace orvan {

struct ReminderServiceReading;

/// How reminders are: whether they are allowed, what they say, and the service that shows them. It is asked over the
/// bus, on a thread for what may take long. Belongs to Qt's thread.
class ReminderServiceModel : public orvan::SettingsPart {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The settings have it.")
  Q_PROPERTY(Standing standing READ standing NOTIFY changed FINAL)
  Q_PROPERTY(bool isAllowed READ isAllowed NOTIFY changed FINAL)
  Q_PROPERTY(bool saysNotes READ saysNotes NOTIFY changed FINAL)
  Q_PROPERTY(bool looksForNew READ looksForNew NOTIFY changed FINAL)
  /// How the service is, line by line.
  Q_PROPERTY(QStringList details READ details NOTIFY changed FINAL)
  /// What is not as it should be, and what to do; empty when all is well.
  Q_PROPERTY(QString trouble READ trouble NOTIFY changed FINAL)

 public:
  enum Standing { NotKnown, CannotBeAsked, NotRunning, Running };
  Q_ENUM(Standing)

  using SettingsPart::SettingsPart;

  Standing standing() const noexcept { return standing_; }
  bool isAllowed() const noexcept { return isAllowed_; }
  bool saysNotes() const noexcept { return saysNotes_; }
  bool looksForNew() const noexcept { return looksForNew_; }
  const QStringList& details() const noexcept { return details_; }
  const QString& trouble() const noexcept { return trouble_; }

  /// Reminders that were set stay set while they are not allowed.
  Q_INVOKABLE void allow(bool isAllowed);
  /// What a reminder on the screen says: what the user noted down, or only that there is one.
  Q_INVOKABLE void sayNotes(bool saysNotes);
  Q_INVOKABLE void lookForNew(bool looksForNew);
  Q_INVOKABLE void showTest();
  /// Where the desktop has not started it.
  Q_INVOKABLE void startService();

 Q_SIGNALS:
  void changed();
  /// The follow-ups of this store may have reminders from now on that were not set.
  void allowed();

 protected:
  Task<void> refresh() override;

 private:
  template <typename Change>
  Task<void> change(Change change, QString done);
  Task<void> allowIt(bool isAllowed);
  Task<void> start();
  void show(const ReminderServiceReading& reading);
  void showAbsence(Standing standing, const QString& trouble);

  Standing standing_ = NotKnown;
  bool isAllowed_ = false;
  bool saysNotes_ = false;
  bool looksForNew_ = false;
  QStringList details_;
  QString trouble_;
};

} // namespace orvan
