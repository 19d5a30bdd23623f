#include "application/desktop/search_model.h"

#include <utility>

namespace orvan {

void SearchModel::setPeople(std::vector<FoundPerson> people) {
  beginResetModel();
  people_ = std::move(people);
  endResetModel();
  Q_EMIT countChanged();
}

int SearchModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : count();
}

QVariant SearchModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
    return {};
  }
  const auto& person = people_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case personKeyRole:
      return person.personKey;
    case displayNameRole:
      return person.displayName;
    case addressesRole:
      return person.addresses;
    case standingRole:
      return person.standing;
    default:
      return {};
  }
}

QHash<int, QByteArray> SearchModel::roleNames() const {
  return {{personKeyRole, "personKey"},
          {displayNameRole, "displayName"},
          {addressesRole, "addresses"},
          {standingRole, "standing"}};
}

QString SearchModel::personAt(int row) const {
  return row >= 0 && row < count() ? people_[static_cast<std::size_t>(row)].personKey : QString{};
}

} // namespace orvan
