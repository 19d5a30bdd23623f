#include "OrvanRelationshipAttention/ui/attention_why_now_model.h"

#include <utility>

#include "OrvanRelationshipAttention/ui/internal/display_text.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_selector.h"

namespace orvan {

AttentionWhyNowModel::AttentionWhyNowModel(QObject* parent) : QObject(parent) {}

AttentionWhyNowModel::AttentionWhyNowModel(const std::optional<AttentionEvidenceBundle>& bundle, QObject* parent)
    : QObject(parent), item_(bundle ? AttentionWhyNowSelector::select(*bundle) : std::nullopt) {}

void AttentionWhyNowModel::refresh(const AttentionEvidenceBundle& bundle) {
  setItem(AttentionWhyNowSelector::select(bundle));
}

void AttentionWhyNowModel::clear() {
  setItem(std::nullopt);
}

void AttentionWhyNowModel::setItem(std::optional<AttentionWhyNowItem> item) {
  Q_EMIT itemAboutToChange();
  item_ = std::move(item);
  Q_EMIT itemChanged();
}

QString AttentionWhyNowModel::headline() const {
  return item_ ? internal::displayText(item_->headline()) : QString();
}

QStringList AttentionWhyNowModel::evidenceLines() const {
  return item_ ? internal::displayTexts(item_->evidenceLines()) : QStringList();
}

} // namespace orvan
