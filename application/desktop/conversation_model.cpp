#include "application/desktop/conversation_model.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace orvan {

void ConversationModel::show(std::vector<ConversationRow> rows) {
  const auto kept = std::min(rows.size(), rows_.size());
  for (std::size_t at = 0; at < kept; ++at) {
    if (std::exchange(rows_[at], rows[at]) != rows[at]) {
      const auto changed = index(static_cast<int>(at));
      Q_EMIT dataChanged(changed, changed);
    }
  }
  const auto shown = static_cast<int>(rows.size());
  if (kept < rows.size()) {
    beginInsertRows({}, static_cast<int>(kept), shown - 1);
    rows_.insert(rows_.end(), rows.begin() + static_cast<std::ptrdiff_t>(kept), rows.end());
    endInsertRows();
  }
  if (std::exchange(count_, shown) != shown) {
    Q_EMIT countChanged();
  }
}

int ConversationModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ConversationModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid)) {
    return {};
  }
  const auto& row = rows_[static_cast<std::size_t>(index.row())];
  switch (role) {
    case dateRole:
      return row.date;
    case writerRole:
      return row.writer;
    case isOwnRole:
      return row.isOwn;
    case wordsRole:
      return row.words;
    case isQuestionRole:
      return row.isQuestion;
    case sentenceRole:
      return row.sentence;
    default:
      return {};
  }
}

QHash<int, QByteArray> ConversationModel::roleNames() const {
  return {{dateRole, "date"},   {writerRole, "writer"},         {isOwnRole, "isOwn"},
          {wordsRole, "words"}, {isQuestionRole, "isQuestion"}, {sentenceRole, "sentence"}};
}

} // namespace orvan
