#pragma once

#include <QVariantList>
#include <vector>

#include "application/desktop/settings_part.h"
#include "application/sources/remembered_source.h"

namespace orvan {

/// The mailboxes, calendars and address books that are kept up to date. Belongs to Qt's thread.
class SourcesModel : public orvan::SettingsPart {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The settings have it.")
  /// Of maps with "number", "kind", "path", "state", "trouble" (empty when there is none) and "hasNews".
  Q_PROPERTY(QVariantList sources READ sources NOTIFY changed FINAL)
  /// Whether one of them cannot be read.
  Q_PROPERTY(bool isInTrouble READ isInTrouble NOTIFY changed FINAL)

 public:
  using SettingsPart::SettingsPart;

  const QVariantList& sources() const noexcept { return sources_; }
  bool isInTrouble() const;

  /// Looks how they stand, and at the files, whether they have something new.
  Q_INVOKABLE void lookForNew();
  /// Remembers what lies at a path, which the user may have written with "~" for their folder.
  Q_INVOKABLE void add(const QString& path);
  /// What was read from it stays.
  Q_INVOKABLE void remove(int number);

 Q_SIGNALS:
  void changed();
  /// There is something to read that was not read before.
  void added();

 protected:
  Task<void> refresh() override;

 private:
  Task<void> addAt(QString path);
  Task<void> removeNumbered(std::int64_t number);
  Task<void> refreshWithNews();
  void show();

  std::vector<RememberedSource> remembered_;
  /// Of those, the numbers of the ones with something new.
  std::vector<std::int64_t> withNews_;
  QVariantList sources_;
};

} // namespace orvan
