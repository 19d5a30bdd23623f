#pragma once

#include <QAbstractListModel>
#include <QString>
#include <QtQmlIntegration>
#include <vector>

namespace orvan {

/// Somebody who was looked for, in words.
struct FoundPerson {
  QString personKey;
  QString displayName;
  QString addresses;
  /// Why they are on the list, or why not.
  QString standing;
};

/// Whom a search found. Belongs to Qt's thread.
class SearchModel : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The window has it.")
  Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)

 public:
  enum Role { personKeyRole = Qt::UserRole, displayNameRole, addressesRole, standingRole };

  explicit SearchModel(QObject* parent = nullptr) : QAbstractListModel(parent) {}

  void setPeople(std::vector<FoundPerson> people);

  int count() const noexcept { return static_cast<int>(people_.size()); }
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// Empty when there is no such row.
  Q_INVOKABLE QString personAt(int row) const;

 Q_SIGNALS:
  void countChanged();

 private:
  std::vector<FoundPerson> people_;
};

} // namespace orvan
