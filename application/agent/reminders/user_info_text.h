#pragma once

#include <string>
#include <string_view>

#include "OrvanPlatform/notification_center/notification_request.h"

namespace orvan {

/// A request's user info as text, from which userInfoOf makes the same again. Throws Error with
/// NotificationCenterError::refused for text that is no UTF-8.
std::string textOf(const UserInfo& userInfo);

/// Empty for text that textOf did not make: nothing that is shown depends on it.
UserInfo userInfoOf(std::string_view text);

} // namespace orvan
