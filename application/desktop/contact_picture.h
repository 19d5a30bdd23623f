#pragma once

#include <QString>
#include <QtQmlIntegration>
#include <cstdint>
#include <optional>

#include "application/session/contact_history.h"

namespace orvan {

/// What a picture of two years of contact with a person shows, and what it says in words. A value; one made by default
/// is that of nobody.
class ContactPicture {
  Q_GADGET
  QML_VALUE_TYPE(contactPicture)
  /// Whether there was contact within the two years.
  Q_PROPERTY(bool hasContact READ hasContact FINAL)
  /// All of it as a sentence or two; of contact before the two years, when it was last. Empty when there never was any.
  Q_PROPERTY(QString sentence READ sentence FINAL)
  Q_PROPERTY(QString firstMonth READ firstMonth FINAL)
  Q_PROPERTY(int mailsTo READ mailsTo FINAL)
  Q_PROPERTY(int mailsFrom READ mailsFrom FINAL)
  Q_PROPERTY(int meetings READ meetings FINAL)
  /// What stands over the quiet stretch; empty when none is worth telling.
  Q_PROPERTY(QString quiet READ quiet FINAL)

 public:
  ContactPicture() = default;
  explicit ContactPicture(ContactHistory history);

  const ContactHistory& history() const noexcept { return history_; }
  /// The stretch that goes on, or else the longest one, where it says something.
  const std::optional<QuietStretch>& quietStretch() const noexcept { return quietStretch_; }

  bool hasContact() const noexcept { return mailsTo_ + mailsFrom_ + meetings_ > 0; }
  const QString& sentence() const noexcept { return sentence_; }
  const QString& firstMonth() const noexcept { return firstMonth_; }
  int mailsTo() const noexcept { return mailsTo_; }
  int mailsFrom() const noexcept { return mailsFrom_; }
  int meetings() const noexcept { return meetings_; }
  const QString& quiet() const noexcept { return quiet_; }

  bool operator==(const ContactPicture&) const = default;

 private:
  ContactHistory history_;
  std::optional<QuietStretch> quietStretch_;
  int mailsTo_ = 0;
  int mailsFrom_ = 0;
  int meetings_ = 0;
  QString sentence_;
  QString firstMonth_;
  QString quiet_;
};

} // namespace orvan
