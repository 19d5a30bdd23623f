#include "OrvanPlatform/bus/bus_connection.h"

#include <systemd/sd-bus.h>

#include <algorithm>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <cerrno>
#include <cstdint>
#include <exception>
#include <map>
#include <utility>

#include "OrvanPlatform/bus/internal/own_message.h"
#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

struct UnrefBus {
  void operator()(sd_bus* bus) const noexcept { sd_bus_unref(bus); }
};
struct UnrefSlot {
  void operator()(sd_bus_slot* slot) const noexcept { sd_bus_slot_unref(slot); }
};
struct UnrefCredentials {
  void operator()(sd_bus_creds* credentials) const noexcept { sd_bus_creds_unref(credentials); }
};
using internal::OwnMessage;
using Bus = std::unique_ptr<sd_bus, UnrefBus>;
using Slot = std::unique_ptr<sd_bus_slot, UnrefSlot>;
using Credentials = std::unique_ptr<sd_bus_creds, UnrefCredentials>;

using Wait = boost::asio::posix::stream_descriptor::wait_type;

constexpr auto noTimeout = UINT64_MAX;
/// What the loop handles before it lets others have a turn.
constexpr int messagesInOneTurn = 64;
constexpr std::chrono::microseconds busTimeout = std::chrono::seconds{5};
constexpr std::size_t mostKnownUsers = 1000;

const BusTarget theBus{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"};

void requireBus(int result) {
  if (result < 0) {
    throw Error{BusError::noBus, "connecting to the message bus"};
  }
}

void requireForm(int result) {
  if (result < 0) {
    throw Error{BusError::malformed, "using the message bus"};
  }
}

/// What the bus itself says when it could not bring a call to anybody.
bool tellsOfNoService(std::string_view name) {
  return name == SD_BUS_ERROR_SERVICE_UNKNOWN || name == SD_BUS_ERROR_NAME_HAS_NO_OWNER ||
         name == SD_BUS_ERROR_TIMEOUT || name == "org.freedesktop.DBus.Error.TimedOut" ||
         name.starts_with("org.freedesktop.DBus.Error.Spawn.") || name.starts_with("org.freedesktop.systemd1.");
}

BusError errorNamed(std::string_view name, bool connected) {
  if (!connected || name == SD_BUS_ERROR_DISCONNECTED) {
    return BusError::disconnected;
  }
  if (name == SD_BUS_ERROR_NO_REPLY) {
    return BusError::serviceLeft;
  }
  return tellsOfNoService(name) ? BusError::noService : BusError::answeredWithError;
}

std::string matchRule(const BusTarget& source, const char* signal, const std::string& firstArgument) {
  std::string rule = "type='signal',sender='" + source.service() + "',path='" + source.path() + "',interface='" +
                     source.interface() + "',member='" + signal + "'";
  if (!firstArgument.empty()) {
    rule += ",arg0='" + firstArgument + "'";
  }
  return rule;
}

sd_bus_vtable vtableEntry(char type) {
  sd_bus_vtable entry{};
  entry.type = static_cast<std::uint8_t>(type);
  return entry;
}

sd_bus_vtable vtableStart() {
  sd_bus_vtable entry = vtableEntry(_SD_BUS_VTABLE_START);
  entry.x.start = {.element_size = sizeof(sd_bus_vtable),
                   .features = _SD_BUS_VTABLE_PARAM_NAMES,
                   .vtable_format_reference = &sd_bus_object_vtable_format};
  return entry;
}

sd_bus_vtable vtableMethod(const BusInterface::Method& method, sd_bus_message_handler_t handler) {
  sd_bus_vtable entry = vtableEntry(_SD_BUS_VTABLE_METHOD);
  // Who may call is for the object to decide: sd-bus would ask for a capability.
  entry.flags = SD_BUS_VTABLE_UNPRIVILEGED;
  entry.x.method = {.member = method.name.c_str(),
                    .signature = method.arguments.c_str(),
                    .result = method.results.c_str(),
                    .handler = handler,
                    .offset = 0,
                    .names = ""};
  return entry;
}

sd_bus_vtable vtableSignal(const BusInterface::Signal& signal) {
  sd_bus_vtable entry = vtableEntry(_SD_BUS_VTABLE_SIGNAL);
  entry.x.signal = {.member = signal.name.c_str(), .signature = signal.arguments.c_str(), .names = ""};
  return entry;
}

} // namespace

class BusConnection::State : public std::enable_shared_from_this<BusConnection::State> {
 public:
  State(Executor executor, Bus bus)
      : executor_(std::move(executor)), bus_(std::move(bus)), descriptor_(executor_), timer_(executor_) {
    sd_bus_set_method_call_timeout(bus_.get(), static_cast<std::uint64_t>(busTimeout.count()));
  }

  ~State() { close(); }
  State(const State&) = delete;
  State& operator=(const State&) = delete;

  void start() {
    descriptor_.assign(sd_bus_get_fd(bus_.get()));
    scheduleTurn();
  }

  void close() {
    if (std::exchange(closed_, true)) {
      return;
    }
    stopWatching();
    sd_bus_close(bus_.get());
  }

  /// Nobody is to hear from this connection again.
  void abandon() {
    abandoned_ = true;
    calls_.clear();
    lostHandler_ = nullptr;
    close();
  }

  void onLost(std::function<void()> handler) { lostHandler_ = std::move(handler); }

  void call(const BusTarget& target, const char* method, const BusWriter::Contents& arguments,
            std::chrono::milliseconds timeout, AnswerHandler answer) {
    sd_bus_message* made = nullptr;
    requireForm(sd_bus_message_new_method_call(bus_.get(), &made, target.service().c_str(), target.path().c_str(),
                                               target.interface().c_str(), method));
    const OwnMessage message{made};
    BusWriter writer{message.get()};
    arguments(writer);
    const auto call = std::make_shared<PendingCall>(*this, nextCall_++, std::move(answer));
    calls_.emplace(call->id, call);
    sd_bus_slot* slot = nullptr;
    if (sd_bus_call_async(bus_.get(), &slot, message.get(), onAnswer, call.get(), noTimeout) < 0) {
      return failLater(call->id, BusError::disconnected);
    }
    call->slot.reset(slot);
    startTimeout(*call, timeout);
    scheduleTurn();
  }

  void emit(const std::string& path, const std::string& interface, const char* signal,
            const BusWriter::Contents& arguments) {
    sd_bus_message* made = nullptr;
    requireForm(sd_bus_message_new_signal(bus_.get(), &made, path.c_str(), interface.c_str(), signal));
    const OwnMessage message{made};
    BusWriter writer{message.get()};
    arguments(writer);
    if (sd_bus_send(bus_.get(), message.get(), nullptr) >= 0) {
      scheduleTurn();
    }
  }

  std::shared_ptr<void> match(const std::string& rule, MessageHandler handler) {
    const auto match = std::make_shared<Match>(*this, std::move(handler));
    sd_bus_slot* slot = nullptr;
    // On a lost connection there is nothing to wait for.
    if (const int result = sd_bus_add_match_async(bus_.get(), &slot, rule.c_str(), onSignal, nullptr, match.get());
        result != -ENOTCONN) {
      requireForm(result);
    }
    match->slot.reset(slot);
    scheduleTurn();
    return match;
  }

  std::shared_ptr<void> watchName(const std::string& name, std::function<void(const std::string& owner)> handler);

  std::shared_ptr<void> exportInterface(const std::string& path, BusInterface interface) {
    const auto exported = std::make_shared<Exported>(*this, std::move(interface));
    exported->table.push_back(vtableStart());
    for (const auto& method : exported->interface.methods()) {
      exported->table.push_back(vtableMethod(method, onMethod));
    }
    for (const auto& signal : exported->interface.signals()) {
      exported->table.push_back(vtableSignal(signal));
    }
    exported->table.push_back(vtableEntry(_SD_BUS_VTABLE_END));
    sd_bus_slot* slot = nullptr;
    requireForm(sd_bus_add_object_vtable(bus_.get(), &slot, path.c_str(), exported->interface.name().c_str(),
                                         exported->table.data(), exported.get()));
    exported->slot.reset(slot);
    return exported;
  }

  std::optional<uid_t> userOf(const std::string& uniqueName) {
    const auto known = users_.find(uniqueName);
    if (known != users_.end()) {
      return known->second;
    }
    sd_bus_creds* asked = nullptr;
    const int result = sd_bus_get_name_creds(bus_.get(), uniqueName.c_str(), SD_BUS_CREDS_EUID, &asked);
    const Credentials credentials{asked};
    scheduleTurn();
    uid_t user = 0;
    if (result < 0 || sd_bus_creds_get_euid(credentials.get(), &user) < 0) {
      return std::nullopt;
    }
    // A bus never gives a unique name to anybody else again.
    if (users_.size() >= mostKnownUsers) {
      users_.clear();
    }
    users_.emplace(uniqueName, user);
    return user;
  }

 private:
  struct PendingCall {
    PendingCall(State& state, std::uint64_t id, AnswerHandler answer)
        : state(state), id(id), answer(std::move(answer)), timeout(state.executor_) {}
    State& state;
    std::uint64_t id;
    AnswerHandler answer;
    boost::asio::steady_timer timeout;
    Slot slot;
  };

  struct Match : std::enable_shared_from_this<Match> {
    Match(State& state, MessageHandler handler) : state(state), handler(std::move(handler)) {}
    State& state;
    MessageHandler handler;
    Slot slot;
  };

  struct Exported : std::enable_shared_from_this<Exported> {
    Exported(State& state, BusInterface interface) : state(state), interface(std::move(interface)) {}
    State& state;
    BusInterface interface;
    std::vector<sd_bus_vtable> table;
    Slot slot;
  };

  struct NameWatch : std::enable_shared_from_this<NameWatch> {
    explicit NameWatch(std::function<void(const std::string& owner)> handler) : handler(std::move(handler)) {}
    std::function<void(const std::string& owner)> handler;
    std::optional<std::string> told;
    std::shared_ptr<void> match;

    void tell(const std::string& owner) {
      const auto self = shared_from_this();
      if (told != owner) {
        told = owner;
        handler(owner);
      }
    }
  };

  // sd-bus calls the following from within sd_bus_process(), which only a turn runs: the state is there. Exceptions
  // must not pass through it.

  static int onAnswer(sd_bus_message* message, void* data, sd_bus_error* /*error*/) noexcept {
    State& state = static_cast<PendingCall*>(data)->state;
    const auto call = state.takeCall(static_cast<PendingCall*>(data)->id);
    if (call != nullptr) {
      state.guarded([&] { call->answer(state.answerIn(message)); });
    }
    return 1;
  }

  static int onSignal(sd_bus_message* message, void* data, sd_bus_error* /*error*/) noexcept {
    const auto match = static_cast<Match*>(data)->weak_from_this().lock();
    match->state.guarded([&] { match->handler(BusMessage{message}); });
    // Others may match the same signal.
    return 0;
  }

  static int onMethod(sd_bus_message* message, void* data, sd_bus_error* /*error*/) noexcept {
    const auto exported = static_cast<Exported*>(data)->weak_from_this().lock();
    State& state = exported->state;
    state.guarded([&] {
      const auto& methods = exported->interface.methods();
      const auto* const method =
          std::to_address(std::ranges::find(methods, sd_bus_message_get_member(message), &BusInterface::Method::name));
      method->handler(BusCall{BusMessage{message}, [weak = state.weak_from_this()] {
                                if (const auto self = weak.lock()) {
                                  self->scheduleTurn();
                                }
                              }});
    });
    return 1;
  }

  template <typename Action>
  void guarded(Action action) noexcept {
    try {
      action();
    } catch (const Error& error) {
      if (error.code() != BusError::malformed) {
        thrown_ = std::current_exception();
      }
    } catch (...) {
      thrown_ = std::current_exception();
    }
  }

  BusAnswer answerIn(sd_bus_message* message) const {
    const sd_bus_error* error = sd_bus_message_get_error(message);
    if (error == nullptr) {
      return BusMessage{message};
    }
    const std::string name = error->name == nullptr ? "" : error->name;
    return std::unexpected{BusFailure{errorNamed(name, sd_bus_is_open(bus_.get()) > 0), name}};
  }

  std::shared_ptr<PendingCall> takeCall(std::uint64_t id) {
    const auto node = calls_.extract(id);
    return node.empty() ? nullptr : node.mapped();
  }

  void startTimeout(PendingCall& call, std::chrono::milliseconds timeout) {
    call.timeout.expires_after(timeout);
    call.timeout.async_wait([weak = weak_from_this(), id = call.id](boost::system::error_code cancelled) {
      const auto self = weak.lock();
      if (!cancelled && self != nullptr) {
        self->fail(id, BusError::timedOut);
      }
    });
  }

  void fail(std::uint64_t id, BusError error) {
    if (const auto call = takeCall(id)) {
      call->answer(std::unexpected{BusFailure{error, ""}});
    }
  }

  void failLater(std::uint64_t id, BusError error) {
    boost::asio::post(executor_, [weak = weak_from_this(), id, error] {
      if (const auto self = weak.lock()) {
        self->fail(id, error);
      }
    });
  }

  void scheduleTurn() {
    if (closed_ || std::exchange(turnScheduled_, true)) {
      return;
    }
    boost::asio::post(executor_, [weak = weak_from_this()] {
      if (const auto self = weak.lock()) {
        self->turnScheduled_ = false;
        self->turn();
      }
    });
  }

  /// Handles what has come, sends what waits to be sent, and sees to being called again.
  void turn() {
    const auto self = shared_from_this();
    int result = 1;
    for (int handled = 0; result > 0 && handled < messagesInOneTurn && !closed_ && thrown_ == nullptr; ++handled) {
      result = sd_bus_process(bus_.get(), nullptr);
    }
    if (closed_) {
      return rethrow();
    }
    if (result > 0) {
      scheduleTurn();
    } else if (result < 0 || !watch()) {
      lose();
    }
    rethrow();
  }

  void rethrow() {
    if (const auto thrown = std::exchange(thrown_, nullptr)) {
      std::rethrow_exception(thrown);
    }
  }

  bool watch() {
    const int events = sd_bus_get_events(bus_.get());
    std::uint64_t due = 0;
    if (events < 0 || sd_bus_get_timeout(bus_.get(), &due) < 0) {
      return false;
    }
    const auto watched = static_cast<unsigned>(events);
    if ((watched & static_cast<unsigned>(POLLIN)) != 0) {
      waitFor(Wait::wait_read, readAwaited_);
    }
    if ((watched & static_cast<unsigned>(POLLOUT)) != 0) {
      waitFor(Wait::wait_write, writeAwaited_);
    }
    if (due != noTimeout) {
      waitUntil(due);
    }
    return true;
  }

  void waitFor(Wait event, bool& awaited) {
    if (std::exchange(awaited, true)) {
      return;
    }
    descriptor_.async_wait(event, [weak = weak_from_this(), &awaited](boost::system::error_code /*any*/) {
      const auto self = weak.lock();
      if (self != nullptr && !self->closed_) {
        awaited = false;
        self->turn();
      }
    });
  }

  void waitUntil(std::uint64_t due) {
    timer_.expires_at(std::chrono::steady_clock::time_point{std::chrono::microseconds{due}});
    timer_.async_wait([weak = weak_from_this()](boost::system::error_code cancelled) {
      const auto self = weak.lock();
      if (!cancelled && self != nullptr && !self->closed_) {
        self->turn();
      }
    });
  }

  void stopWatching() noexcept {
    try {
      timer_.cancel();
      if (descriptor_.is_open()) {
        // The descriptor is sd-bus's to close.
        descriptor_.release();
      }
    } catch (...) { // NOLINT(bugprone-empty-catch): what is still watched finds the connection closed.
    }
  }

  void lose() {
    close();
    for (auto& [id, call] : std::exchange(calls_, {})) {
      if (!abandoned_) {
        call->answer(std::unexpected{BusFailure{BusError::disconnected, ""}});
      }
    }
    if (const auto handler = std::exchange(lostHandler_, nullptr)) {
      handler();
    }
  }

  Executor executor_;
  Bus bus_;
  boost::asio::posix::stream_descriptor descriptor_;
  boost::asio::steady_timer timer_;
  std::function<void()> lostHandler_;
  std::map<std::uint64_t, std::shared_ptr<PendingCall>> calls_;
  std::map<std::string, uid_t> users_;
  std::exception_ptr thrown_;
  std::uint64_t nextCall_ = 0;
  bool turnScheduled_ = false;
  bool readAwaited_ = false;
  bool writeAwaited_ = false;
  bool closed_ = false;
  bool abandoned_ = false;
};

std::shared_ptr<void> BusConnection::State::watchName(const std::string& name,
                                                      std::function<void(const std::string& owner)> handler) {
  const auto watch = std::make_shared<NameWatch>(std::move(handler));
  const std::weak_ptr<NameWatch> weak = watch;
  watch->match = match(matchRule(theBus, "NameOwnerChanged", name), [weak](const BusMessage& message) {
    BusReader reader = message.reader();
    reader.text();
    reader.text();
    const std::string owner = reader.text();
    if (const auto told = weak.lock()) {
      told->tell(owner);
    }
  });
  call(
      theBus, "GetNameOwner", [&](BusWriter& writer) { writer.text(name); },
      std::chrono::duration_cast<std::chrono::milliseconds>(busTimeout),
      [weak](const BusAnswer& answer) {
        if (const auto told = weak.lock()) {
          told->tell(answer.has_value() ? answer->reader().text() : "");
        }
      });
  return watch;
}

std::unique_ptr<BusConnection> BusConnection::toUserBus(Executor executor) {
  sd_bus* bus = nullptr;
  requireBus(sd_bus_open_user(&bus));
  auto state = std::make_shared<State>(std::move(executor), Bus{bus});
  state->start();
  return std::unique_ptr<BusConnection>{new BusConnection{std::move(state)}};
}

std::unique_ptr<BusConnection> BusConnection::toAddress(Executor executor, const std::string& address) {
  sd_bus* made = nullptr;
  requireBus(sd_bus_new(&made));
  Bus bus{made};
  requireBus(sd_bus_set_address(bus.get(), address.c_str()));
  requireBus(sd_bus_set_bus_client(bus.get(), 1));
  requireBus(sd_bus_start(bus.get()));
  auto state = std::make_shared<State>(std::move(executor), std::move(bus));
  state->start();
  return std::unique_ptr<BusConnection>{new BusConnection{std::move(state)}};
}

BusConnection::BusConnection(std::shared_ptr<State> state) : state_(std::move(state)) {}

BusConnection::~BusConnection() {
  state_->abandon();
}

void BusConnection::onLost(std::function<void()> handler) {
  state_->onLost(std::move(handler));
}

void BusConnection::call(const BusTarget& target, const char* method, const BusWriter::Contents& arguments,
                         std::chrono::milliseconds timeout, AnswerHandler answer) {
  state_->call(target, method, arguments, timeout, std::move(answer));
}

void BusConnection::emit(const std::string& path, const std::string& interface, const char* signal,
                         const BusWriter::Contents& arguments) {
  state_->emit(path, interface, signal, arguments);
}

BusSubscription BusConnection::matchSignal(const BusTarget& source, const char* signal, MessageHandler handler) {
  return BusSubscription{state_->match(matchRule(source, signal, ""), std::move(handler))};
}

BusSubscription BusConnection::watchName(const std::string& name,
                                         std::function<void(const std::string& owner)> handler) {
  return BusSubscription{state_->watchName(name, std::move(handler))};
}

BusSubscription BusConnection::exportInterface(const std::string& path, BusInterface interface) {
  return BusSubscription{state_->exportInterface(path, std::move(interface))};
}

void BusConnection::requestName(const std::string& name,
                                std::function<void(std::expected<NameRequest, BusFailure>)> handler) {
  constexpr std::uint32_t doNotQueue = 4;
  constexpr std::uint32_t exists = 3;
  state_->call(
      theBus, "RequestName", [&](BusWriter& writer) { writer.text(name).uint32(doNotQueue); },
      std::chrono::duration_cast<std::chrono::milliseconds>(busTimeout),
      [handler = std::move(handler)](const BusAnswer& answer) {
        if (!answer.has_value()) {
          return handler(std::unexpected{answer.error()});
        }
        handler(answer->reader().uint32() == exists ? NameRequest::taken : NameRequest::owned);
      });
}

std::optional<uid_t> BusConnection::userOf(const std::string& uniqueName) {
  return state_->userOf(uniqueName);
}

} // namespace orvan
