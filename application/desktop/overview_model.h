#pragma once

#include <QObject>
#include <QString>
#include <QVariantList>
#include <QtQmlIntegration>
#include <cstddef>
#include <optional>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "application/desktop/qt_executor.h"
#include "application/desktop/store_thread.h"
#include "application/session/contact_overview.h"

namespace orvan {

/// Somebody in the picture of an overview, in words.
struct OverviewPerson {
  QString personKey;
  QString name;
  /// Some lines.
  QString facts;
  ContactStanding standing;
  WaitingSide waiting;
  double daysSinceContact;
  double exchanged;

  bool operator==(const OverviewPerson&) const = default;
};

/// Who drifted away and who waits for whom, among everybody whom the user deals with. Belongs to Qt's thread, and never
/// waits for the store. What it is given must outlive it, as for WindowModel.
class OverviewModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The program makes it.")
  /// Reads when it becomes true; while it is not, readAgain() does nothing.
  Q_PROPERTY(bool isShown READ isShown WRITE setIsShown NOTIFY isShownChanged FINAL)
  Q_PROPERTY(bool isRead READ isRead NOTIFY changed FINAL)
  /// Why nothing could be read; empty when it could.
  Q_PROPERTY(QString failure READ failure NOTIFY changed FINAL)
  /// How many people there was contact with in two years, and how many of those the picture has.
  Q_PROPERTY(int peopleCount READ peopleCount NOTIFY changed FINAL)
  Q_PROPERTY(int pictureCount READ pictureCount NOTIFY changed FINAL)
  /// All of it in a sentence.
  Q_PROPERTY(QString sentence READ sentence NOTIFY changed FINAL)
  /// Three maps with "title", "nobody" for when there is none, "count", and "people": the first few of them, as maps
  /// with "personKey", "name" and "fact".
  Q_PROPERTY(QVariantList groups READ groups NOTIFY changed FINAL)

 public:
  OverviewModel(QtLoop& loop, StoreThread& store, const Clock& clock, std::optional<Instant> asOf,
                QObject* parent = nullptr);

  bool isShown() const noexcept { return isShown_; }
  void setIsShown(bool isShown);
  bool isRead() const noexcept { return isRead_; }
  const QString& failure() const noexcept { return failure_; }
  int peopleCount() const noexcept { return peopleCount_; }
  int pictureCount() const noexcept { return static_cast<int>(people_.size()); }
  const QString& sentence() const noexcept { return sentence_; }
  const QVariantList& groups() const noexcept { return groups_; }
  /// Whom the picture has, those first with whom most is exchanged.
  const std::vector<OverviewPerson>& people() const noexcept { return people_; }

  Q_INVOKABLE void readAgain();

 Q_SIGNALS:
  void isShownChanged();
  void changed();

 private:
  struct Reading;

  static Reading read(Session& session, Instant asOf);
  Task<void> readUntilCurrent();
  void take(const Reading& reading);

  QtLoop& loop_;
  StoreThread& store_;
  const Clock& clock_;
  std::optional<Instant> asOf_;
  bool isShown_ = false;
  bool isRead_ = false;
  bool isReading_ = false;
  bool mustReadAgain_ = false;
  QString failure_;
  int peopleCount_ = 0;
  QString sentence_;
  QVariantList groups_;
  std::vector<OverviewPerson> people_;
};

} // namespace orvan
