#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "OrvanPlatform/bus/bus_connection.h"
#include "OrvanPlatform/clock.h"
#include "application/agent/reminders/presenter.h"

namespace orvan {

/// Shows popups with the desktop's notification service, org.freedesktop.Notifications, whichever that is at the time.
///
/// Belongs to the thread of its bus connection, which must outlive it; a destroyed one calls nobody any more. A service
/// that is not running is started by the bus for the first popup. Where the bus fails at that, there is no service
/// until one comes by itself or some minutes have passed.
class DesktopNotifications final : public PopupPresenter {
 public:
  static constexpr std::chrono::milliseconds usualCallTimeout{10'000};

  /// `callTimeout` is how long the service may take to answer one call.
  DesktopNotifications(BusConnection& bus, Executor executor, std::shared_ptr<const Clock> clock,
                       std::chrono::milliseconds callTimeout = usualCallTimeout);
  ~DesktopNotifications() override;

  /// Until it is known whether there is a service, and what a running one can do, there is none.
  void start();

  /// The name that the service gives itself, or that it has on the bus where it did not say; empty when there is none.
  std::string serviceName() const;
  /// What it says it can do, in its words.
  std::vector<std::string> capabilities() const { return {capabilities_.begin(), capabilities_.end()}; }

  void setListener(PopupListener* listener) override { listener_ = listener; }
  /// Also when the bus can start one: it does so for the first popup, whose answer then names it. What it can do is not
  /// known before, unless it ran already: such services end when they are idle and are the same when they come back.
  bool isThere() const override;
  std::string service() const override { return owner_; }
  bool replacesByTag() const override;
  void show(Popup popup, std::move_only_function<void(PopupOutcome)> completion) override;
  void withdraw(const ShownPopup& popup) override;

 private:
  using Completion = std::move_only_function<void(PopupOutcome)>;
  struct Waiting {
    Popup popup;
    Completion completion;
  };
  enum class Abilities {
    unknown,
    /// The least there is, because the service did not say.
    assumed,
    told,
  };
  struct Event {
    ShownPopup popup;
    /// Nothing for a popup that is closed.
    std::optional<std::string> action;
  };

  bool has(const char* capability) const { return capabilities_.contains(capability); }
  std::string recipient() const;
  /// `handler` as one that does nothing once this object is gone.
  template <typename Handler>
  auto whileAlive(Handler handler) {
    return [self = std::weak_ptr{self_}, handler = std::move(handler)](auto&&... given) mutable {
      if (const auto alive = self.lock()) {
        handler(**alive, std::forward<decltype(given)>(given)...);
      }
    };
  }

  void askWhetherItCanBeStarted();
  void ownerChanged(const std::string& owner);
  void learnAbilities();
  void abilitiesLearnt(BusAnswer answer);
  void learnName();
  void tellOfChange();
  void startFailed();

  void notify(Waiting waiting);
  void writePopup(BusWriter& writer, const Popup& popup) const;
  void notified(const std::string& owner, Completion completion, BusAnswer answer);
  static PopupOutcome outcomeOf(const std::string& owner, const BusAnswer& answer);

  void matchSignals();
  void actionInvoked(const BusMessage& message);
  void tokenGiven(const BusMessage& message);
  void closed(const BusMessage& message);
  void take(Event event);
  void tell(const Event& event);
  void tellHeld();

  BusConnection& bus_;
  Executor executor_;
  std::shared_ptr<const Clock> clock_;
  std::chrono::milliseconds callTimeout_;
  /// Shared with what may come after this object's end, and empty then.
  std::shared_ptr<DesktopNotifications*> self_;
  PopupListener* listener_ = nullptr;
  std::vector<BusSubscription> subscriptions_;

  bool isOwnerKnown_ = false;
  std::string owner_;
  bool canBeStarted_ = false;
  bool failedToStart_ = false;
  std::chrono::minutes pauseBeforeStart_{1};
  std::string name_;
  std::set<std::string, std::less<>> capabilities_;
  Abilities abilities_ = Abilities::unknown;
  bool isLearning_ = false;

  /// Popups that wait until it is known how they are to be written.
  std::vector<Waiting> waiting_;
  std::size_t underWay_ = 0;
  std::set<std::uint32_t> shown_;
  std::map<std::uint32_t, std::string> tokens_;
  /// What was told of popups that may be those under way: a service may speak of a popup before it answers.
  std::vector<Event> held_;
};

} // namespace orvan
