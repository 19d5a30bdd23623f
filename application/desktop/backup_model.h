#pragma once

#include <atomic>
#include <filesystem>
#include <memory>
#include <optional>

#include "OrvanPlatform/work_executor.h"
#include "application/desktop/settings_part.h"

namespace orvan {

/// Copies of the store for the day when it is lost. Belongs to Qt's thread; the copying has a thread of its own, for
/// which the destructor waits as long as the step under way lasts.
class BackupModel : public orvan::SettingsPart {
  Q_OBJECT
  QML_ELEMENT
  QML_UNCREATABLE("The settings have it.")
  /// A new file that a backup could be.
  Q_PROPERTY(QString proposal READ proposal NOTIFY proposalChanged FINAL)
  Q_PROPERTY(bool isCopying READ isCopying NOTIFY progressChanged FINAL)
  /// From 0 to 1 while it copies; 1 while it reads the copy back, which cannot be stopped any more.
  Q_PROPERTY(double progress READ progress NOTIFY progressChanged FINAL)

 public:
  explicit BackupModel(const SettingsTools& tools, QObject* parent = nullptr);
  ~BackupModel() override;

  const QString& proposal() const noexcept { return proposal_; }
  bool isCopying() const noexcept { return isStopped_ != nullptr; }
  double progress() const noexcept { return progress_; }

  /// Where a file for the key is named too, the key is written into that.
  Q_INVOKABLE void make(const QString& file, const QString& keyFile);
  /// Leaves no backup.
  Q_INVOKABLE void stop();

 Q_SIGNALS:
  void proposalChanged();
  void progressChanged();

 protected:
  Task<void> refresh() override;

 private:
  Task<void> copy(std::filesystem::path file, std::optional<std::filesystem::path> keyFile);

  QString proposal_;
  double progress_ = 0;
  /// Of the copying under way.
  std::shared_ptr<std::atomic<bool>> isStopped_;
  WorkExecutor copying_;
};

} // namespace orvan
