#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanPlatform/clock.h"
#include "OrvanPlatform/log.h"
#include "OrvanPlatform/work_executor.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up_item.h"
#include "OrvanRelationshipAttention/disposition_store/follow_up_disposition_applying.h"
#include "OrvanRelationshipAttention/follow_up/authorization_recheck.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_notification_scheduling.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_refusal.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_registration_tracker.h"
#include "OrvanSpineCore/follow_up_effecting.h"
#include "OrvanStore/database_pool.h"

namespace orvan {

namespace internal {
struct FollowUpParts;
}

/// The follow-ups of the store, and the reminders that belong to them.
///
/// A follow-up is the user's commitment to get back to a person about a source object at a due time. Its row is
/// mirrored by an open loop; while it is scheduled it has an attention candidate, so that it can surface in the
/// catch-up list, and it is to have one reminder in the notification centre.
///
/// A value: copies share the store, the centre and everything that waits for authorization. Copies may be used from any
/// thread at the same time. Operations with a connection run on the caller's thread in the caller's transaction;
/// followUp() and reprojectCandidates(personID) block the calling thread; asynchronous operations run, and read the
/// store, on the executor given at construction and resume the caller on its own. A task may outlive the scheduler it
/// came from: it keeps what it needs.
///
/// A registration waits for the user for up to the registration timeout of AuthorizationRecheck. One that could not be
/// completed starts a watcher in the background, which registers what is missing once notifications are allowed. Both
/// keep the store and the executor's work alive, the watcher for up to its window: end them with
/// stopAuthorizationRecovery() or stopAuthorizationRecoveryAndDrain() before the executor's event loop goes.
class FollowUpScheduler final : public FollowUpEffecting {
 public:
  using AuthorizationRecheck = orvan::AuthorizationRecheck;

  /// A due time up to this far in the past is still accepted.
  static constexpr std::chrono::seconds pastTolerance{60};
  /// What a reminder says when nothing better is known.
  static constexpr std::string_view notificationTitle = "Follow-up reminder";

  FollowUpScheduler(std::shared_ptr<DatabasePool> pool, std::shared_ptr<FollowUpNotificationScheduling> notifications,
                    std::shared_ptr<FollowUpDispositionApplying> dispositions,
                    AuthorizationRecheck authorizationRecheck, Executor executor = sharedWorkExecutor(),
                    std::shared_ptr<const Clock> clock = std::make_shared<SystemClock>(),
                    std::shared_ptr<LogSink> log = systemLogSink());

  /// The key of the one follow-up of a pair, and of its reminder: "3:abc|2:p1". Lengths are UTF-8 bytes.
  static std::string key(std::string_view sourceObjectID, std::string_view personID);
  static std::string openLoopID(std::string_view sourceObjectID, std::string_view personID);
  static std::string openLoopID(std::string_view followUpID);
  /// Whether an identifier in the notification centre is a follow-up reminder's even without its mark.
  static bool isLegacyNotificationKey(std::string_view identifier);
  /// The catch-up item of a follow-up, without a name to show; absent when the detected-at text is no usable timestamp
  /// or an identifier is unusable.
  static std::optional<AttentionCatchUpItem> attentionItem(const std::string& personID, const std::string& openLoopID,
                                                           const std::string& detectedAt);
  /// The same item, under the same key, as a list shows it: with the person's name, and its date in the form of the
  /// user's locale, as other reasons have theirs.
  static std::optional<AttentionCatchUpItem> attentionItem(const std::string& personID, const std::string& displayName,
                                                           const std::string& openLoopID,
                                                           const std::string& detectedAt);
  static std::optional<FollowUpRefusal> followUpRefusal(std::string_view title, Instant dueAt, Instant now);

  /// Deletes the candidates that rest on an open loop, except those the user has decided about.
  static void retractCandidate(Connection& connection, const std::string& openLoopID);
  static void reprojectCandidatesCore(Connection& connection, const std::string& personID);
  /// Whether a reminder with this identifier, a follow-up's id or its pair's key, still belongs to a live follow-up.
  static bool notificationMayPresent(Connection& connection, const std::string& followUpID);

  std::optional<EffectReasonToken> refusal(const std::string& title, Instant dueAt, Instant now) const override;
  std::optional<PersistedFollowUp> upsert(Connection& connection, const std::string& sourceObjectID,
                                          const std::string& personID, Instant dueAt, const Uuid& operationID,
                                          Instant now) const override;
  std::vector<PersistedFollowUp> rows(Connection& connection, const std::string& sourceObjectID) const override;
  std::optional<PersistedFollowUp> complete(Connection& connection, const std::string& sourceObjectID,
                                            const std::string& personID, Instant now) const override;
  void restore(Connection& connection, const std::string& sourceObjectID, const std::string& personID,
               const std::optional<PersistedFollowUp>& prior) const override;
  void reprojectCandidates(Connection& connection, const std::string& personID) const override;
  /// The reminder shows what the user said when capturing the source object, never `title`.
  Task<std::optional<EffectReasonToken>> registerReminder(std::string sourceObjectID, std::string personID,
                                                          std::string title, Instant dueAt) const override;
  Task<void> cancelReminder(std::string sourceObjectID, std::string personID) const override;
  Task<std::optional<EffectReasonToken>> resolveAttention(std::string sourceObjectID, std::string personID,
                                                          Instant now) const override;
  std::optional<PersistedFollowUp> followUp(const std::string& sourceObjectID,
                                            const std::string& personID) const override;

  /// Throws FollowUpScopeMismatch before anything is written.
  std::optional<PersistedFollowUp> upsert(Connection& connection, const std::string& followUpID,
                                          const std::string& sourceObjectID, const std::string& personID, Instant dueAt,
                                          const Uuid& operationID, Instant now) const override;
  std::optional<PersistedFollowUp> complete(Connection& connection, const std::string& followUpID,
                                            Instant now) const override;
  void restore(Connection& connection, const std::string& followUpID,
               const std::optional<PersistedFollowUp>& prior) const override;
  bool reopen(Connection& connection, const std::string& followUpID) const override;
  std::optional<PersistedFollowUp> cancel(Connection& connection, const std::string& followUpID) const override;
  /// The reminder is due when the stored row says, whatever `dueAt`, and shows what the user said when capturing the
  /// source object, never `title`.
  Task<std::optional<EffectReasonToken>> registerReminder(std::string followUpID, std::string title,
                                                          Instant dueAt) const override;
  Task<void> cancelReminder(std::string followUpID) const override;
  Task<std::optional<EffectReasonToken>> resolveAttention(std::string followUpID, Instant now) const override;
  std::optional<PersistedFollowUp> followUp(const std::string& id) const override;
  std::optional<EffectReasonToken> refusal(Connection& connection, const std::string& followUpID,
                                           const std::string& sourceObjectID,
                                           const std::string& personID) const override;

  /// The same as with a connection, in a write transaction of its own. Throws StoreError.
  void reprojectCandidates(const std::string& personID) const;

  /// Brings the notification centre in line with the live follow-ups: withdraws what belongs to none, registers what is
  /// missing, and settles what was owed for it. Returns at once while another pass runs, and after stopping.
  Task<void> reconcileReminders() const;

  /// For good, on every copy: ends the watcher's sleep, answers everyone who waits for authorization, and lets a
  /// running pass finish only the item in hand.
  void stopAuthorizationRecovery() const;
  /// The same, and returns once a running pass has ended.
  Task<void> stopAuthorizationRecoveryAndDrain() const;

 private:
  std::shared_ptr<const internal::FollowUpParts> parts_;
};

} // namespace orvan
