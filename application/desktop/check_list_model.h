#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QtQmlIntegration>
#include <vector>

namespace orvan {

/// Something that can be chosen, in words.
struct CheckListRow {
  QString title;
  /// Beneath the title, and at its end; either may be empty.
  QString detail;
  QString note;
  bool isChosen;
  /// The choice stands as it is.
  bool isFixed = false;
};

/// Things to choose any number of. Belongs to Qt's thread.
class CheckListModel : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The window has it.")
  Q_PROPERTY(int count READ count NOTIFY changed FINAL)
  Q_PROPERTY(int countChosen READ countChosen NOTIFY changed FINAL)

 public:
  enum Role { titleRole = Qt::UserRole, detailRole, noteRole, isChosenRole, isFixedRole };

  explicit CheckListModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

  const std::vector<CheckListRow>& rows() const noexcept { return rows_; }
  void clear();
  void append(CheckListRow row);
  /// Nothing happens when the choice is fixed, or there is no such row.
  Q_INVOKABLE void setChosen(int row, bool isChosen);

  int count() const noexcept { return static_cast<int>(rows_.size()); }
  int countChosen() const;
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

 Q_SIGNALS:
  /// What there is to choose, or what is chosen.
  void changed();

 private:
  std::vector<CheckListRow> rows_;
};

} // namespace orvan
