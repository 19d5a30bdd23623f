#include "application/desktop/catch_up_list_model.h"

#include <QSet>
#include <algorithm>
#include <utility>

#include "application/desktop/wording.h"

namespace orvan {
namespace {

QString CatchUpListRow::* fieldOf(int role) {
  switch (role) {
    case CatchUpListModel::personKeyRole:
      return &CatchUpListRow::personKey;
    case CatchUpListModel::itemKeyRole:
      return &CatchUpListRow::itemKey;
    case CatchUpListModel::displayNameRole:
      return &CatchUpListRow::displayName;
    case CatchUpListModel::addressRole:
      return &CatchUpListRow::address;
    case CatchUpListModel::headlineRole:
      return &CatchUpListRow::headline;
    case CatchUpListModel::aboutRole:
      return &CatchUpListRow::about;
    case CatchUpListModel::groupRole:
      return &CatchUpListRow::group;
    default:
      return nullptr;
  }
}

QList<int> rolesThatDiffer(const CatchUpListRow& one, const CatchUpListRow& other) {
  QList<int> roles;
  for (int role = CatchUpListModel::personKeyRole; role <= CatchUpListModel::groupRole; ++role) {
    if (one.*fieldOf(role) != other.*fieldOf(role)) {
      roles.append(role);
    }
  }
  return roles;
}

} // namespace

CatchUpListRow rowInWords(const CatchUpRow& row) {
  return {QString::fromStdString(row.item.personKey()),
          QString::fromStdString(row.item.itemKey()),
          displayText(row.item.displayName()),
          displayText(row.address.value_or("")),
          displayText(row.item.whyNow().headline()),
          row.followUp ? inWords(*row.followUp) : inALine(row.about),
          headingOf(row.place.part)};
}

void CatchUpListModel::setRows(std::vector<CatchUpListRow> rows) {
  const int before = count();
  // First, or each row after one that left would count as moved.
  removeRowsWithout(rows);
  int at = 0;
  for (auto& row : rows) {
    placeRow(at++, std::move(row));
  }
  if (count() != before) {
    Q_EMIT countChanged();
  }
}

void CatchUpListModel::removeRowsWithout(const std::vector<CatchUpListRow>& rows) {
  // A list does not give a row that stays another heading.
  QSet<std::pair<QString, QString>> staying;
  for (const auto& row : rows) {
    staying.insert({row.personKey, row.group});
  }
  for (int at = count() - 1; at >= 0; --at) {
    const auto& row = rows_[static_cast<std::size_t>(at)];
    if (!staying.contains({row.personKey, row.group})) {
      beginRemoveRows({}, at, at);
      rows_.erase(rows_.begin() + at);
      endRemoveRows();
    }
  }
}

void CatchUpListModel::placeRow(int row, CatchUpListRow content) {
  const auto place = rows_.begin() + row;
  const auto found = std::ranges::find(place, rows_.end(), content.personKey, &CatchUpListRow::personKey);
  if (found == rows_.end()) {
    beginInsertRows({}, row, row);
    rows_.insert(place, std::move(content));
    endInsertRows();
    return;
  }
  if (found != place) {
    const int from = static_cast<int>(found - rows_.begin());
    beginMoveRows({}, from, from, {}, row);
    std::rotate(place, found, found + 1);
    endMoveRows();
  }
  const auto roles = rolesThatDiffer(*place, content);
  *place = std::move(content);
  if (!roles.isEmpty()) {
    Q_EMIT dataChanged(index(row), index(row), roles);
  }
}

int CatchUpListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count();
}

QVariant CatchUpListModel::data(const QModelIndex& index, int role) const {
  const auto field = fieldOf(role);
  if (field == nullptr || !checkIndex(index, CheckIndexOption::IndexIsValid)) {
    return {};
  }
  return rows_[static_cast<std::size_t>(index.row())].*field;
}

QHash<int, QByteArray> CatchUpListModel::roleNames() const {
  return {{personKeyRole, "personKey"}, {itemKeyRole, "itemKey"},   {displayNameRole, "displayName"},
          {addressRole, "address"},     {headlineRole, "headline"}, {aboutRole, "about"},
          {groupRole, "group"}};
}

int CatchUpListModel::rowOf(const QString& personKey) const {
  const auto found = std::ranges::find(rows_, personKey, &CatchUpListRow::personKey);
  return found == rows_.end() ? -1 : static_cast<int>(found - rows_.begin());
}

QString CatchUpListModel::personAt(int row) const {
  return row >= 0 && row < count() ? rows_[static_cast<std::size_t>(row)].personKey : QString{};
}

const CatchUpListRow* CatchUpListModel::rowFor(const QString& personKey) const {
  const int row = rowOf(personKey);
  return row < 0 ? nullptr : &rows_[static_cast<std::size_t>(row)];
}

} // namespace orvan
