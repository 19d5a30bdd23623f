#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QtQmlIntegration>
#include <optional>
#include <vector>

#include "OrvanRelationshipAttention/ui/attention_why_now_model.h"
#include "application/desktop/contact_picture.h"
#include "application/desktop/conversation_model.h"
#include "application/desktop/person_choices.h"
#include "application/desktop/store_readings.h"

namespace orvan {

/// The person whom the window shows, in words. Belongs to Qt's thread.
class PersonModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The window has it.")
  Q_PROPERTY(QString personKey READ personKey NOTIFY changed FINAL)
  /// Empty when nothing can be decided about the person.
  Q_PROPERTY(QString itemKey READ itemKey NOTIFY changed FINAL)
  Q_PROPERTY(QString displayName READ displayName NOTIFY changed FINAL)
  Q_PROPERTY(QString addresses READ addresses NOTIFY changed FINAL)
  Q_PROPERTY(orvan::AttentionWhyNowModel* whyNow READ whyNow CONSTANT FINAL)
  /// Why they are not on the list; empty when they are.
  Q_PROPERTY(QString absence READ absence NOTIFY changed FINAL)
  /// Empty when it stands among the exchanges.
  Q_PROPERTY(QString question READ question NOTIFY changed FINAL)
  Q_PROPERTY(QString subject READ subject NOTIFY changed FINAL)
  Q_PROPERTY(QString meeting READ meeting NOTIFY changed FINAL)
  Q_PROPERTY(orvan::ConversationModel* conversation READ conversation CONSTANT FINAL)
  Q_PROPERTY(int earlierExchanges READ earlierExchanges NOTIFY changed FINAL)
  Q_PROPERTY(QStringList otherMatters READ otherMatters NOTIFY changed FINAL)
  /// Of maps with "id" and "itemKey", and in words "due" and "said".
  Q_PROPERTY(QVariantList followUps READ followUps NOTIFY changed FINAL)
  Q_PROPERTY(QStringList decisions READ decisions NOTIFY changed FINAL)
  Q_PROPERTY(orvan::ContactPicture contact READ contact NOTIFY changed FINAL)
  Q_PROPERTY(orvan::PersonChoices choices READ choices NOTIFY changed FINAL)

 public:
  explicit PersonModel(QObject* parent = nullptr);

  /// Tells of a change only when there is one.
  void show(const PersonReading& reading, const QString& absence);
  void clear();

  const QString& personKey() const noexcept { return shown_.personKey; }
  const QString& itemKey() const noexcept { return shown_.itemKey; }
  const QString& displayName() const noexcept { return shown_.displayName; }
  const QString& addresses() const noexcept { return shown_.addresses; }
  AttentionWhyNowModel* whyNow() noexcept { return &whyNow_; }
  const QString& absence() const noexcept { return shown_.absence; }
  const QString& question() const noexcept { return shown_.question; }
  const QString& subject() const noexcept { return shown_.subject; }
  const QString& meeting() const noexcept { return shown_.meeting; }
  ConversationModel* conversation() noexcept { return &conversation_; }
  int earlierExchanges() const noexcept { return shown_.earlierExchanges; }
  const QStringList& otherMatters() const noexcept { return shown_.otherMatters; }
  const QVariantList& followUps() const noexcept { return shown_.followUps; }
  const QStringList& decisions() const noexcept { return shown_.decisions; }
  const ContactPicture& contact() const noexcept { return shown_.contact; }
  const PersonChoices& choices() const noexcept { return shown_.choices; }

 Q_SIGNALS:
  void changed();

 private:
  struct Shown {
    QString personKey;
    QString itemKey;
    QString displayName;
    QString addresses;
    QString absence;
    QString question;
    QString subject;
    QString meeting;
    int earlierExchanges = 0;
    QStringList otherMatters;
    QVariantList followUps;
    QStringList decisions;
    ContactPicture contact;
    PersonChoices choices;

    bool operator==(const Shown&) const = default;
  };

  static Shown inWords(const PersonReading& reading);
  void set(Shown shown, std::optional<AttentionWhyNowItem> reason, std::vector<ConversationRow> conversation);

  Shown shown_;
  AttentionWhyNowModel whyNow_;
  ConversationModel conversation_;
};

} // namespace orvan
