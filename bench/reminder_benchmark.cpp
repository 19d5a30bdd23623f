// What the agent's reminders cost with many pending: adding one, being ready after a start, the clock being set, a
// thousand due at once, and memory.
//
//   reminder_benchmark [--pending N] [--folder FOLDER]
//
// Times are the processor's, with the derivation of keys; those of additions are the clock's. An addition is on disk
// when it returns, so it is told beside what the disk takes for that.

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "OrvanTestSupport/capturing_log.h"
#include "OrvanTestSupport/manual_clock.h"
#include "application/agent/reminders/reminder_center.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

constexpr const char* application = "org.orvan.Orvan.benchmark";
constexpr int mostAtOnce = 1000;
const Instant filledAt = std::chrono::sys_days{std::chrono::year{2026} / 3 / 5};

class Stopwatch {
 public:
  double milliseconds() const {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start_).count();
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// What the processor did, whatever else the machine did.
class ProcessorTime {
 public:
  double milliseconds() const { return now() - start_; }

 private:
  static double now() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  }
  double start_ = now();
};

double medianOf(std::vector<double> values) {
  std::ranges::nth_element(values, values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2));
  return values[values.size() / 2];
}

class CountingPresenter final : public PopupPresenter {
 public:
  explicit CountingPresenter(Executor executor) : executor_(std::move(executor)) {}
  void setListener(PopupListener* /*listener*/) override {}
  bool isThere() const override { return true; }
  std::string service() const override { return ":1.1"; }
  bool replacesByTag() const override { return true; }
  void show(Popup /*popup*/, std::move_only_function<void(PopupOutcome)> completion) override {
    boost::asio::post(executor_, [completion = std::move(completion), number = ++shown]() mutable {
      completion(ShownPopup{.service = ":1.1", .number = number});
    });
  }
  void withdraw(const ShownPopup& /*popup*/) override {}

  std::uint32_t shown = 0;

 private:
  Executor executor_;
};

class NobodyInFront final : public Foreground {
 public:
  bool someoneStandsInFront(std::string_view /*application*/) const override { return false; }
  void willPresent(const std::string& /*application*/, const Notification& /*notification*/,
                   std::move_only_function<void(std::optional<PresentationOptions>)> answer) override {
    answer(std::nullopt);
  }
};

class SilentAlarm final : public WallClockAlarm {
 public:
  void setWake(std::function<void(WakeReason)> wake) override { wake_ = std::move(wake); }
  void setFor(std::optional<Instant> /*instant*/) override {}
  void wake(WakeReason reason) const { wake_(reason); }

 private:
  std::function<void(WakeReason)> wake_;
};

class Agent {
 public:
  explicit Agent(const std::filesystem::path& folder) {
    center_ = std::make_shared<ReminderCenter>(ReminderCenterParts{
        .executor = loop_.get_executor(),
        .file =
            std::make_shared<ReminderFile>(ReminderPaths::besideStore(folder / "store.db"), KeyPlace::file, filledAt),
        .clock = clock,
        .alarm = alarm,
        .presenter = presenter,
        .foreground = std::make_shared<NobodyInFront>(),
        .actions = nullptr,
        .ownApplication = application,
        .log = LogChannel{std::make_shared<CapturingLog>(), "reminders"}});
    center_->start();
    settle();
  }
  ReminderCenter& center() { return *center_; }
  void settle() {
    loop_.restart();
    loop_.poll();
  }

 private:
  boost::asio::io_context loop_;

 public:
  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>(filledAt);
  std::shared_ptr<SilentAlarm> alarm = std::make_shared<SilentAlarm>();
  std::shared_ptr<CountingPresenter> presenter = std::make_shared<CountingPresenter>(loop_.get_executor());

 private:
  std::shared_ptr<ReminderCenter> center_;
};

/// The first thousand are due within the hour, the others one after another later.
NotificationRequest numbered(int number) {
  const auto delay = number < mostAtOnce ? std::chrono::minutes{1 + number % 50} : std::chrono::minutes{60 + number};
  const auto id = std::to_string(number);
  UserInfo userInfo{{"follow_up_id", "0b9f4c1e-7a52-4d0e-9c1d-" + id}, {"kind", "follow_up"}};
  return {"0b9f4c1e-7a52-4d0e-9c1d-" + id,
          {"Send Amara Osei the minutes of the meeting " + id, std::move(userInfo)},
          CalendarTrigger{userCalendarComponents(filledAt + delay)}};
}

void fill(const std::filesystem::path& folder, int pending) {
  Agent agent(folder);
  agent.center().setAuthorization(application, "Orvan", AuthorizationStatus::authorized);
  std::vector<double> times;
  for (int number = 0; number < pending; ++number) {
    const auto request = numbered(number);
    const Stopwatch watch;
    agent.center().add(application, "Orvan", request);
    times.push_back(watch.milliseconds());
    agent.settle();
  }
  std::printf("add, median                 %10.2f ms\n", medianOf(std::move(times)));
}

/// What the disk takes to keep as much as one addition writes.
double syncTime(const std::filesystem::path& folder) {
  const int file = open((folder / "sync").c_str(), O_CREAT | O_RDWR | O_CLOEXEC, 0600);
  std::vector<double> times;
  const std::string pages(5UL * 4096, 'x');
  for (int count = 0; count < 100; ++count) {
    const Stopwatch watch;
    if (write(file, pages.data(), pages.size()) < 0 || fdatasync(file) != 0) {
      break;
    }
    times.push_back(watch.milliseconds());
  }
  close(file);
  return times.empty() ? 0 : medianOf(std::move(times));
}

double residentMegabytes() {
  long pages = 0;
  long resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

void serve(const std::filesystem::path& folder) {
  const ProcessorTime opening;
  Agent agent(folder);
  std::printf("ready after a start         %10.1f ms\n", opening.milliseconds());
  std::printf("resident                    %10.1f MB\n", residentMegabytes());

  const ProcessorTime setting;
  agent.alarm->wake(WakeReason::clockChanged);
  std::printf("the clock set               %10.1f ms\n", setting.milliseconds());

  agent.clock->advance(std::chrono::hours{1});
  const ProcessorTime presenting;
  agent.alarm->wake(WakeReason::instantCame);
  agent.settle();
  std::printf("%zu due at once, %u popup  %10.1f ms\n", agent.center().delivered(application).size(),
              agent.presenter->shown, presenting.milliseconds());
  std::printf("resident                    %10.1f MB\n", residentMegabytes());
}

/// Filling is another process's, whose memory and pages would be counted else.
void fillInAnotherProcess(const std::filesystem::path& folder, int pending) {
  std::fflush(stdout);
  const auto child = fork();
  if (child == 0) {
    fill(folder, pending);
    std::fflush(stdout);
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (status != 0) {
    std::exit(1);
  }
}

void run(std::span<char* const> arguments) {
  int pending = 10'000;
  std::filesystem::path parent = std::filesystem::temp_directory_path();
  for (std::size_t at = 1; at + 1 < arguments.size(); at += 2) {
    const std::string_view option = arguments[at];
    if (option == "--pending") {
      pending = std::atoi(arguments[at + 1]);
    } else if (option == "--folder") {
      parent = arguments[at + 1];
    }
  }
  const ScratchFolder folder(parent);
  fillInAnotherProcess(folder.path(), pending);
  std::printf("the disk alone, median      %10.2f ms\n", syncTime(folder.path()));
  serve(folder.path());
}

} // namespace
} // namespace orvan

int main(int count, char** arguments) {
  try {
    orvan::run({arguments, static_cast<std::size_t>(count)});
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
