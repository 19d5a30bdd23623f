#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QtQmlIntegration>
#include <optional>
#include <vector>

#include "application/session/catch_up_list.h"

namespace orvan {

/// One row of the window's list, in words.
struct CatchUpListRow {
  QString personKey;
  QString itemKey;
  QString displayName;
  /// Tells the person from others of the name; mostly empty.
  QString address;
  QString headline;
  /// What it is about, in one line; may be empty.
  QString about;
  /// The heading that the row stands under.
  QString group;

  bool operator==(const CatchUpListRow&) const = default;
};

CatchUpListRow rowInWords(const CatchUpRow& row);

/// The rows of the window's list, one for each person. Belongs to Qt's thread.
class CatchUpListModel : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The window has it.")
  Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

 public:
  enum Role {
    personKeyRole = Qt::UserRole,
    itemKeyRole,
    displayNameRole,
    addressRole,
    headlineRole,
    aboutRole,
    groupRole
  };

  explicit CatchUpListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

  const std::vector<CatchUpListRow>& rows() const noexcept { return rows_; }
  /// Shows `rows` in their order, each person once. The row of a person who stays is kept, and is told to have changed
  /// only where it did.
  void setRows(std::vector<CatchUpListRow> rows);

  int count() const noexcept { return static_cast<int>(rows_.size()); }
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// The row of a person; -1 when they are not shown.
  Q_INVOKABLE int rowOf(const QString& personKey) const;
  /// Empty when there is no such row.
  Q_INVOKABLE QString personAt(int row) const;
  const CatchUpListRow* rowFor(const QString& personKey) const;

 Q_SIGNALS:
  void countChanged();

 private:
  void removeRowsWithout(const std::vector<CatchUpListRow>& rows);
  void placeRow(int row, CatchUpListRow content);

  std::vector<CatchUpListRow> rows_;
};

} // namespace orvan
