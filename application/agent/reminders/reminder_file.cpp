#include "application/agent/reminders/reminder_file.h"

#include <array>
#include <set>
#include <utility>

#include "OrvanStore/repeated_statement.h"
#include "application/agent/reminders/user_info_text.h"

namespace orvan {
namespace {

constexpr std::array statusWords{
    std::pair{AuthorizationStatus::notDetermined, "notDetermined"},
    std::pair{AuthorizationStatus::denied, "denied"},
    std::pair{AuthorizationStatus::authorized, "authorized"},
    std::pair{AuthorizationStatus::provisional, "provisional"},
};

constexpr std::string_view titlesSetting = "titles";
constexpr std::string_view refreshingSetting = "refreshing";
constexpr std::string_view generalTitles = "general";
constexpr std::string_view off = "off";

std::string_view wordFor(AuthorizationStatus status) {
  for (const auto& [each, word] : statusWords) {
    if (each == status) {
      return word;
    }
  }
  return statusWords.front().second;
}

AuthorizationStatus statusOf(std::string_view word) {
  for (const auto& [status, each] : statusWords) {
    if (each == word) {
      return status;
    }
  }
  return AuthorizationStatus::notDetermined;
}

std::string_view wordFor(PresentationKind kind) {
  return kind == PresentationKind::group ? "group" : "single";
}

std::int64_t microsecondsOf(Instant instant) {
  return instant.time_since_epoch().count();
}

Instant instantOf(std::int64_t microseconds) {
  return Instant{std::chrono::microseconds{microseconds}};
}

/// Reads the six columns from `year` on.
CalendarComponents componentsIn(const Query& row, Column year) {
  const auto field = [&](int offset) { return static_cast<int>(row.integer(Column{year.index() + offset})); };
  return {field(0), field(1), field(2), field(3), field(4), field(5)};
}

/// Reads `identifier, title, user_info` and the date, which come first in every statement that reads requests.
NotificationRequest requestIn(const Query& row) {
  constexpr Column identifier{0};
  constexpr Column title{1};
  constexpr Column userInfo{2};
  constexpr Column year{3};
  return {std::string{row.text(identifier)},
          NotificationContent{std::string{row.text(title)}, userInfoOf(row.text(userInfo))},
          CalendarTrigger{componentsIn(row, year)}};
}

std::vector<NotificationRequest> requestsIn(Query rows) {
  std::vector<NotificationRequest> requests;
  while (rows.next()) {
    requests.push_back(requestIn(rows));
  }
  return requests;
}

std::vector<std::int64_t> numbersIn(Query rows) {
  std::vector<std::int64_t> numbers;
  while (rows.next()) {
    numbers.push_back(rows.integer(Column{0}));
  }
  return numbers;
}

std::optional<ShownPopup> popupIn(const Query& row, Column service, Column number) {
  const auto name = row.optionalText(service);
  if (!name || row.holdsNull(number)) {
    return std::nullopt;
  }
  return ShownPopup{.service = std::string{*name}, .number = static_cast<std::uint32_t>(row.integer(number))};
}

std::vector<NotificationRequest> remindersOf(Connection& connection, std::int64_t presentation) {
  return requestsIn(connection.query(R"sql(
SELECT identifier, title, user_info, year, month, day, hour, minute, second
FROM reminder
WHERE presentation = ?
ORDER BY identifier
)sql",
                                     presentation));
}

bool isEmpty(Connection& connection, std::int64_t presentation) {
  return !connection.fetchOptionalInteger("SELECT 1 FROM reminder WHERE presentation = ? LIMIT 1", presentation);
}

std::optional<Presentation> presentationNumbered(Connection& connection, std::int64_t number) {
  auto row = connection.query("SELECT application, kind, service, popup FROM presentation WHERE number = ?", number);
  if (!row.next()) {
    return std::nullopt;
  }
  const auto kind =
      row.text(Column{1}) == wordFor(PresentationKind::group) ? PresentationKind::group : PresentationKind::single;
  return Presentation{.number = number,
                      .application = row.integer(Column{0}),
                      .kind = kind,
                      .popup = popupIn(row, Column{2}, Column{3}),
                      .reminders = remindersOf(connection, number)};
}

std::int64_t insertPresentation(Connection& connection, std::int64_t application, PresentationKind kind, Instant now) {
  return connection
      .fetchOptionalInteger(R"sql(
INSERT INTO presentation (application, kind, state, at)
VALUES (?, ?, 'presenting', ?)
RETURNING number
)sql",
                            application, wordFor(kind), microsecondsOf(now))
      .value_or(0);
}

void deletePresentation(Connection& connection, std::int64_t number) {
  connection.execute("DELETE FROM presentation WHERE number = ?", number);
}

std::optional<ShownPopup> popupOf(Connection& connection, std::int64_t presentation) {
  auto row = connection.query("SELECT service, popup FROM presentation WHERE number = ?", presentation);
  return row.next() ? popupIn(row, Column{0}, Column{1}) : std::nullopt;
}

/// What is left of presentations that reminders were taken out of; those with none left go.
LeftPopups leftOf(Connection& connection, const std::set<std::int64_t>& presentations) {
  LeftPopups left;
  for (const auto number : presentations) {
    if (!isEmpty(connection, number)) {
      left.toShowAnew.push_back(number);
      continue;
    }
    if (auto popup = popupOf(connection, number)) {
      left.toWithdraw.push_back(std::move(*popup));
    }
    deletePresentation(connection, number);
  }
  return left;
}

/// Numbers the rows are given, higher than any that is in use.
std::int64_t highestNumber(Connection& connection) {
  return connection.fetchOptionalInteger("SELECT coalesce(max(number), 0) FROM reminder").value_or(0);
}

void givePopup(Connection& connection, std::int64_t presentation, const std::optional<ShownPopup>& popup) {
  const auto service = popup ? std::optional{std::string_view{popup->service}} : std::nullopt;
  const auto number = popup ? std::optional{popup->number} : std::nullopt;
  connection.execute("UPDATE presentation SET state = 'delivered', service = ?, popup = ? WHERE number = ?", service,
                     number, presentation);
}

/// Takes the shown ones with these identifiers out of their presentations, and says out of which.
std::set<std::int64_t> deleteShown(Connection& connection, std::int64_t application,
                                   std::span<const std::string> identifiers, std::string_view state) {
  RepeatedStatement removal(connection, R"sql(
DELETE FROM reminder
WHERE application = ? AND identifier = ? AND presentation IN (SELECT number FROM presentation WHERE state = ?)
RETURNING presentation
)sql");
  std::set<std::int64_t> presentations;
  for (const auto& identifier : identifiers) {
    auto& rows = removal.query(application, std::string_view{identifier}, state);
    while (rows.next()) {
      presentations.insert(rows.integer(Column{0}));
    }
  }
  return presentations;
}

/// What takes the place of delivered ones with the same identifiers: out of which presentations those were taken.
std::set<std::int64_t> moveInto(Connection& connection, std::int64_t presentation,
                                std::span<const std::int64_t> numbers) {
  RepeatedStatement removal(connection, R"sql(
DELETE FROM reminder
WHERE presentation IS NOT NULL
  AND (application, identifier) = (SELECT application, identifier FROM reminder WHERE number = ?)
RETURNING presentation
)sql");
  RepeatedStatement move(connection, "UPDATE reminder SET presentation = ? WHERE number = ? AND presentation IS NULL");
  std::set<std::int64_t> former;
  for (const auto number : numbers) {
    auto& rows = removal.query(number);
    while (rows.next()) {
      former.insert(rows.integer(Column{0}));
    }
    move.execute(presentation, number);
  }
  return former;
}

void deleteReplaced(Connection& connection, std::int64_t presentation) {
  connection.execute(R"sql(
DELETE FROM reminder
WHERE presentation = ? AND EXISTS (
  SELECT 1
  FROM reminder added
  WHERE added.presentation IS NULL
    AND added.application = reminder.application
    AND added.identifier = reminder.identifier)
)sql",
                     presentation);
}

std::vector<PendingTime> makePending(Connection& connection, std::int64_t presentation) {
  deleteReplaced(connection, presentation);
  std::vector<PendingTime> times;
  auto rows = connection.query(R"sql(
UPDATE reminder
SET presentation = NULL
WHERE presentation = ?
RETURNING application, number, year, month, day, hour, minute, second
)sql",
                               presentation);
  while (rows.next()) {
    times.push_back({rows.integer(Column{0}), rows.integer(Column{1}), componentsIn(rows, Column{2})});
  }
  return times;
}

} // namespace

ReminderFile::ReminderFile(const ReminderPaths& paths, KeyPlace placeOfNewKey, Instant now)
    : opened_(paths, placeOfNewKey, now), lastNumber_(opened_.queue().read(highestNumber)) {}

std::vector<ReminderApplication> ReminderFile::applications() {
  return opened_.queue().read([](Connection& connection) {
    std::vector<ReminderApplication> applications;
    auto rows = connection.query("SELECT number, identifier, display_name, status FROM application ORDER BY number");
    while (rows.next()) {
      applications.push_back({.number = rows.integer(Column{0}),
                              .identifier = std::string{rows.text(Column{1})},
                              .displayName = std::string{rows.text(Column{2})},
                              .status = statusOf(rows.text(Column{3}))});
    }
    return applications;
  });
}

std::int64_t ReminderFile::keep(const std::string& identifier, const std::string& displayName,
                                AuthorizationStatus status) {
  return opened_.queue().write([&](Connection& connection) {
    return connection
        .fetchOptionalInteger(R"sql(
INSERT INTO application (identifier, display_name, status)
VALUES (?, ?, ?)
ON CONFLICT (identifier) DO UPDATE SET display_name = excluded.display_name, status = excluded.status
RETURNING number
)sql",
                              identifier, displayName, wordFor(status))
        .value_or(0);
  });
}

std::optional<std::string> ReminderFile::setting(std::string_view name) {
  return opened_.queue().read([&](Connection& connection) {
    return connection.fetchOptionalText("SELECT value FROM setting WHERE name = ?", name);
  });
}

void ReminderFile::setSetting(std::string_view name, std::string_view value) {
  opened_.queue().write([&](Connection& connection) {
    connection.execute(
        "INSERT INTO setting (name, value) VALUES (?, ?) ON CONFLICT (name) DO UPDATE SET value = excluded.value", name,
        value);
  });
}

TitleDisclosure ReminderFile::titles() {
  return setting(titlesSetting) == generalTitles ? TitleDisclosure::general : TitleDisclosure::said;
}

void ReminderFile::setTitles(TitleDisclosure titles) {
  setSetting(titlesSetting, titles == TitleDisclosure::general ? generalTitles : "said");
}

bool ReminderFile::refreshing() {
  return setting(refreshingSetting) != off;
}

void ReminderFile::setRefreshing(bool refreshing) {
  setSetting(refreshingSetting, refreshing ? "on" : off);
}

std::vector<PendingTime> ReminderFile::pendingTimes() {
  return opened_.queue().read([](Connection& connection) {
    std::vector<PendingTime> times;
    auto rows = connection.query(R"sql(
SELECT application, number, year, month, day, hour, minute, second
FROM reminder
WHERE presentation IS NULL
)sql");
    while (rows.next()) {
      times.push_back({rows.integer(Column{0}), rows.integer(Column{1}), componentsIn(rows, Column{2})});
    }
    return times;
  });
}

ReminderFile::Added ReminderFile::add(std::int64_t application, const NotificationRequest& request) {
  const auto userInfo = textOf(request.content().userInfo());
  const auto& date = request.trigger().components();
  const auto number = lastNumber_ + 1;
  const auto replaced = opened_.queue().write([&](Connection& connection) {
    const auto former = connection.fetchOptionalInteger(
        "DELETE FROM reminder WHERE application = ? AND identifier = ? AND presentation IS NULL RETURNING number",
        application, request.identifier());
    connection.execute(R"sql(
INSERT INTO reminder (number, application, identifier, title, user_info, year, month, day, hour, minute, second)
VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)
)sql",
                       number, application, request.identifier(), request.content().title(), userInfo, date.year(),
                       date.month(), date.day(), date.hour(), date.minute(), date.second());
    return former;
  });
  lastNumber_ = number;
  return {.number = number, .replaced = replaced};
}

bool ReminderFile::isPending(std::int64_t application, const std::string& identifier) {
  return opened_.queue().read([&](Connection& connection) {
    return connection
        .fetchOptionalInteger(
            "SELECT 1 FROM reminder WHERE application = ? AND identifier = ? AND presentation IS NULL", application,
            identifier)
        .has_value();
  });
}

std::optional<NotificationRequest> ReminderFile::pendingRequest(std::int64_t number) {
  return opened_.queue().read([&](Connection& connection) {
    auto requests = requestsIn(connection.query(R"sql(
SELECT identifier, title, user_info, year, month, day, hour, minute, second
FROM reminder
WHERE number = ? AND presentation IS NULL
)sql",
                                                number));
    return requests.empty() ? std::nullopt : std::optional{std::move(requests.front())};
  });
}

std::vector<NotificationRequest> ReminderFile::pending(std::int64_t application) {
  return opened_.queue().read([&](Connection& connection) {
    // One that is on its way and was added again meanwhile is pending as what was added.
    return requestsIn(connection.query(R"sql(
SELECT identifier, title, user_info, year, month, day, hour, minute, second
FROM reminder
WHERE application = ?1 AND presentation IS NULL
UNION ALL
SELECT identifier, title, user_info, year, month, day, hour, minute, second
FROM reminder shown
WHERE application = ?1
  AND presentation IN (SELECT number FROM presentation WHERE state = 'presenting')
  AND NOT EXISTS (
    SELECT 1
    FROM reminder added
    WHERE added.presentation IS NULL
      AND added.application = shown.application
      AND added.identifier = shown.identifier)
ORDER BY identifier
)sql",
                                       application));
  });
}

std::vector<Notification> ReminderFile::delivered(std::int64_t application) {
  return opened_.queue().read([&](Connection& connection) {
    std::vector<Notification> notifications;
    auto rows = connection.query(R"sql(
SELECT identifier, title, user_info, year, month, day, hour, minute, second, presentation.at
FROM reminder
JOIN presentation ON presentation.number = reminder.presentation
WHERE reminder.application = ? AND presentation.state = 'delivered'
ORDER BY presentation.at, presentation.number, reminder.number
)sql",
                                 application);
    while (rows.next()) {
      notifications.emplace_back(instantOf(rows.integer(Column{9})), requestIn(rows));
    }
    return notifications;
  });
}

std::vector<std::int64_t> ReminderFile::removePending(std::int64_t application,
                                                      std::span<const std::string> identifiers) {
  return opened_.queue().write([&](Connection& connection) {
    std::vector<std::int64_t> numbers;
    RepeatedStatement removal(
        connection,
        "DELETE FROM reminder WHERE application = ? AND identifier = ? AND presentation IS NULL RETURNING number");
    for (const auto& identifier : identifiers) {
      auto& rows = removal.query(application, std::string_view{identifier});
      while (rows.next()) {
        numbers.push_back(rows.integer(Column{0}));
      }
    }
    // Whoever shows them finds them gone.
    deleteShown(connection, application, identifiers, "presenting");
    return numbers;
  });
}

void ReminderFile::removePending(std::int64_t number) {
  opened_.queue().write([&](Connection& connection) {
    connection.execute("DELETE FROM reminder WHERE number = ? AND presentation IS NULL", number);
  });
}

LeftPopups ReminderFile::removeDelivered(std::int64_t application, std::span<const std::string> identifiers) {
  return opened_.queue().write([&](Connection& connection) {
    return leftOf(connection, deleteShown(connection, application, identifiers, "delivered"));
  });
}

BegunPresentation ReminderFile::beginPresenting(std::int64_t application, PresentationKind kind,
                                                std::span<const std::int64_t> numbers, Instant now) {
  return opened_.queue().write([&](Connection& connection) {
    BegunPresentation begun;
    const auto number = insertPresentation(connection, application, kind, now);
    begun.left = leftOf(connection, moveInto(connection, number, numbers));
    if (kind == PresentationKind::single && !begun.left.toWithdraw.empty()) {
      begun.takesPlaceOf = std::move(begun.left.toWithdraw.front());
      begun.left.toWithdraw.clear();
    }
    begun.presentation = Presentation{.number = number,
                                      .application = application,
                                      .kind = kind,
                                      .popup = std::nullopt,
                                      .reminders = remindersOf(connection, number)};
    return begun;
  });
}

std::vector<std::int64_t> ReminderFile::interrupted() {
  return opened_.queue().read([](Connection& connection) {
    return numbersIn(connection.query("SELECT number FROM presentation WHERE state = 'presenting' ORDER BY number"));
  });
}

std::vector<std::int64_t> ReminderFile::standing() {
  return opened_.queue().read([](Connection& connection) {
    return numbersIn(
        connection.query("SELECT number FROM presentation WHERE state = 'delivered' AND popup IS NOT NULL"));
  });
}

std::optional<Presentation> ReminderFile::presentation(std::int64_t number) {
  return opened_.queue().read([&](Connection& connection) {
    auto presentation = presentationNumbered(connection, number);
    return presentation && presentation->reminders.empty() ? std::nullopt : presentation;
  });
}

std::optional<Presentation> ReminderFile::presentationOf(const ShownPopup& popup) {
  return opened_.queue().read([&](Connection& connection) {
    const auto number = connection.fetchOptionalInteger(
        "SELECT number FROM presentation WHERE popup = ? AND service = ?", popup.number, popup.service);
    return number ? presentationNumbered(connection, *number) : std::nullopt;
  });
}

std::size_t ReminderFile::deliver(std::int64_t presentation, const std::optional<ShownPopup>& popup) {
  return opened_.queue().write([&](Connection& connection) {
    const auto left =
        connection.fetchOptionalInteger("SELECT count(*) FROM reminder WHERE presentation = ?", presentation);
    if (left.value_or(0) == 0) {
      deletePresentation(connection, presentation);
      return std::size_t{0};
    }
    givePopup(connection, presentation, popup);
    return static_cast<std::size_t>(*left);
  });
}

std::vector<PendingTime> ReminderFile::giveBack(std::int64_t presentation) {
  return opened_.queue().write([&](Connection& connection) {
    auto times = makePending(connection, presentation);
    deletePresentation(connection, presentation);
    return times;
  });
}

std::vector<PendingTime> ReminderFile::postpone(std::int64_t presentation, const CalendarComponents& date) {
  return opened_.queue().write([&](Connection& connection) {
    connection.execute(R"sql(
UPDATE reminder
SET year = ?, month = ?, day = ?, hour = ?, minute = ?, second = ?
WHERE presentation = ?
)sql",
                       date.year(), date.month(), date.day(), date.hour(), date.minute(), date.second(), presentation);
    auto times = makePending(connection, presentation);
    deletePresentation(connection, presentation);
    return times;
  });
}

void ReminderFile::forgetPopup(const ShownPopup& popup) {
  opened_.queue().write([&](Connection& connection) {
    connection.execute("UPDATE presentation SET service = NULL, popup = NULL WHERE popup = ? AND service = ?",
                       popup.number, popup.service);
  });
}

} // namespace orvan
