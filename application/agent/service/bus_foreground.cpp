#include "application/agent/service/bus_foreground.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <utility>

#include "OrvanNotifications/protocol.h"
#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

PresentationOptions optionsOf(std::uint32_t bits) {
  PresentationOptions options;
  for (const auto option : {PresentationOptions::sound, PresentationOptions::banner}) {
    if ((bits & option.rawValue()) != 0) {
      options = options | option;
    }
  }
  // Whoever asks for something that is not known here wants it presented all the same.
  return bits != 0 && options.empty() ? PresentationOptions::banner : options;
}

std::optional<PresentationOptions> optionsIn(const BusAnswer& answer) {
  if (!answer) {
    return std::nullopt;
  }
  try {
    return optionsOf(answer->reader().uint32());
  } catch (const Error&) {
    return std::nullopt;
  }
}

} // namespace

void BusForeground::comeToFront(const std::string& application, const std::string& program) {
  withdraw(application, program);
  auto watch = bus_.watchName(program, [this, application, program](const std::string& owner) {
    if (owner.empty()) {
      withdraw(application, program);
    }
  });
  programs_[application].push_back({.name = program, .watch = std::move(watch)});
}

void BusForeground::withdraw(std::string application, std::string program) {
  const auto found = programs_.find(application);
  if (found == programs_.end()) {
    return;
  }
  found->second.remove_if([&](const Program& each) { return each.name == program; });
  if (found->second.empty()) {
    programs_.erase(found);
  }
}

void BusForeground::willPresent(const std::string& application, const Notification& notification,
                                std::move_only_function<void(std::optional<PresentationOptions>)> answer) {
  const auto found = programs_.find(application);
  if (found == programs_.end()) {
    boost::asio::post(executor_, [answer = std::move(answer)]() mutable { answer(std::nullopt); });
    return;
  }
  bus_.call(
      {found->second.back().name, agent_protocol::clientPath, agent_protocol::clientInterface}, "WillPresent",
      [&](BusWriter& writer) {
        writer.text(application);
        agent_protocol::writeNotification(writer, notification);
      },
      answerTimeout, [answer = std::move(answer)](const BusAnswer& reply) mutable { answer(optionsIn(reply)); });
}

} // namespace orvan
