#include "application/desktop/backup_model.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QLocale>
#include <chrono>
#include <exception>
#include <functional>
#include <utility>

#include "OrvanPlatform/human_date.h"
#include "application/backup/backup.h"
#include "application/desktop/wording.h"
#include "application/desktop/written_path.h"
#include "application/store/application_store.h"
#include "application/store/key_change.h"

namespace orvan {
namespace {

/// Thrown out of the copying when the user stops it.
class CopyingStopped final : public std::exception {};

struct BackupStanding {
  std::optional<Instant> latest;
  QString proposal;
};

BackupStanding readStanding(const std::filesystem::path& store) {
  const auto name =
      QDir::home().absoluteFilePath(QStringLiteral("orvan-%1").arg(QDate::currentDate().toString(Qt::ISODate)));
  auto file = name + QStringLiteral(".backup");
  for (int number = 2; QFile::exists(file); ++number) {
    file = QStringLiteral("%1-%2.backup").arg(name).arg(number);
  }
  return {latestBackup(store), shownPath(QFile::encodeName(file).toStdString())};
}

/// Everything at a step of the copying: whether to go on, and how far it is.
class CopySteps {
 public:
  CopySteps(std::shared_ptr<const std::atomic<bool>> isStopped, std::function<void(double)> tell)
      : isStopped_(std::move(isStopped)), tell_(std::move(tell)) {}

  void operator()(std::int64_t copied, std::int64_t total) {
    if (*isStopped_) {
      throw CopyingStopped();
    }
    if (total > 0) {
      tell_(static_cast<double>(copied) / static_cast<double>(total));
    }
  }

 private:
  std::shared_ptr<const std::atomic<bool>> isStopped_;
  std::function<void(double)> tell_;
};

/// Nothing when it was stopped.
std::optional<BackupReport> backUpUnlessStopped(const SessionSettings& settings, const std::filesystem::path& file,
                                                const std::optional<std::filesystem::path>& keyFile,
                                                const CopySteps& steps) {
  settings.requirePrivateFolder();
  ApplicationStore::requireUsableFile(settings.store);
  const StoreAndKey source{settings.store, StoreKey(settings.keyFile)};
  settleKeyChange(source.store, source.key);
  try {
    return backUp(source, file, keyFile, steps);
  } catch (const CopyingStopped&) {
    return std::nullopt;
  }
}

Task<std::optional<BackupReport>> backUpOnItsThread(SessionSettings settings, std::filesystem::path file,
                                                    std::optional<std::filesystem::path> keyFile, CopySteps steps) {
  co_return backUpUnlessStopped(settings, file, keyFile, steps);
}

} // namespace

BackupModel::BackupModel(const SettingsTools& tools, QObject* parent) : SettingsPart(tools, parent) {}

BackupModel::~BackupModel() {
  if (isStopped_ != nullptr) {
    *isStopped_ = true;
  }
}

Task<void> BackupModel::refresh() {
  const auto standing = co_await lookInto([store = tools().store.settings().store] { return readStanding(store); });
  setGlance(standing.latest ? tr("Last one on %1").arg(displayText(humanDateText(*standing.latest)))
                            : tr("None was made yet"));
  if (std::exchange(proposal_, standing.proposal) != standing.proposal) {
    Q_EMIT proposalChanged();
  }
}

void BackupModel::make(const QString& file, const QString& keyFile) {
  auto path = writtenPath(file);
  if (path.empty()) {
    refuse(tr("Name a new file for the backup."));
  } else if (!isCopying()) {
    auto keyPath = writtenPath(keyFile);
    begin(copy(std::move(path), keyPath.empty() ? std::nullopt : std::optional{std::move(keyPath)}));
  }
}

void BackupModel::stop() {
  if (isStopped_ != nullptr) {
    *isStopped_ = true;
  }
}

Task<void> BackupModel::copy(std::filesystem::path file, std::optional<std::filesystem::path> keyFile) {
  isStopped_ = std::make_shared<std::atomic<bool>>(false);
  progress_ = 0;
  Q_EMIT progressChanged();
  const CopySteps steps(isStopped_, [this](double part) {
    tools().loop.post([this, part] {
      progress_ = part;
      Q_EMIT progressChanged();
    });
  });
  std::exception_ptr failure;
  std::optional<BackupReport> report;
  try {
    report = co_await runOn(copying_.get(), backUpOnItsThread(tools().store.settings(), file, keyFile, steps));
  } catch (...) {
    failure = std::current_exception();
  }
  isStopped_.reset();
  Q_EMIT progressChanged();
  if (failure) {
    std::rethrow_exception(failure);
  }
  if (!report) {
    say(tr("Stopped. There is no new backup."));
    co_return;
  }
  const auto size = QLocale().formattedDataSize(static_cast<qint64>(report->bytes), 1, QLocale::DataSizeSIFormat);
  const auto isWhole = tr("The backup is whole: %1 (%2).").arg(shownPath(file), size);
  say(isWhole + u' ' +
      (keyFile ? tr("A copy of the key is in %1. Keep it away from the backup: whoever has both can read everything.")
                     .arg(shownPath(*keyFile))
               : tr("It opens only with the key that the store has now. Keep a copy of that key somewhere else.")));
  co_await refresh();
}

} // namespace orvan
