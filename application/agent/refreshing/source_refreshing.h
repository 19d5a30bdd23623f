#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/executor.h"
#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/log.h"
#include "application/agent/refreshing/folder_watcher.h"
#include "application/agent/refreshing/power_supply.h"
#include "application/agent/refreshing/program_runner.h"

namespace orvan {

struct RefreshingSettings {
  /// Of the user's store and its key, absolute.
  std::filesystem::path store;
  std::filesystem::path keyFile;
  /// The command line, absolute.
  std::filesystem::path program = programBesideThisOne();
  std::filesystem::path powerSupplies = systemPowerSupplies;

  /// 'orvan' in the folder of the program that runs.
  static std::filesystem::path programBesideThisOne();
};

/// What refreshing goes through to the system.
struct RefreshingParts {
  std::shared_ptr<const Clock> clock;
  std::shared_ptr<LogSink> log;
  std::unique_ptr<ProgramRunner> runner;
  std::unique_ptr<FolderWatcher> watcher;

  static RefreshingParts ofSystem(const Executor& executor, std::shared_ptr<LogSink> log);
};

/// Keeps the remembered sources up to date: reads what is new in them at every interval, and sooner when something
/// changed in their folders and has come to rest since. Not while the battery is low, and not when nothing is
/// remembered. What cannot be read, or a store that cannot be opened, is tried again at the next interval; the store
/// remembers what is wrong with a source, and commands tell it.
///
/// The reading is done by the command line in a process of its own. Mail comes from strangers: what parses it, and the
/// memory that this takes, stay out of a process that runs all day and holds the user's reminders. For the same reason
/// that process finds the folders, too, and a file system that does not answer holds up nothing else.
///
/// Everything happens on one executor of one thread, from which all calls are made, and which must live as long as what
/// it starts. Destroying it kills what runs; what was read until then is in the store.
class SourceRefreshing {
 public:
  static constexpr std::chrono::minutes interval{15};
  /// How long nothing may have changed before what changed is read.
  static constexpr std::chrono::seconds rest{10};
  /// What takes longer is killed.
  static constexpr std::chrono::hours longestRun{2};

  SourceRefreshing(Executor executor, RefreshingSettings settings, RefreshingParts parts);
  ~SourceRefreshing();
  SourceRefreshing(const SourceRefreshing&) = delete;
  SourceRefreshing& operator=(const SourceRefreshing&) = delete;

  /// Looks for the first time, unless it is switched off. To be called once.
  void start();
  /// On from the beginning. Switching off kills what runs; switching on looks at once.
  void setEnabled(bool isEnabled);
  bool isEnabled() const noexcept;

  /// `handler` is called on the executor when a refresh has brought something new, or may have before it was killed.
  void onBrought(std::function<void()> handler);

  /// When the last refresh ended that told what it had found; nothing when none has since the start.
  std::optional<Instant> lastRefresh() const noexcept;

 private:
  class Rounds;

  std::shared_ptr<Rounds> rounds_;
};

} // namespace orvan
