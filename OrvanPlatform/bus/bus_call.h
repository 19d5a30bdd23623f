#pragma once

#include <functional>
#include <memory>
#include <string>

#include "OrvanPlatform/bus/bus_message.h"

namespace orvan {

/// A question that somebody on the bus has put to an object of ours. It may be kept and answered later; the first
/// answer counts. One that goes unanswered tells its asker that it was not carried out.
///
/// Belongs to the thread of its connection; may outlive the connection, and then answers nobody.
class BusCall {
 public:
  /// `sent` is called when an answer has been handed to the bus's queue.
  BusCall(BusMessage message, std::function<void()> sent);
  BusCall(BusCall&& other) noexcept;
  BusCall& operator=(BusCall&& other) noexcept;
  ~BusCall();

  /// The arguments are of the method's signature: reading them in its order does not fail.
  BusReader arguments() const noexcept;
  /// The unique name of who asks.
  std::string sender() const;

  /// An answer without values.
  void answer();
  /// `results` writes the values of the method's result signature. Text that cannot be sent makes it an error.
  void answer(const BusWriter::Contents& results);
  /// `name` is a D-Bus error name ("org.example.Error.Refused"); `explanation` is for developers and goes to the asker:
  /// no personal text.
  void refuse(const std::string& name, const std::string& explanation);

 private:
  struct Question;
  std::unique_ptr<Question> question_;
};

} // namespace orvan
