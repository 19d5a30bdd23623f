#include "OrvanRelationshipAttention/ui/attention_catch_up_model.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "OrvanRelationshipAttention/ui/internal/display_text.h"

namespace orvan {
namespace {

QList<int> rolesThatDiffer(const AttentionCatchUpItem& one, const AttentionCatchUpItem& other) {
  QList<int> roles;
  if (one.displayName() != other.displayName()) {
    roles.append(AttentionCatchUpModel::displayNameRole);
  }
  if (one.whyNow().headline() != other.whyNow().headline()) {
    roles.append(AttentionCatchUpModel::headlineRole);
  }
  if (one.whyNow().evidenceLines() != other.whyNow().evidenceLines()) {
    roles.append(AttentionCatchUpModel::evidenceLinesRole);
  }
  return roles;
}

} // namespace

AttentionCatchUpModel::AttentionCatchUpModel(SnoozeUntil snoozeUntil, QObject* parent)
    : QAbstractListModel(parent), snoozeUntil_(std::move(snoozeUntil)) {
  Q_ASSERT(snoozeUntil_);
}

void AttentionCatchUpModel::setItems(std::vector<AttentionCatchUpItem> items) {
  const int before = count();
  // First, or each row after one that left would count as moved.
  removeRowsWithout(items);
  int row = 0;
  for (auto& item : items) {
    placeRow(row++, std::move(item));
  }
  removeRowsFrom(row);
  if (count() != before) {
    Q_EMIT countChanged();
  }
}

void AttentionCatchUpModel::removeRowsWithout(const std::vector<AttentionCatchUpItem>& items) {
  std::set<std::string_view> keys;
  for (const auto& item : items) {
    keys.insert(item.itemKey());
  }
  for (int row = count() - 1; row >= 0; --row) {
    if (!keys.contains(items_[static_cast<std::size_t>(row)].itemKey())) {
      beginRemoveRows({}, row, row);
      items_.erase(items_.begin() + row);
      endRemoveRows();
    }
  }
}

void AttentionCatchUpModel::placeRow(int row, AttentionCatchUpItem item) {
  const auto place = items_.begin() + row;
  const auto found = std::ranges::find(place, items_.end(), item.itemKey(), &AttentionCatchUpItem::itemKey);
  if (found == items_.end()) {
    beginInsertRows({}, row, row);
    items_.insert(place, std::move(item));
    endInsertRows();
    return;
  }
  if (found != place) {
    const int from = static_cast<int>(found - items_.begin());
    beginMoveRows({}, from, from, {}, row);
    std::rotate(place, found, found + 1);
    endMoveRows();
  }
  replaceRow(row, std::move(item));
}

void AttentionCatchUpModel::replaceRow(int row, AttentionCatchUpItem item) {
  auto& shown = items_[static_cast<std::size_t>(row)];
  const auto roles = rolesThatDiffer(shown, item);
  shown = std::move(item);
  if (!roles.isEmpty()) {
    Q_EMIT dataChanged(index(row), index(row), roles);
  }
}

void AttentionCatchUpModel::removeRowsFrom(int row) {
  if (row < count()) {
    beginRemoveRows({}, row, count() - 1);
    items_.erase(items_.begin() + row, items_.end());
    endRemoveRows();
  }
}

void AttentionCatchUpModel::setHasActionFailure(bool hasActionFailure) {
  if (std::exchange(hasActionFailure_, hasActionFailure) != hasActionFailure) {
    Q_EMIT hasActionFailureChanged();
  }
}

void AttentionCatchUpModel::setIsUnavailable(bool isUnavailable) {
  if (std::exchange(isUnavailable_, isUnavailable) != isUnavailable) {
    Q_EMIT isUnavailableChanged();
  }
}

int AttentionCatchUpModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count();
}

QVariant AttentionCatchUpModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
    return {};
  }
  const auto& item = items_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case itemKeyRole:
      return internal::displayText(item.itemKey());
    case displayNameRole:
      return internal::displayText(item.displayName());
    case headlineRole:
      return internal::displayText(item.whyNow().headline());
    case evidenceLinesRole:
      return internal::displayTexts(item.whyNow().evidenceLines());
    default:
      return {};
  }
}

QHash<int, QByteArray> AttentionCatchUpModel::roleNames() const {
  return {{itemKeyRole, "itemKey"},
          {displayNameRole, "displayName"},
          {headlineRole, "headline"},
          {evidenceLinesRole, "evidenceLines"}};
}

void AttentionCatchUpModel::route(int row) {
  if (hasRow(row)) {
    // A copy: the receiver may set other items.
    const AttentionRouteRequest request = items_[static_cast<std::size_t>(row)].routeRequest();
    Q_EMIT routeRequested(request);
  }
}

void AttentionCatchUpModel::snooze(int row) {
  if (hasRow(row)) {
    act(row, AttentionItemAction::snooze(snoozeUntil_()));
  }
}

void AttentionCatchUpModel::dismiss(int row) {
  act(row, AttentionItemAction::dismiss());
}

void AttentionCatchUpModel::resolve(int row) {
  act(row, AttentionItemAction::resolve());
}

void AttentionCatchUpModel::act(int row, const AttentionItemAction& action) {
  if (hasRow(row)) {
    Q_EMIT actionRequested(items_[static_cast<std::size_t>(row)].actionRequest(action));
  }
}

} // namespace orvan
