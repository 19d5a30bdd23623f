#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "OrvanPlatform/notification_center/notification_request.h"
#include "OrvanPlatform/notification_center/notification_settings.h"
#include "application/agent/reminders/presenter.h"
#include "application/agent/reminders/reminder_file_opening.h"

namespace orvan {

/// A program that has reminders shown, and what the user decided about it.
struct ReminderApplication {
  std::int64_t number = 0;
  std::string identifier;
  std::string displayName;
  AuthorizationStatus status = AuthorizationStatus::notDetermined;
};

/// When a pending request is due.
struct PendingTime {
  std::int64_t application = 0;
  std::int64_t number = 0;
  CalendarComponents components;
};

enum class PresentationKind {
  single,
  /// Many that came due at once, in one popup.
  group,
};

/// What takes one popup.
struct Presentation {
  std::int64_t number = 0;
  std::int64_t application = 0;
  PresentationKind kind = PresentationKind::single;
  /// None where no popup is known to stand. Its service may have gone since.
  std::optional<ShownPopup> popup;
  /// The reminders in it; those that were withdrawn meanwhile are not among them.
  std::vector<NotificationRequest> reminders;
};

/// Popups that say more than there is after reminders left them.
struct LeftPopups {
  /// Nothing is left of what they stand for.
  std::vector<ShownPopup> toWithdraw;
  /// Presentations of kind group that stand for fewer now.
  std::vector<std::int64_t> toShowAnew;
};

/// A presentation as it begins, and what its reminders leave behind: those that were shown before leave their former
/// popup.
struct BegunPresentation {
  Presentation presentation;
  /// The popup that a single reminder had, whose place it takes.
  std::optional<ShownPopup> takesPlaceOf;
  LeftPopups left;
};

enum class TitleDisclosure {
  /// Popups say what the user said.
  said,
  /// Popups say only that there is something.
  general,
};

/// The reminders of all applications, in an encrypted file of their own. A request is pending, then in a presentation
/// that is under way, then delivered. Each operation that changes something is one transaction, on disk when it
/// returns, and throws StoreError when it did not come to be.
///
/// Used by one thread at a time. Nothing is kept in memory but the pages that SQLite keeps.
class ReminderFile {
 public:
  /// Opens or makes it, as OpenedReminderFile does.
  ReminderFile(const ReminderPaths& paths, KeyPlace placeOfNewKey, Instant now);

  ReminderFileOrigin origin() const noexcept { return opened_.origin(); }

  std::vector<ReminderApplication> applications();
  /// Keeps it under its identifier, for the first time or anew. Returns its number.
  std::int64_t keep(const std::string& identifier, const std::string& displayName, AuthorizationStatus status);

  TitleDisclosure titles();
  void setTitles(TitleDisclosure titles);
  bool refreshing();
  void setRefreshing(bool refreshing);

  /// When each pending request is due, in no order.
  std::vector<PendingTime> pendingTimes();
  /// Returns its number, and that of the pending one with the identifier whose place it took. What is shown stays.
  struct Added {
    std::int64_t number = 0;
    std::optional<std::int64_t> replaced;
  };
  Added add(std::int64_t application, const NotificationRequest& request);
  bool isPending(std::int64_t application, const std::string& identifier);
  /// Nothing when it is pending no more.
  std::optional<NotificationRequest> pendingRequest(std::int64_t number);
  /// What is pending or on its way to be shown, in the order of the identifiers.
  std::vector<NotificationRequest> pending(std::int64_t application);
  /// In the order in which they were delivered.
  std::vector<Notification> delivered(std::int64_t application);

  /// The numbers of those that were pending. Those that were on their way are removed too.
  std::vector<std::int64_t> removePending(std::int64_t application, std::span<const std::string> identifiers);
  void removePending(std::int64_t number);
  LeftPopups removeDelivered(std::int64_t application, std::span<const std::string> identifiers);

  /// Puts pending requests into a presentation that is under way as of `now`; they take the place of delivered ones
  /// with their identifiers.
  BegunPresentation beginPresenting(std::int64_t application, PresentationKind kind,
                                    std::span<const std::int64_t> numbers, Instant now);
  /// Those that are under way: after a start, those that the end of the program interrupted.
  std::vector<std::int64_t> interrupted();
  /// Those whose popup stands there, as far as is known.
  std::vector<std::int64_t> standing();
  /// Nothing when nothing is left of it.
  std::optional<Presentation> presentation(std::int64_t number);
  /// What the popup stands for, when it is one of these.
  std::optional<Presentation> presentationOf(const ShownPopup& popup);
  /// Makes it delivered, with the popup that it has, or none that is known. Returns how many of its reminders are left;
  /// with none, it is gone.
  std::size_t deliver(std::int64_t presentation, const std::optional<ShownPopup>& popup);
  /// Its reminders are pending again, unless one with the identifier was added meanwhile; it is gone.
  std::vector<PendingTime> giveBack(std::int64_t presentation);
  /// The same with another time.
  std::vector<PendingTime> postpone(std::int64_t presentation, const CalendarComponents& components);
  void forgetPopup(const ShownPopup& popup);

 private:
  void setSetting(std::string_view name, std::string_view value);
  std::optional<std::string> setting(std::string_view name);

  OpenedReminderFile opened_;
  std::int64_t lastNumber_ = 0;
};

} // namespace orvan
