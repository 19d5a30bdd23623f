#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/mutex.h"
#include "application/desktop/failure_in_words.h"
#include "application/import/ledger/import_watch.h"
#include "application/session/session_settings.h"
#include "application/sources/changed_mail.h"
#include "application/sources/remembered_source.h"

namespace orvan {

/// Which source is being read, and how far it is.
struct ImportStep {
  SourceKind kind;
  std::string path;
  /// Of all that are read: the first is 1.
  std::size_t place;
  std::size_t count;
  ImportProgress progress;
  /// Since this source was begun.
  std::chrono::steady_clock::duration took;
};

/// What became of a run.
struct ImportEnd {
  /// It was asked to stop before everything was read. What was read is in the store.
  bool isStopped = false;
  /// How many are remembered.
  std::size_t countSources = 0;
  /// How many mails, meetings and cards were new.
  std::int64_t countNew = 0;
  /// What could not be read, by its whole path. Everything else is in the store.
  std::vector<SourceTrouble> troubles = {};
  /// Why the store could not take more; what it had taken stays.
  std::optional<FailureInWords> failure = std::nullopt;
};

/// Reads what is new in the store's remembered sources, once, on a thread of its own and with a connection of its own,
/// so that the store can be read meanwhile. However it ends, what was read is in the store with how far that is, and
/// the next run goes on from there.
///
/// The destructor asks for a stop and waits until what was read is written.
class ImportRun {
 public:
  /// `now` is the moment that is taken for now. `ended` is called once, on the run's thread, as the last that it does.
  ImportRun(SessionSettings settings, Instant now, std::function<void(ImportEnd)> ended);
  ~ImportRun();
  ImportRun(const ImportRun&) = delete;
  ImportRun& operator=(const ImportRun&) = delete;

  void requestStop() noexcept { watch_.requestStop(); }
  /// Nothing before the first source, and after the last. From any thread.
  std::optional<ImportStep> step() const ORVAN_EXCLUDES(mutex_);

 private:
  struct Current {
    SourceKind kind;
    std::string path;
    std::size_t place;
    std::size_t count;
    std::chrono::steady_clock::time_point since;
  };

  ImportEnd run(const SessionSettings& settings, Instant now);
  ImportEnd read(const SessionSettings& settings, Instant now);
  void setCurrent(std::optional<Current> current) ORVAN_EXCLUDES(mutex_);

  ImportWatch watch_;
  mutable Mutex mutex_;
  std::optional<Current> current_ ORVAN_GUARDED_BY(mutex_);
  std::jthread thread_;
};

} // namespace orvan
