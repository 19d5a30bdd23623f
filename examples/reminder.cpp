// Has the desktop remind its user in a minute, whether this program still runs by then or not.
//
//   reminder TITLE

#include <boost/asio/thread_pool.hpp>
#include <chrono>
#include <exception>
#include <iostream>
#include <string>

#include "OrvanNotifications/agent_notification_center.h"
#include "OrvanPlatform/user_calendar.h"

namespace {

using namespace orvan;
using namespace std::chrono_literals;

Task<bool> remind(std::shared_ptr<NotificationCenter> center, std::string title) {
  const bool granted = co_await center->authorizationGranted(AuthorizationOptions::alert);
  if (!granted) {
    co_return false;
  }
  const auto due = std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now() + 1min);
  NotificationContent content{std::move(title), UserInfo{}};
  const NotificationRequest request{"the only one", std::move(content), CalendarTrigger{userCalendarComponents(due)}};
  co_await center->added(request);
  co_return true;
}

} // namespace

int main(int argc, char** argv) {
  try {
    boost::asio::thread_pool thread{1};
    const auto center =
        AgentNotificationCenter::make({.application = "org.example.Reminder", .displayName = "Reminder example"});
    const bool set = waitFor(thread.get_executor(), remind(center, argc > 1 ? argv[1] : "A minute has passed"));
    std::cout << (set ? "You will be reminded in a minute.\n" : "You have not allowed reminders.\n");
    return set ? 0 : 1;
  } catch (const std::exception& error) {
    std::cerr << "reminder: " << error.what() << "\n";
    return 1;
  }
}
