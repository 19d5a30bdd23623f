#include "application/agent/reminders/user_info_text.h"

#include <bit>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/notification_center/notification_center_error.h"

namespace orvan {
namespace {

using Json = nlohmann::json;

/// JSON knows neither infinities nor one way to write a fraction.
constexpr const char* fractionBits = "bits";

struct ToJson {
  Json operator()(double value) const { return Json{{fractionBits, std::bit_cast<std::uint64_t>(value)}}; }
  template <typename Value>
  Json operator()(const Value& value) const {
    return Json(value);
  }
};

UserInfoValue valueOf(const Json& json) {
  if (json.is_boolean()) {
    return json.get<bool>();
  }
  if (json.is_string()) {
    return json.get<std::string>();
  }
  if (json.is_object()) {
    return std::bit_cast<double>(json.at(fractionBits).get<std::uint64_t>());
  }
  return json.get<std::int64_t>();
}

} // namespace

std::string textOf(const UserInfo& userInfo) {
  auto json = Json::object();
  for (const auto& [key, value] : userInfo) {
    json[key] = std::visit(ToJson{}, value);
  }
  try {
    return json.dump();
  } catch (const Json::exception&) {
    throw Error(NotificationCenterError::refused, "keeping a request's user info");
  }
}

UserInfo userInfoOf(std::string_view text) {
  UserInfo userInfo;
  try {
    for (const auto& [key, value] : Json::parse(text).items()) {
      userInfo.emplace(key, valueOf(value));
    }
  } catch (const Json::exception&) {
    return {};
  }
  return userInfo;
}

} // namespace orvan
