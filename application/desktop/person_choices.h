#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QtQmlIntegration>

#include "application/desktop/store_readings.h"

namespace orvan {

/// What can be done about a person beside deciding about their reason. A value.
class PersonChoices {
  Q_GADGET
  QML_VALUE_TYPE(personChoices)
  Q_PROPERTY(bool isHidden MEMBER isHidden)
  /// That their reason is none can be said in one of two ways, or not at all.
  Q_PROPERTY(bool canBeNoQuestion MEMBER canBeNoQuestion)
  Q_PROPERTY(bool canBeNotWaiting MEMBER canBeNotWaiting)
  Q_PROPERTY(bool hasConversation MEMBER hasConversation)
  Q_PROPERTY(bool hasMessage MEMBER hasMessage)
  Q_PROPERTY(bool isSnoozed MEMBER isSnoozed)
  Q_PROPERTY(QStringList addresses MEMBER addresses)
  /// Conversations and mails with them that are hidden: maps with "key" and "words".
  Q_PROPERTY(QVariantList hiddenThings MEMBER hiddenThings)

 public:
  bool isHidden = false;
  bool canBeNoQuestion = false;
  bool canBeNotWaiting = false;
  bool hasConversation = false;
  bool hasMessage = false;
  bool isSnoozed = false;
  QStringList addresses;
  QVariantList hiddenThings;

  bool operator==(const PersonChoices&) const = default;
};

PersonChoices choicesFor(const PersonReading& reading);

} // namespace orvan
