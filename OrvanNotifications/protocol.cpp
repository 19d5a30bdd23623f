#include "OrvanNotifications/protocol.h"

#include <array>
#include <utility>

namespace orvan::agent_protocol {
namespace {

constexpr std::array<std::pair<AuthorizationStatus, std::string_view>, 4> statusWords{
    {{AuthorizationStatus::notDetermined, "notDetermined"},
     {AuthorizationStatus::denied, "denied"},
     {AuthorizationStatus::authorized, "authorized"},
     {AuthorizationStatus::provisional, "provisional"}}};

void writeInfo(BusWriter& writer, const std::string& key, bool value) {
  writer.entry(key, "b", [&](BusWriter& inner) { inner.boolean(value); });
}

void writeInfo(BusWriter& writer, const std::string& key, std::int64_t value) {
  writer.entry(key, "x", [&](BusWriter& inner) { inner.int64(value); });
}

void writeInfo(BusWriter& writer, const std::string& key, double value) {
  writer.entry(key, "d", [&](BusWriter& inner) { inner.real(value); });
}

void writeInfo(BusWriter& writer, const std::string& key, const std::string& value) {
  writer.entry(key, "s", [&](BusWriter& inner) { inner.text(value); });
}

std::optional<UserInfoValue> readInfo(BusReader& reader, std::string_view type) {
  if (type == "b") {
    return reader.boolean();
  }
  if (type == "x") {
    return reader.int64();
  }
  if (type == "d") {
    return reader.real();
  }
  if (type == "s") {
    return reader.text();
  }
  return std::nullopt;
}

UserInfo readUserInfo(BusReader& reader) {
  UserInfo userInfo;
  reader.entries([&](const std::string& key, std::string_view type) {
    if (auto value = readInfo(reader, type)) {
      userInfo.insert_or_assign(key, *std::move(value));
    }
  });
  return userInfo;
}

CalendarComponents readComponents(BusReader& reader) {
  std::array<int, 6> values{};
  reader.structure("iiiiii", [&] {
    for (int& value : values) {
      value = reader.int32();
    }
  });
  const auto [year, month, day, hour, minute, second] = values;
  return CalendarComponents{year, month, day, hour, minute, second};
}

} // namespace

std::string_view statusWord(AuthorizationStatus status) {
  for (const auto& [known, word] : statusWords) {
    if (known == status) {
      return word;
    }
  }
  return statusWords.front().second;
}

std::optional<AuthorizationStatus> statusFromWord(std::string_view word) {
  for (const auto& [status, known] : statusWords) {
    if (known == word) {
      return status;
    }
  }
  return std::nullopt;
}

void writeRequest(BusWriter& writer, const NotificationRequest& request) {
  writer.structure("ssa{sv}(iiiiii)", [&](BusWriter& members) {
    members.text(request.identifier()).text(request.content().title());
    members.array("{sv}", [&](BusWriter& entries) {
      for (const auto& [key, value] : request.content().userInfo()) {
        std::visit([&](const auto& known) { writeInfo(entries, key, known); }, value);
      }
    });
    members.structure("iiiiii", [&](BusWriter& when) {
      const CalendarComponents& due = request.trigger().components();
      when.int32(due.year()).int32(due.month()).int32(due.day());
      when.int32(due.hour()).int32(due.minute()).int32(due.second());
    });
  });
}

NotificationRequest readRequest(BusReader& reader) {
  std::optional<NotificationRequest> request;
  reader.structure("ssa{sv}(iiiiii)", [&] {
    std::string identifier = reader.text();
    std::string title = reader.text();
    UserInfo userInfo = readUserInfo(reader);
    request.emplace(std::move(identifier), NotificationContent{std::move(title), std::move(userInfo)},
                    CalendarTrigger{readComponents(reader)});
  });
  return *std::move(request); // NOLINT(bugprone-unchecked-optional-access): structure() has read one or thrown.
}

void writeNotification(BusWriter& writer, const Notification& notification) {
  writer.structure("x(ssa{sv}(iiiiii))", [&](BusWriter& members) {
    members.int64(notification.date().time_since_epoch().count());
    writeRequest(members, notification.request());
  });
}

Notification readNotification(BusReader& reader) {
  std::optional<Notification> notification;
  reader.structure("x(ssa{sv}(iiiiii))", [&] {
    const Instant date{Instant::duration{reader.int64()}};
    notification.emplace(date, readRequest(reader));
  });
  return *std::move(notification); // NOLINT(bugprone-unchecked-optional-access): structure() has read one or thrown.
}

} // namespace orvan::agent_protocol
