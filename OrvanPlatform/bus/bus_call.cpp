#include "OrvanPlatform/bus/bus_call.h"

#include <systemd/sd-bus.h>

#include <utility>

#include "OrvanPlatform/bus/internal/own_message.h"
#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

using internal::OwnMessage;

constexpr auto notCarriedOut = SD_BUS_ERROR_FAILED;

} // namespace

struct BusCall::Question {
  BusMessage message;
  std::function<void()> sent;

  /// An asker who has left, or who wants no answer, is no fault of ours.
  void send(const OwnMessage& reply) const {
    if (reply != nullptr && sd_bus_send(nullptr, reply.get(), nullptr) >= 0) {
      sent();
    }
  }

  OwnMessage emptyAnswer() const {
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_return(message.handle(), &reply);
    return OwnMessage{reply};
  }

  void fail(const char* name, const char* explanation) const {
    const sd_bus_error error{.name = name, .message = explanation, ._need_free = 0};
    sd_bus_message* reply = nullptr;
    sd_bus_message_new_method_error(message.handle(), &reply, &error);
    send(OwnMessage{reply});
  }
};

BusCall::BusCall(BusMessage message, std::function<void()> sent)
    : question_(std::make_unique<Question>(std::move(message), std::move(sent))) {}

BusCall::BusCall(BusCall&& other) noexcept = default;

BusCall& BusCall::operator=(BusCall&& other) noexcept {
  std::swap(question_, other.question_);
  return *this;
}

BusCall::~BusCall() {
  if (question_ != nullptr) {
    question_->fail(notCarriedOut, "the call was not carried out");
  }
}

BusReader BusCall::arguments() const noexcept {
  return question_->message.reader();
}

std::string BusCall::sender() const {
  return question_->message.sender();
}

void BusCall::answer() {
  answer([](BusWriter& /*nothing*/) {});
}

void BusCall::answer(const BusWriter::Contents& results) {
  const auto question = std::exchange(question_, nullptr);
  if (question == nullptr) {
    return;
  }
  const OwnMessage reply = question->emptyAnswer();
  if (reply == nullptr) {
    return;
  }
  try {
    BusWriter writer{reply.get()};
    results(writer);
  } catch (const Error&) {
    return question->fail(notCarriedOut, "the answer cannot be sent");
  }
  question->send(reply);
}

void BusCall::refuse(const std::string& name, const std::string& explanation) {
  if (const auto question = std::exchange(question_, nullptr)) {
    question->fail(name.c_str(), explanation.c_str());
  }
}

} // namespace orvan
