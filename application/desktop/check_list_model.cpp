#include "application/desktop/check_list_model.h"

#include <algorithm>
#include <utility>

namespace orvan {

void CheckListModel::clear() {
  beginResetModel();
  rows_.clear();
  endResetModel();
  Q_EMIT changed();
}

void CheckListModel::append(CheckListRow row) {
  beginInsertRows({}, count(), count());
  rows_.push_back(std::move(row));
  endInsertRows();
  Q_EMIT changed();
}

void CheckListModel::setChosen(int row, bool isChosen) {
  if (row < 0 || row >= count()) {
    return;
  }
  auto& changing = rows_[static_cast<std::size_t>(row)];
  if (changing.isFixed || changing.isChosen == isChosen) {
    return;
  }
  changing.isChosen = isChosen;
  Q_EMIT dataChanged(index(row), index(row), {isChosenRole});
  Q_EMIT changed();
}

int CheckListModel::countChosen() const {
  return static_cast<int>(std::ranges::count_if(rows_, &CheckListRow::isChosen));
}

int CheckListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count();
}

QVariant CheckListModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
    return {};
  }
  const auto& row = rows_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case titleRole:
      return row.title;
    case detailRole:
      return row.detail;
    case noteRole:
      return row.note;
    case isChosenRole:
      return row.isChosen;
    case isFixedRole:
      return row.isFixed;
    default:
      return {};
  }
}

QHash<int, QByteArray> CheckListModel::roleNames() const {
  return {{titleRole, "title"},
          {detailRole, "detail"},
          {noteRole, "note"},
          {isChosenRole, "isChosen"},
          {isFixedRole, "isFixed"}};
}

} // namespace orvan
