#pragma once

#include <QAbstractListModel>
#include <QByteArray>
#include <QHash>
#include <QtQmlIntegration>
#include <functional>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"

namespace orvan {

/// What an AttentionCatchUpView shows, and where the requests of its rows come out. Belongs to the thread of the view,
/// and has to outlive it.
///
/// A request changes nothing here: the application saves what the user did, and then sets the items or tells of the
/// failure. It may do so while a request is being sent.
class AttentionCatchUpModel : public QAbstractListModel {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The program makes it, and passes it to the view.")
  Q_PROPERTY(int count READ count NOTIFY countChanged FINAL)
  Q_PROPERTY(bool hasActionFailure READ hasActionFailure WRITE setHasActionFailure NOTIFY hasActionFailureChanged FINAL)
  Q_PROPERTY(bool isUnavailable READ isUnavailable WRITE setIsUnavailable NOTIFY isUnavailableChanged FINAL)

 public:
  /// Says until when a snooze that starts now hides an item.
  using SnoozeUntil = std::function<Instant()>;

  enum Role { itemKeyRole = Qt::UserRole, displayNameRole, headlineRole, evidenceLinesRole };

  /// Without items. `snoozeUntil`, which must not be empty, is asked each time that Snooze is pressed.
  explicit AttentionCatchUpModel(SnoozeUntil snoozeUntil, QObject* parent = nullptr);

  const std::vector<AttentionCatchUpItem>& items() const noexcept { return items_; }
  /// Shows `items` in their order. A row whose item key stays is kept, with what is expanded in it, and is redrawn only
  /// where it changed.
  void setItems(std::vector<AttentionCatchUpItem> items);

  /// The last action could not be saved; shown beneath the rows, and not without rows.
  bool hasActionFailure() const noexcept { return hasActionFailure_; }
  void setHasActionFailure(bool hasActionFailure);

  /// The list could not be built; shown instead of everything else.
  bool isUnavailable() const noexcept { return isUnavailable_; }
  void setIsUnavailable(bool isUnavailable);

  int count() const noexcept { return static_cast<int>(items_.size()); }
  int rowCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QHash<int, QByteArray> roleNames() const override;

  /// What the buttons of a row do. Nothing happens when there is no such row.
  Q_INVOKABLE void route(int row);
  Q_INVOKABLE void snooze(int row);
  Q_INVOKABLE void dismiss(int row);
  Q_INVOKABLE void resolve(int row);

 Q_SIGNALS:
  void countChanged();
  void hasActionFailureChanged();
  void isUnavailableChanged();
  /// The user opened a row.
  void routeRequested(const orvan::AttentionRouteRequest& request);
  void actionRequested(const orvan::AttentionItemActionRequest& request);

 private:
  bool hasRow(int row) const noexcept { return row >= 0 && row < count(); }
  void act(int row, const AttentionItemAction& action);
  void removeRowsWithout(const std::vector<AttentionCatchUpItem>& items);
  void placeRow(int row, AttentionCatchUpItem item);
  void replaceRow(int row, AttentionCatchUpItem item);
  void removeRowsFrom(int row);

  SnoozeUntil snoozeUntil_;
  std::vector<AttentionCatchUpItem> items_;
  bool hasActionFailure_ = false;
  bool isUnavailable_ = false;
};

} // namespace orvan
