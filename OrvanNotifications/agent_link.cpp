#include "OrvanNotifications/internal/agent_link.h"

#include <boost/asio/post.hpp>
#include <utility>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/error.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"

namespace orvan::internal {
namespace {

using namespace agent_protocol;

/// A service that has gone silent is asked once, and may take its time.
constexpr std::chrono::hours probeTimeout{24};

const BusTarget theCenter{serviceName, objectPath, centerInterface};

constexpr PresentationOptions shown = PresentationOptions::banner | PresentationOptions::sound;

std::exception_ptr errorFor(const BusFailure& failure, const char* attempt) {
  const bool refused = failure.name() == refusedError || failure.error() == BusError::malformed;
  const auto code = refused ? NotificationCenterError::refused : NotificationCenterError::unavailable;
  return std::make_exception_ptr(Error{code, attempt});
}

bool isDecided(AuthorizationStatus status) {
  return status != AuthorizationStatus::notDetermined;
}

bool allows(AuthorizationStatus status) {
  return status == AuthorizationStatus::authorized || status == AuthorizationStatus::provisional;
}

std::optional<AuthorizationStatus> statusIn(const BusAnswer& answer) {
  try {
    return answer.has_value() ? statusFromWord(answer->reader().text()) : std::nullopt;
  } catch (const Error&) {
    return std::nullopt;
  }
}

/// Whether what was asked may succeed another time: nobody has decided against it.
bool mayBeAskedAgain(const BusFailure& failure) {
  switch (failure.error()) {
    case BusError::malformed:
      return false;
    case BusError::answeredWithError:
      return failure.name() == lockedError || failure.name() == unusableError;
    default:
      return true;
  }
}

} // namespace

AgentLink::AgentLink(std::shared_ptr<boost::asio::io_context> loop, AgentCenterOptions options,
                     std::weak_ptr<NotificationCenter> center)
    : loop_(std::move(loop)),
      options_(std::move(options)),
      center_(std::move(center)),
      quietTimer_(*loop_),
      returnTimer_(*loop_) {}

void AgentLink::connect() {
  try {
    bus_ = BusConnection::toUserBus(loop_->get_executor());
  } catch (const Error&) {
    return;
  }
  // What the connection calls ends with it, which belongs to this object.
  bus_->onLost([this] { busLost(); });
  subscriptions_.push_back(bus_->watchName(serviceName, [this](const std::string& owner) { ownerChanged(owner); }));
  subscriptions_.push_back(bus_->matchSignal(theCenter, "AuthorizationChanged",
                                             [this](const BusMessage& message) { authorizationChanged(message); }));
  subscriptions_.push_back(
      bus_->matchSignal(theCenter, "Activated", [this](const BusMessage& message) { activated(message); }));
  BusInterface client{clientInterface};
  client.method("WillPresent", std::string{"s"} + notificationType, "u",
                [this](BusCall call) { willPresent(std::move(call)); });
  subscriptions_.push_back(bus_->exportInterface(clientPath, std::move(client)));
}

/// What was owed before comes before.
void AgentLink::ask(const char* method, const BusWriter::Contents& arguments, BusConnection::AnswerHandler answer) {
  sendRemovals();
  call(method, arguments, std::move(answer));
}

void AgentLink::call(const char* method, const BusWriter::Contents& arguments, BusConnection::AnswerHandler answer) {
  if (!canBeAsked()) {
    callFailed_ = true;
    return answer(std::unexpected{BusFailure{bus_ == nullptr ? BusError::noBus : BusError::timedOut, ""}});
  }
  // The handler is needed in either case: for the answer, and for arguments that cannot be sent.
  const auto shared = std::make_shared<BusConnection::AnswerHandler>(std::move(answer));
  try {
    bus_->call(theCenter, method, arguments, options_.callTimeout, [this, shared](BusAnswer given) {
      heard(given);
      (*shared)(std::move(given));
    });
  } catch (const Error&) {
    (*shared)(std::unexpected{BusFailure{BusError::malformed, ""}});
  }
}

BusWriter::Contents AgentLink::applicationOnly() const {
  return [this](BusWriter& writer) { writer.text(options_.application); };
}

void AgentLink::heard(const BusAnswer& answer) {
  if (answer.has_value()) {
    return;
  }
  callFailed_ = true;
  if (answer.error().error() == BusError::timedOut) {
    becomeMute();
  }
}

void AgentLink::becomeMute() {
  if (std::exchange(mute_, true)) {
    return;
  }
  // For as long as a call may take nothing else is asked in any case: a service that answers this one and hangs in
  // others would hold up a caller with thousands of them for as many times.
  quietTimer_.expires_after(options_.callTimeout);
  // A real question: who answers those has not only a loop that runs.
  bus_->call(theCenter, "GetSettings", applicationOnly(), probeTimeout,
             [this](const BusAnswer& answer) { probeAnswered(answer); });
}

/// Any word of the service's own ends its silence; so does its end, after which the bus may start another.
void AgentLink::probeAnswered(const BusAnswer& answer) {
  if (const auto status = statusIn(answer)) {
    learn(*status);
  }
  const bool spoke = answer.has_value() || answer.error().error() == BusError::answeredWithError;
  quietTimer_.async_wait([weak = weak_from_this(), spoke](boost::system::error_code cancelled) {
    const auto self = weak.lock();
    if (!cancelled && self != nullptr && std::exchange(self->mute_, false) && spoke) {
      self->agentIsBack();
    }
  });
}

void AgentLink::ownerChanged(const std::string& owner) {
  owner_ = owner;
  presenting_.clear();
  if (owner.empty()) {
    return ownerSeen_ ? awaitReturn() : void();
  }
  mute_ = false;
  quietTimer_.cancel();
  const bool returns = std::exchange(ownerSeen_, true) || callFailed_;
  if (returns) {
    agentIsBack();
  }
}

void AgentLink::agentIsBack() {
  callFailed_ = false;
  sendRemovals();
  if (inFront_) {
    standInFront(true);
  }
  if (!authorizationWaiters_.empty()) {
    askUser();
  }
  if (options_.agentReturned != nullptr) {
    options_.agentReturned();
  }
}

void AgentLink::busLost() {
  subscriptions_.clear();
  presenting_.clear();
  bus_.reset();
  endQuestion(false, errorFor(BusFailure{BusError::disconnected, ""}, "asking for authorization"));
}

void AgentLink::learn(AuthorizationStatus status) {
  lastStatus_ = status;
  if (isDecided(status)) {
    endQuestion(allows(status), nullptr);
  }
}

void AgentLink::authorizationChanged(const BusMessage& message) {
  BusReader reader = message.reader();
  const std::string application = reader.text();
  const auto status = statusFromWord(reader.text());
  if (message.sender() == owner_ && application == options_.application && status.has_value()) {
    learn(*status);
  }
}

void AgentLink::activated(const BusMessage& message) {
  BusReader reader = message.reader();
  const std::string application = reader.text();
  const std::string identifier = reader.text();
  const std::string action = reader.text();
  if (message.sender() == owner_ && application == options_.application && options_.activated != nullptr) {
    options_.activated(identifier, action);
  }
}

void AgentLink::getSettings(const SettingsHandler& handler) {
  ask("GetSettings", applicationOnly(), [this, handler](const BusAnswer& answer) {
    const auto status = statusIn(answer);
    if (status.has_value()) {
      learn(*status);
    }
    handler(NotificationSettings{lastStatus_.value_or(AuthorizationStatus::notDetermined)});
  });
}

void AgentLink::requestAuthorization(AuthorizationOptions options, AuthorizationHandler handler) {
  authorizationWaiters_.push_back(std::move(handler));
  authorizationOptions_ = options;
  askUser();
}

void AgentLink::askUser() {
  returnAwaited_ = false;
  ask(
      "RequestAuthorization",
      [this](BusWriter& writer) {
        writer.text(options_.application).text(options_.displayName).uint32(authorizationOptions_.rawValue());
      },
      [this](const BusAnswer& answer) { questionAnswered(answer); });
}

void AgentLink::questionAnswered(const BusAnswer& answer) {
  if (!answer.has_value()) {
    // One who leaves with the question in hand has not answered it.
    return answer.error().error() == BusError::serviceLeft
               ? awaitReturn()
               : endQuestion(false, errorFor(answer.error(), "asking for authorization"));
  }
  const auto status = statusIn(answer);
  if (!status.has_value()) {
    // Decided, in a word that says nothing of whether notifications are allowed.
    return endQuestion(false, nullptr);
  }
  learn(*status);
}

/// Gives a service that has left with a question to the user the time of a call to return.
void AgentLink::awaitReturn() {
  if (authorizationWaiters_.empty() || std::exchange(returnAwaited_, true)) {
    return;
  }
  returnTimer_.expires_after(options_.callTimeout);
  returnTimer_.async_wait([weak = weak_from_this()](boost::system::error_code cancelled) {
    const auto self = weak.lock();
    if (!cancelled && self != nullptr && self->returnAwaited_) {
      self->endQuestion(false, errorFor(BusFailure{BusError::serviceLeft, ""}, "asking for authorization"));
    }
  });
}

void AgentLink::endQuestion(bool granted, const std::exception_ptr& error) {
  returnAwaited_ = false;
  for (const auto& handler : std::exchange(authorizationWaiters_, {})) {
    handler(granted, error);
  }
}

void AgentLink::add(const NotificationRequest& request, const std::function<void(std::exception_ptr)>& handler) {
  const std::string& identifier = request.identifier();
  const bool removalOwed = removals_.forgetPending(identifier);
  const std::uint64_t addition = nextAddition_++;
  additions_.insert_or_assign(identifier, addition);
  const auto write = [&](BusWriter& writer) {
    writer.text(options_.application).text(options_.displayName);
    writeRequest(writer, request);
  };
  ask("Add", write, [this, identifier, addition, removalOwed, handler](const BusAnswer& answer) {
    const auto latest = additions_.find(identifier);
    if (latest != additions_.end() && latest->second == addition) {
      additions_.erase(latest);
      if (!answer.has_value() && removalOwed) {
        // What was to go is still to go.
        removals_.push(RemovalKind::pending, {identifier});
      }
    }
    handler(answer.has_value() ? nullptr : errorFor(answer.error(), "adding a notification"));
  });
}

void AgentLink::getPending(std::function<void(std::vector<NotificationRequest>)> handler) {
  ask("GetPending", applicationOnly(), [handler = std::move(handler)](const BusAnswer& answer) {
    if (!answer.has_value()) {
      return;
    }
    std::vector<NotificationRequest> requests;
    BusReader reader = answer->reader();
    reader.array(requestType, [&] { requests.push_back(readRequest(reader)); });
    handler(std::move(requests));
  });
}

void AgentLink::getDelivered(std::function<void(std::vector<Notification>)> handler) {
  ask("GetDelivered", applicationOnly(), [handler = std::move(handler)](const BusAnswer& answer) {
    if (!answer.has_value()) {
      return;
    }
    std::vector<Notification> notifications;
    BusReader reader = answer->reader();
    reader.array(notificationType, [&] { notifications.push_back(readNotification(reader)); });
    handler(std::move(notifications));
  });
}

void AgentLink::remove(RemovalKind kind, std::vector<std::string> identifiers) {
  if (!identifiers.empty()) {
    removals_.push(kind, std::move(identifiers));
    sendRemovals();
  }
}

void AgentLink::sendRemovals() {
  while (canBeAsked()) {
    const auto batch = removals_.next();
    if (!batch.has_value()) {
      return;
    }
    const auto write = [&](BusWriter& writer) { writer.text(options_.application).texts(batch->identifiers); };
    call(batch->kind == RemovalKind::pending ? "RemovePending" : "RemoveDelivered", write,
         [this, id = batch->id](const BusAnswer& answer) { removalAnswered(id, answer); });
  }
}

void AgentLink::removalAnswered(std::uint64_t id, const BusAnswer& answer) {
  if (!answer.has_value() && mayBeAskedAgain(answer.error())) {
    // Not at once: it waits for the next question, or the service's return.
    removals_.failed(id);
  } else {
    removals_.confirmed(id);
    sendRemovals();
  }
  tellFlushed();
}

void AgentLink::tellFlushed() {
  if (removals_.anyUnderWay()) {
    return;
  }
  for (const auto& done : std::exchange(flushing_, {})) {
    done(removals_.empty());
  }
}

void AgentLink::flush(std::function<void(bool)> done) {
  flushing_.push_back(std::move(done));
  sendRemovals();
  tellFlushed();
}

void AgentLink::standInFront(bool inFront) {
  const bool stood = std::exchange(inFront_, inFront);
  if (!inFront && !stood) {
    return;
  }
  const auto write = [&](BusWriter& writer) { writer.text(options_.application).boolean(inFront); };
  // Where it fails, the service's return repeats it.
  ask("StandInFront", write, [](const BusAnswer& /*either*/) {});
}

void AgentLink::willPresent(BusCall call) {
  BusReader arguments = call.arguments();
  const std::string application = arguments.text();
  if (call.sender() != owner_ || application != options_.application) {
    return call.refuse(refusedError, "not this application's");
  }
  auto notification = readNotification(arguments);
  const auto center = center_.lock();
  const auto delegate = center == nullptr ? nullptr : center->delegate();
  if (delegate == nullptr) {
    call.answer([](BusWriter& writer) { writer.uint32(shown.rawValue()); });
    return standInFront(false);
  }
  delegate->willPresent(center, std::move(notification), presentationHandler(std::move(call)));
}

/// The handler may be called from any thread, or be dropped: then the notification is shown.
std::function<void(PresentationOptions)> AgentLink::presentationHandler(BusCall call) {
  struct Answer {
    std::function<void(PresentationOptions)> give;
    ~Answer() { give(shown); }
  };
  const std::uint64_t question = nextPresenting_++;
  presenting_.emplace(question, std::move(call));
  auto give = [weak = weak_from_this(), question](PresentationOptions options) {
    if (const auto self = weak.lock()) {
      boost::asio::post(*self->loop_, [weak, question, options] {
        if (const auto link = weak.lock()) {
          link->present(question, options);
        }
      });
    }
  };
  return [answer = std::make_shared<Answer>(std::move(give))](PresentationOptions options) { answer->give(options); };
}

void AgentLink::present(std::uint64_t question, PresentationOptions options) {
  const auto asked = presenting_.extract(question);
  if (!asked.empty()) {
    asked.mapped().answer([&](BusWriter& writer) { writer.uint32(options.rawValue()); });
  }
}

} // namespace orvan::internal
