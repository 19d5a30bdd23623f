#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QtQmlIntegration>
#include <vector>

namespace orvan {

/// One moment of a conversation in words.
struct ConversationRow {
  QString date;
  QString writer;
  bool isOwn;
  QString words;
  bool isQuestion;
  /// All of it.
  QString sentence;

  bool operator==(const ConversationRow&) const = default;
};

/// Who wrote or met whom, in the order of their time. Belongs to Qt's thread. From one conversation to another the rows
/// stay and only what differs is told, because making their items anew is most of what opening a person would cost: the
/// first `count` rows are the conversation, and those after them are left of a longer one and not to be seen.
class ConversationModel : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The window has it.")
  Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

 public:
  enum Role { dateRole = Qt::UserRole, writerRole, isOwnRole, wordsRole, isQuestionRole, sentenceRole };

  explicit ConversationModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

  void show(std::vector<ConversationRow> rows);

  int count() const noexcept { return count_; }
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

 Q_SIGNALS:
  void countChanged();

 private:
  std::vector<ConversationRow> rows_;
  int count_ = 0;
};

} // namespace orvan
