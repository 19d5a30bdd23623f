#pragma once

#include <chrono>
#include <list>
#include <map>
#include <string>
#include <string_view>

#include "OrvanPlatform/bus/bus_connection.h"
#include "application/agent/reminders/foreground.h"

namespace orvan {

/// Programs on the bus that stand in front of the user. One that leaves the bus stands in front no more. Of several for
/// one application the one that came last is asked.
///
/// Belongs to the thread of its bus connection, which must outlive it.
class BusForeground final : public Foreground {
 public:
  static constexpr std::chrono::seconds answerTimeout{2};

  BusForeground(BusConnection& bus, Executor executor) : bus_(bus), executor_(std::move(executor)) {}

  /// `program` is a unique name on the bus. Coming twice is as once; withdrawing somebody who does not stand there does
  /// nothing.
  void comeToFront(const std::string& application, const std::string& program);
  void withdraw(std::string application, std::string program);

  bool someoneStandsInFront(std::string_view application) const override { return programs_.contains(application); }
  void willPresent(const std::string& application, const Notification& notification,
                   std::move_only_function<void(std::optional<PresentationOptions>)> answer) override;

 private:
  struct Program {
    std::string name;
    /// Tells when it leaves.
    BusSubscription watch;
  };

  BusConnection& bus_;
  Executor executor_;
  std::map<std::string, std::list<Program>, std::less<>> programs_;
};

} // namespace orvan
