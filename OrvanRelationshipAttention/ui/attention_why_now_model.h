#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QtQmlIntegration>
#include <optional>

#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

namespace orvan {

/// The one reason that an AttentionWhyNowView shows. Belongs to the thread of the view, and has to outlive it.
class AttentionWhyNowModel : public QObject {
  Q_OBJECT
  QML_ELEMENT
  Q_PROPERTY(bool hasItem READ hasItem NOTIFY itemChanged FINAL)
  Q_PROPERTY(QString headline READ headline NOTIFY itemChanged FINAL)
  Q_PROPERTY(QStringList evidenceLines READ evidenceLines NOTIFY itemChanged FINAL)

 public:
  /// Without a reason.
  explicit AttentionWhyNowModel(QObject* parent = nullptr);
  /// With the reason that AttentionWhyNowSelector finds in `bundle`, which may be none; without a bundle there is none.
  explicit AttentionWhyNowModel(const std::optional<AttentionEvidenceBundle>& bundle, QObject* parent = nullptr);

  /// Takes the reason that AttentionWhyNowSelector finds in `bundle`, if there is one.
  void refresh(const AttentionEvidenceBundle& bundle);
  void clear();

  /// Without one, the view shows nothing.
  const std::optional<AttentionWhyNowItem>& item() const noexcept { return item_; }
  /// Both signals are sent even when `item` is what was there before.
  void setItem(std::optional<AttentionWhyNowItem> item);

  bool hasItem() const noexcept { return item_.has_value(); }
  /// Empty without an item; so are the evidence lines.
  QString headline() const;
  QStringList evidenceLines() const;

 Q_SIGNALS:
  /// item() is still what it was.
  void itemAboutToChange();
  void itemChanged();

 private:
  std::optional<AttentionWhyNowItem> item_;
};

} // namespace orvan
