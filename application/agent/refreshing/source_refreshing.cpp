#include "application/agent/refreshing/source_refreshing.h"

#include <algorithm>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "application/agent/refreshing/background_runner.h"
#include "application/agent/refreshing/inotify_folder_watcher.h"
#include "application/agent/refreshing/refresh_reports.h"

namespace orvan {

/// A round is a look at which sources there are and, when there are some, a refresh; after a change it is the refresh
/// alone. One at a time.
class SourceRefreshing::Rounds : public std::enable_shared_from_this<Rounds> {
 public:
  Rounds(Executor executor, RefreshingSettings settings, RefreshingParts parts)
      : executor_(std::move(executor)),
        settings_(std::move(settings)),
        clock_(std::move(parts.clock)),
        log_(std::move(parts.log), "refreshing"),
        runner_(std::move(parts.runner)),
        watcher_(std::move(parts.watcher)) {}

  void start() {
    isStarted_ = true;
    lookNow();
  }

  void setEnabled(bool isEnabled) {
    if (std::exchange(isEnabled_, isEnabled) == isEnabled) {
      return;
    }
    if (isEnabled) {
      lookNow();
    } else {
      stop();
    }
  }

  void stop() {
    stopTimer(wakeUp_);
    stopTimer(bound_);
    changedAt_.reset();
    watcher_->watch({}, {});
    runner_->kill();
  }

  void end() {
    isEnabled_ = false;
    brought_ = {};
    stop();
    // They may hold what holds this.
    runner_ = nullptr;
    watcher_ = nullptr;
  }

  bool isEnabled() const noexcept { return isEnabled_; }
  void onBrought(std::function<void()> handler) { brought_ = std::move(handler); }
  std::optional<Instant> lastRefresh() const noexcept { return lastRefresh_; }

 private:
  struct Alarm {
    std::shared_ptr<Timer> timer;
    MonotonicInstant due;
  };

  static void stopTimer(std::optional<Alarm>& alarm) {
    if (alarm) {
      alarm->timer->cancel();
      alarm.reset();
    }
  }

  /// Does `act` when the time has come, unless the alarm was stopped or set anew by then.
  void setAlarm(std::optional<Alarm> Rounds::* alarm, MonotonicInstant due, void (Rounds::*act)()) {
    stopTimer(this->*alarm);
    auto wake = [weak = weak_from_this(), alarm, due, act](SleepEnd end) {
      if (const auto self = weak.lock(); self != nullptr && end == SleepEnd::elapsed) {
        self->ring(self.get()->*alarm, due, act);
      }
    };
    this->*alarm = Alarm{clock_->startTimer(due, executor_, std::move(wake)), due};
  }

  void ring(std::optional<Alarm>& alarm, MonotonicInstant due, void (Rounds::*act)()) {
    if (alarm && alarm->due == due) {
      alarm.reset();
      (this->*act)();
    }
  }

  void lookNow() {
    nextLook_ = clock_->monotonicNow();
    plan();
  }

  void plan() {
    if (!isStarted_ || !isEnabled_ || isRunning_) {
      return;
    }
    const auto due = changedAt_ ? std::min(nextLook_, *changedAt_ + rest) : nextLook_;
    // Many changes put off what is due, and each of them would move the alarm: woken too early, it is set anew.
    if (!wakeUp_ || wakeUp_->due > due) {
      setAlarm(&Rounds::wakeUp_, due, &Rounds::wake);
    }
  }

  void wake() {
    if (isRunning_) {
      return;
    }
    const auto now = clock_->monotonicNow();
    if (now >= nextLook_) {
      nextLook_ = now + interval;
      begin(&Rounds::look);
    } else if (changedAt_ && now >= *changedAt_ + rest) {
      begin(&Rounds::refresh);
    }
    plan();
  }

  void begin(void (Rounds::*step)()) {
    changedAt_.reset();
    if (!isBatteryLow(settings_.powerSupplies)) {
      (this->*step)();
    }
  }

  void look() { run({"sources", "folders"}, &Rounds::looked); }

  void looked(const ProgramEnd& end) {
    auto sources = sourcesToldIn(end.output);
    if (!isEnabled_ || !sources) {
      return;
    }
    watch(std::move(sources->folders));
    if (sources->countRemembered > 0) {
      refresh();
    }
  }

  void refresh() { run({"refresh"}, &Rounds::refreshed); }

  void refreshed(const ProgramEnd& end) {
    const auto news = newsToldIn(end.output);
    if (news != RefreshNews::unknown) {
      lastRefresh_ = clock_->now();
    }
    if (brought_ && (news == RefreshNews::some || end.kind == ProgramEnd::Kind::killed)) {
      // A copy: the handler may set another one.
      const auto brought = brought_;
      brought();
    }
  }

  void watch(std::vector<FolderToWatch> folders) {
    watcher_->watch(std::move(folders), [weak = weak_from_this()](FolderNews news) {
      if (const auto self = weak.lock()) {
        self->hear(news);
      }
    });
  }

  void hear(FolderNews news) {
    if (!isEnabled_) {
      return;
    }
    if (news == FolderNews::changed) {
      changedAt_ = clock_->monotonicNow();
      plan();
    } else if (!std::exchange(isToldOfInterval_, true)) {
      log_.write("folders cannot be watched, sources are read at intervals only");
    }
  }

  /// Then goes on with `next`, if this is still wanted, and with what is due.
  void run(std::vector<std::string> words, void (Rounds::*next)(const ProgramEnd&)) {
    words.insert(words.begin(), {settings_.program.native(), "--json", "--store", settings_.store.native(),
                                 "--key-file", settings_.keyFile.native()});
    isRunning_ = true;
    setAlarm(&Rounds::bound_, clock_->monotonicNow() + longestRun, &Rounds::killOverdue);
    runner_->run(std::move(words), [weak = weak_from_this(), next](ProgramEnd end) {
      if (const auto self = weak.lock()) {
        self->isRunning_ = false;
        stopTimer(self->bound_);
        // After a long run the machine is left alone for a while.
        self->nextLook_ = std::max(self->nextLook_, self->clock_->monotonicNow() + rest);
        (*self.*next)(end);
        self->plan();
      }
    });
  }

  void killOverdue() {
    log_.write("refresh took too long and was ended");
    runner_->kill();
  }

  Executor executor_;
  RefreshingSettings settings_;
  std::shared_ptr<const Clock> clock_;
  LogChannel log_;
  std::unique_ptr<ProgramRunner> runner_;
  std::unique_ptr<FolderWatcher> watcher_;
  std::function<void()> brought_;

  bool isStarted_ = false;
  bool isEnabled_ = true;
  bool isRunning_ = false;
  bool isToldOfInterval_ = false;
  MonotonicInstant nextLook_;
  /// The last change that nothing was read after.
  std::optional<MonotonicInstant> changedAt_;
  std::optional<Instant> lastRefresh_;
  std::optional<Alarm> wakeUp_;
  std::optional<Alarm> bound_;
};

std::filesystem::path RefreshingSettings::programBesideThisOne() {
  std::error_code unknown;
  return std::filesystem::read_symlink("/proc/self/exe", unknown).parent_path() / "orvan";
}

RefreshingParts RefreshingParts::ofSystem(const Executor& executor, std::shared_ptr<LogSink> log) {
  return {std::make_shared<SystemClock>(), std::move(log), std::make_unique<BackgroundRunner>(executor),
          std::make_unique<InotifyFolderWatcher>(executor)};
}

SourceRefreshing::SourceRefreshing(Executor executor, RefreshingSettings settings, RefreshingParts parts)
    : rounds_(std::make_shared<Rounds>(std::move(executor), std::move(settings), std::move(parts))) {}

SourceRefreshing::~SourceRefreshing() {
  rounds_->end();
}

void SourceRefreshing::start() {
  rounds_->start();
}

void SourceRefreshing::setEnabled(bool isEnabled) {
  rounds_->setEnabled(isEnabled);
}

bool SourceRefreshing::isEnabled() const noexcept {
  return rounds_->isEnabled();
}

void SourceRefreshing::onBrought(std::function<void()> handler) {
  rounds_->onBrought(std::move(handler));
}

std::optional<Instant> SourceRefreshing::lastRefresh() const noexcept {
  return rounds_->lastRefresh();
}

} // namespace orvan
