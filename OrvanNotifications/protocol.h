#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "OrvanPlatform/bus/bus_message.h"
#include "OrvanPlatform/notification_center/notification_request.h"
#include "OrvanPlatform/notification_center/notification_settings.h"

/// What the reminder service (orvan-agent) and the programs that use it say to each other over the user's bus.
///
/// Times are microseconds since 1970 in UTC ("x"). A request is "(ssa{sv}(iiiiii))": its identifier, its title, its
/// user info (b, x, d or s), and year, month, day, hour, minute and second of its trigger. A notification is "(x"
/// request ")".
namespace orvan::agent_protocol {

inline constexpr auto serviceName = "org.orvan.Agent";
inline constexpr auto objectPath = "/org/orvan/Agent";

/// Of any program: GetSettings(s) s, RequestAuthorization(ssu) s, Add(ss request), GetPending(s) a request,
/// GetDelivered(s) a notification, RemovePending(s as), RemoveDelivered(s as), StandInFront(sb); signals
/// AuthorizationChanged(ss) and Activated(sss). The first argument is the application.
inline constexpr auto centerInterface = "org.orvan.NotificationCenter1";
/// Of the user's own tools: SetAuthorization(sss), GetState() a{sv}, SetTitles(s), SetRefreshing(b), PresentTest().
inline constexpr auto agentInterface = "org.orvan.Agent1";
/// Of a program that stands in front: WillPresent(s notification) u, the presentation options' raw value.
inline constexpr auto clientPath = "/org/orvan/NotificationCenterClient";
inline constexpr auto clientInterface = "org.orvan.NotificationCenterClient1";

inline constexpr auto requestType = "(ssa{sv}(iiiiii))";
inline constexpr auto notificationType = "(x(ssa{sv}(iiiiii)))";

/// The request is not taken as it is, or there are too many.
inline constexpr auto refusedError = "org.orvan.Error.Refused";
/// The key of the file with the reminders cannot be read now.
inline constexpr auto lockedError = "org.orvan.Error.Locked";
/// The file with the reminders cannot be used.
inline constexpr auto unusableError = "org.orvan.Error.Unusable";
/// No service of the desktop shows notifications.
inline constexpr auto noServiceError = "org.orvan.Error.NoService";
/// The asker is another user's program.
inline constexpr auto notYoursError = "org.orvan.Error.NotYours";

/// The action of an Activated signal that is a click on the notification itself.
inline constexpr auto clickAction = "default";

/// How an authorization status is written.
std::string_view statusWord(AuthorizationStatus status);
/// Absent for a word that is none of the four: it says nothing of whether notifications are allowed.
std::optional<AuthorizationStatus> statusFromWord(std::string_view word);

void writeRequest(BusWriter& writer, const NotificationRequest& request);
/// User info of a type that requests do not have is passed over. Throws Error with BusError::malformed.
NotificationRequest readRequest(BusReader& reader);
void writeNotification(BusWriter& writer, const Notification& notification);
Notification readNotification(BusReader& reader);

} // namespace orvan::agent_protocol
