#include "application/agent/desktop/desktop_notifications.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <string_view>
#include <utility>

#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

constexpr auto wellKnownName = "org.freedesktop.Notifications";
constexpr auto objectPath = "/org/freedesktop/Notifications";
constexpr auto interfaceName = "org.freedesktop.Notifications";
constexpr std::chrono::minutes shortestPause{1};
constexpr std::chrono::minutes longestPause{60};

BusTarget theBus() {
  return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"};
}

bool contains(const std::vector<std::string>& texts, std::string_view text) {
  return std::ranges::find(texts, text) != texts.end();
}

void nothing(BusWriter& /*writer*/) {}

/// In services that read markup, a name with "<" in it would else vanish, or make something of the text.
std::string withoutMarkup(std::string_view text) {
  std::string escaped;
  for (const char letter : text) {
    switch (letter) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += letter;
    }
  }
  return escaped;
}

PresenterError meaningOf(BusError error) {
  switch (error) {
    case BusError::noBus:
    case BusError::disconnected:
    case BusError::noService:
      return PresenterError::noService;
    case BusError::serviceLeft:
      return PresenterError::serviceVanished;
    case BusError::answeredWithError:
      return PresenterError::refused;
    case BusError::timedOut:
    case BusError::malformed:
      return PresenterError::timedOut;
  }
  return PresenterError::timedOut;
}

bool isGone(BusError error) {
  return error == BusError::serviceLeft || error == BusError::noService;
}

} // namespace

DesktopNotifications::DesktopNotifications(BusConnection& bus, Executor executor, std::shared_ptr<const Clock> clock,
                                           std::chrono::milliseconds callTimeout)
    : bus_(bus),
      executor_(std::move(executor)),
      clock_(std::move(clock)),
      callTimeout_(callTimeout),
      self_(std::make_shared<DesktopNotifications*>(this)) {}

DesktopNotifications::~DesktopNotifications() = default;

void DesktopNotifications::start() {
  matchSignals();
  subscriptions_.push_back(bus_.watchName(wellKnownName, [this](const std::string& owner) {
    ownerChanged(owner);
    // Not before: one that runs already is not to be taken for one that could be started.
    if (!std::exchange(isOwnerKnown_, true)) {
      askWhetherItCanBeStarted();
    }
  }));
}

bool DesktopNotifications::isThere() const {
  return owner_.empty() ? canBeStarted_ && !failedToStart_ : abilities_ != Abilities::unknown;
}

std::string DesktopNotifications::serviceName() const {
  if (!isThere()) {
    return {};
  }
  return name_.empty() ? wellKnownName : name_;
}

bool DesktopNotifications::replacesByTag() const {
  return has("x-dunst-stack-tag") || has("x-canonical-private-synchronous");
}

std::string DesktopNotifications::recipient() const {
  return owner_.empty() ? wellKnownName : owner_;
}

void DesktopNotifications::askWhetherItCanBeStarted() {
  bus_.call(theBus(), "ListActivatableNames", nothing, callTimeout_,
            whileAlive([](DesktopNotifications& self, const BusAnswer& answer) {
              self.canBeStarted_ = answer && contains(answer->reader().texts(), wellKnownName);
              self.tellOfChange();
            }));
}

void DesktopNotifications::ownerChanged(const std::string& owner) {
  if (owner == owner_) {
    return;
  }
  owner_ = owner;
  abilities_ = Abilities::unknown;
  shown_.clear();
  tokens_.clear();
  std::erase_if(held_, [&](const Event& event) { return event.popup.service != owner; });
  if (owner_.empty()) {
    tellOfChange();
    return;
  }
  name_.clear();
  capabilities_.clear();
  failedToStart_ = false;
  pauseBeforeStart_ = shortestPause;
  learnName();
  learnAbilities();
}

void DesktopNotifications::learnAbilities() {
  if (std::exchange(isLearning_, true)) {
    return;
  }
  bus_.call({recipient(), objectPath, interfaceName}, "GetCapabilities", nothing, callTimeout_,
            whileAlive([](DesktopNotifications& self, BusAnswer answer) { self.abilitiesLearnt(std::move(answer)); }));
}

void DesktopNotifications::abilitiesLearnt(BusAnswer answer) {
  isLearning_ = false;
  if (answer && owner_.empty()) {
    ownerChanged(answer->sender()); // It was started for this.
    return;
  }
  if (!owner_.empty()) {
    abilities_ = Abilities::assumed;
  }
  if (answer && answer->sender() == owner_) {
    try {
      for (auto& ability : answer->reader().texts()) {
        capabilities_.insert(std::move(ability));
      }
    } catch (const Error&) { // NOLINT(bugprone-empty-catch): what it can do beyond the least is not known then.
    }
    abilities_ = Abilities::told;
  } else if (!answer && owner_.empty() && answer.error().error() != BusError::timedOut) {
    startFailed();
  } else if (!owner_.empty() && (answer || isGone(answer.error().error()))) {
    abilities_ = Abilities::unknown;
    learnAbilities(); // It was another service that answered, or left.
    return;
  }
  for (auto& popup : std::exchange(waiting_, {})) {
    notify(std::move(popup));
  }
  tellOfChange();
}

/// Nothing waits for it: it is told to the user's own tools alone.
void DesktopNotifications::learnName() {
  bus_.call({recipient(), objectPath, interfaceName}, "GetServerInformation", nothing, callTimeout_,
            whileAlive([](DesktopNotifications& self, const BusAnswer& answer) {
              if (answer && answer->sender() == self.owner_) {
                self.name_ = answer->reader().text();
              }
            }));
}

void DesktopNotifications::tellOfChange() {
  if (listener_ != nullptr) {
    listener_->popupServiceChanged();
  }
}

void DesktopNotifications::startFailed() {
  failedToStart_ = true;
  clock_->startTimer(monotonicInstantAfter(clock_->monotonicNow(), pauseBeforeStart_), executor_,
                     whileAlive([](DesktopNotifications& self, SleepEnd /*end*/) {
                       self.failedToStart_ = false;
                       self.tellOfChange();
                     }));
  pauseBeforeStart_ = std::min(pauseBeforeStart_ * 2, longestPause);
}

void DesktopNotifications::show(Popup popup, Completion completion) {
  if (!isThere()) {
    boost::asio::post(executor_, [completion = std::move(completion)]() mutable {
      completion(std::unexpected{PresenterError::noService});
    });
    return;
  }
  Waiting waiting{.popup = std::move(popup), .completion = std::move(completion)};
  if (abilities_ == Abilities::told) {
    notify(std::move(waiting));
    return;
  }
  waiting_.push_back(std::move(waiting));
  learnAbilities();
}

void DesktopNotifications::notify(Waiting waiting) {
  if (owner_.empty()) {
    waiting.completion(std::unexpected{PresenterError::noService});
    return;
  }
  ++underWay_;
  bus_.call(
      {owner_, objectPath, interfaceName}, "Notify", [&](BusWriter& writer) { writePopup(writer, waiting.popup); },
      callTimeout_,
      whileAlive([owner = owner_, completion = std::move(waiting.completion)](DesktopNotifications& self,
                                                                              BusAnswer answer) mutable {
        self.notified(owner, std::move(completion), std::move(answer));
      }));
}

void DesktopNotifications::writePopup(BusWriter& writer, const Popup& popup) const {
  constexpr std::uint8_t normalUrgency = 1;
  constexpr std::int32_t asTheServiceLikes = -1;
  writer.text(popup.applicationName).uint32(popup.replaces).text("appointment-soon").text(popup.summary);
  writer.text(has("body-markup") ? withoutMarkup(popup.body) : popup.body);
  std::vector<std::string> actions;
  if (has("actions")) {
    for (const auto& action : popup.actions) {
      actions.push_back(action.key);
      actions.push_back(action.label);
    }
  }
  writer.texts(actions);
  writer.array("{sv}", [&](BusWriter& hints) {
    hints.entry("desktop-entry", "s", [](BusWriter& value) { value.text("org.orvan.Agent"); });
    hints.entry("urgency", "y", [](BusWriter& value) { value.byte(normalUrgency); });
    for (const auto* hint : {"x-dunst-stack-tag", "x-canonical-private-synchronous"}) {
      if (has(hint) && !popup.tag.empty()) {
        hints.entry(hint, "s", [&](BusWriter& value) { value.text(popup.tag); });
      }
    }
  });
  writer.int32(asTheServiceLikes);
}

void DesktopNotifications::notified(const std::string& owner, Completion completion, BusAnswer answer) {
  --underWay_;
  const auto outcome = outcomeOf(owner, answer);
  if (outcome && owner == owner_) {
    shown_.insert(outcome->number);
  }
  completion(outcome);
  tellHeld();
}

PopupOutcome DesktopNotifications::outcomeOf(const std::string& owner, const BusAnswer& answer) {
  if (!answer) {
    return std::unexpected{meaningOf(answer.error().error())};
  }
  try {
    if (const auto number = answer->reader().uint32(); number != 0) {
      return ShownPopup{.service = owner, .number = number};
    }
  } catch (const Error&) { // NOLINT(bugprone-empty-catch): as below.
  }
  return std::unexpected{PresenterError::timedOut}; // It may stand there, and nobody knows under which number.
}

void DesktopNotifications::withdraw(const ShownPopup& popup) {
  if (owner_.empty() || popup.service != owner_) {
    return;
  }
  bus_.call(
      {owner_, objectPath, interfaceName}, "CloseNotification", [&](BusWriter& writer) { writer.uint32(popup.number); },
      callTimeout_, [](const BusAnswer& /*answer*/) {});
}

void DesktopNotifications::matchSignals() {
  const BusTarget source{wellKnownName, objectPath, interfaceName};
  const auto match = [&](const char* signal, void (DesktopNotifications::*handler)(const BusMessage&)) {
    subscriptions_.push_back(bus_.matchSignal(source, signal, [this, handler](const BusMessage& message) {
      // Anybody on the bus can send such a signal.
      if (!owner_.empty() && message.sender() == owner_) {
        (this->*handler)(message);
      }
    }));
  };
  match("ActivationToken", &DesktopNotifications::tokenGiven);
  match("ActionInvoked", &DesktopNotifications::actionInvoked);
  match("NotificationClosed", &DesktopNotifications::closed);
}

void DesktopNotifications::tokenGiven(const BusMessage& message) {
  auto reader = message.reader();
  const auto number = reader.uint32();
  if (shown_.contains(number)) {
    tokens_.insert_or_assign(number, reader.text());
  }
}

void DesktopNotifications::actionInvoked(const BusMessage& message) {
  auto reader = message.reader();
  const auto number = reader.uint32();
  take({.popup = {.service = owner_, .number = number}, .action = reader.text()});
}

void DesktopNotifications::closed(const BusMessage& message) {
  take({.popup = {.service = owner_, .number = message.reader().uint32()}, .action = std::nullopt});
}

void DesktopNotifications::take(Event event) {
  if (underWay_ > 0 && !shown_.contains(event.popup.number)) {
    constexpr std::size_t most = 1000; // Whatever popups of others there are, or a service out of its mind says.
    if (held_.size() < most) {
      held_.push_back(std::move(event));
    }
    return;
  }
  tell(event);
}

void DesktopNotifications::tell(const Event& event) {
  const auto token = tokens_.extract(event.popup.number);
  if (!event.action) {
    shown_.erase(event.popup.number);
  }
  if (listener_ == nullptr) {
    return;
  }
  if (event.action) {
    listener_->popupActionInvoked(event.popup, *event.action, token.empty() ? std::string{} : token.mapped());
  } else {
    listener_->popupClosed(event.popup);
  }
}

void DesktopNotifications::tellHeld() {
  for (auto& event : std::exchange(held_, {})) {
    take(std::move(event));
  }
}

} // namespace orvan
