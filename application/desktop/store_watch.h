#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <filesystem>

namespace orvan {

/// Tells when a store's files change, by whomever: the kernel wakes it, so that a store at rest costs nothing, where
/// asking the store itself would cost a wake-up every second or two. It never opens the files, for closing one would
/// take away the locks that SQLite holds on it in this process.
class StoreWatch final : public QObject {
  Q_OBJECT

 public:
  static constexpr std::chrono::milliseconds usualDelay{500};

  explicit StoreWatch(const std::filesystem::path& store, QObject* parent = nullptr);

  /// Watches the files that are there by now; to be called after the store was opened.
  void watchWhatIsThere();

  /// How long after the first of several changes it tells.
  void setDelay(std::chrono::milliseconds delay) { delay_.setInterval(delay); }

 Q_SIGNALS:
  /// A short while after the first of one or more changes.
  void changed();

 private:
  QString store_;
  QFileSystemWatcher watcher_;
  QTimer delay_;
};

} // namespace orvan
