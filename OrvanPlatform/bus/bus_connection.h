#pragma once

#include <sys/types.h>

#include <chrono>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/bus/bus_call.h"
#include "OrvanPlatform/bus/bus_error.h"
#include "OrvanPlatform/bus/bus_message.h"
#include "OrvanPlatform/executor.h"

namespace orvan {

/// Whom a call goes to: a name on the bus, one of its objects, and one interface of that.
class BusTarget {
 public:
  BusTarget(std::string service, std::string path, std::string interface)
      : service_(std::move(service)), path_(std::move(path)), interface_(std::move(interface)) {}

  const std::string& service() const noexcept { return service_; }
  const std::string& path() const noexcept { return path_; }
  const std::string& interface() const noexcept { return interface_; }

 private:
  std::string service_;
  std::string path_;
  std::string interface_;
};

/// Why a call has no answer.
class BusFailure {
 public:
  BusFailure(BusError error, std::string name) : error_(error), name_(std::move(name)) {}

  BusError error() const noexcept { return error_; }
  /// The D-Bus name of the error ("org.freedesktop.DBus.Error.NoReply"), "" when there is none.
  const std::string& name() const noexcept { return name_; }

 private:
  BusError error_;
  std::string name_;
};

using BusAnswer = std::expected<BusMessage, BusFailure>;

/// Ends what it stands for (a match, a watch, an exported interface) when it goes. Belongs to the connection's thread;
/// may outlive the connection. A handler may end its own.
class [[nodiscard]] BusSubscription {
 public:
  BusSubscription() = default;
  explicit BusSubscription(std::shared_ptr<void> held) : held_(std::move(held)) {}
  BusSubscription(BusSubscription&&) noexcept = default;
  BusSubscription& operator=(BusSubscription&&) noexcept = default;

 private:
  std::shared_ptr<void> held_;
};

/// One interface of an object: what can be asked of it, and which signals it tells. Signatures are D-Bus's ("ssa{sv}").
class BusInterface {
 public:
  using Handler = std::function<void(BusCall)>;

  explicit BusInterface(std::string name) : name_(std::move(name)) {}

  /// Calls with arguments of another signature are answered with an error and do not reach `handler`. A handler that
  /// throws has its call answered with an error.
  BusInterface& method(std::string name, std::string arguments, std::string results, Handler handler) {
    methods_.emplace_back(std::move(name), std::move(arguments), std::move(results), std::move(handler));
    return *this;
  }
  BusInterface& signal(std::string name, std::string arguments) {
    signals_.emplace_back(std::move(name), std::move(arguments));
    return *this;
  }

  struct Method {
    std::string name;
    std::string arguments;
    std::string results;
    Handler handler;
  };
  struct Signal {
    std::string name;
    std::string arguments;
  };
  const std::string& name() const noexcept { return name_; }
  const std::vector<Method>& methods() const noexcept { return methods_; }
  const std::vector<Signal>& signals() const noexcept { return signals_; }

 private:
  std::string name_;
  std::vector<Method> methods_;
  std::vector<Signal> signals_;
};

enum class NameRequest { owned, taken };

/// A connection to a message bus, driven by an event loop of one thread.
///
/// Made, used and destroyed on the thread of its executor (or when that has ended); handlers run there, never within
/// the operation that was given them. No operation waits for an answer, except userOf(). A handler that throws
/// BusError::malformed has been sent something of another form, which is passed over; what else it throws comes out of
/// the event loop.
///
/// Destroying it drops the handlers that wait. When the bus goes, the calls under way end with BusError::disconnected,
/// then the handler given to onLost() is called once; such a connection stays lost.
class BusConnection {
 public:
  using AnswerHandler = std::move_only_function<void(BusAnswer)>;
  using MessageHandler = std::function<void(const BusMessage&)>;

  /// The bus of the user's session (DBUS_SESSION_BUS_ADDRESS, or the one in XDG_RUNTIME_DIR). Throws Error with
  /// BusError::noBus when there is none.
  static std::unique_ptr<BusConnection> toUserBus(Executor executor);
  static std::unique_ptr<BusConnection> toAddress(Executor executor, const std::string& address);

  ~BusConnection();
  BusConnection(const BusConnection&) = delete;
  BusConnection& operator=(const BusConnection&) = delete;

  void onLost(std::function<void()> handler);

  /// Asks `target`, starting its service if the bus can. `answer` is called once, at the latest when `timeout` has
  /// passed; an answer that comes after that is dropped. Throws Error with BusError::malformed when the arguments
  /// cannot be sent.
  void call(const BusTarget& target, const char* method, const BusWriter::Contents& arguments,
            std::chrono::milliseconds timeout, AnswerHandler answer);

  /// Tells a signal of one of our objects to everybody who listens. On a lost connection nothing happens.
  void emit(const std::string& path, const std::string& interface, const char* signal,
            const BusWriter::Contents& arguments);

  /// Calls `handler` for each such signal. `source.service()` may be a name that somebody on the bus owns now or later;
  /// who really sent a signal is for `handler` to compare (BusMessage::sender()) where it matters.
  BusSubscription matchSignal(const BusTarget& source, const char* signal, MessageHandler handler);

  /// Calls `handler` with the unique name of the owner of `name` as of now ("" for none), and then with each new one.
  BusSubscription watchName(const std::string& name, std::function<void(const std::string& owner)> handler);

  /// Answers calls to `path` from now on.
  BusSubscription exportInterface(const std::string& path, BusInterface interface);

  /// Asks for a name on the bus without standing in line for it.
  void requestName(const std::string& name, std::function<void(std::expected<NameRequest, BusFailure>)> handler);

  /// The user as whom the owner of `uniqueName` runs; absent when it has left or the bus does not say. Waits for the
  /// bus itself (five seconds at most) when asked of a name for the first time.
  std::optional<uid_t> userOf(const std::string& uniqueName);

 private:
  class State;
  explicit BusConnection(std::shared_ptr<State> state);

  std::shared_ptr<State> state_;
};

} // namespace orvan
