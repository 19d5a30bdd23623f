#include "application/desktop/store_watch.h"

#include <QFileInfo>
#include <chrono>

namespace orvan {

StoreWatch::StoreWatch(const std::filesystem::path& store, QObject* parent)
    : QObject(parent), store_(QString::fromStdString(store.string())) {
  // An import writes many times a second; what it brought may come in steps.
  delay_.setSingleShot(true);
  delay_.setInterval(usualDelay);
  connect(&delay_, &QTimer::timeout, this, &StoreWatch::changed);
  const auto noted = [this] {
    if (!delay_.isActive()) {
      delay_.start();
    }
  };
  connect(&watcher_, &QFileSystemWatcher::fileChanged, this, noted);
  connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, noted);
}

void StoreWatch::watchWhatIsThere() {
  // The folder tells of a store that is made, or that a restored one takes the place of.
  for (const auto& path : {QFileInfo(store_).absolutePath(), store_, store_ + QStringLiteral("-wal")}) {
    const bool isWatched = watcher_.files().contains(path) || watcher_.directories().contains(path);
    if (!isWatched && QFileInfo::exists(path)) {
      watcher_.addPath(path);
    }
  }
}

} // namespace orvan
