#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "OrvanPlatform/instant.h"

namespace orvan {

/// What the user does with a catch-up item.
class AttentionItemAction {
 public:
  enum class Kind { snooze, dismiss, resolve };

  /// Hides the item until `until`.
  static AttentionItemAction snooze(Instant until) noexcept { return {Kind::snooze, until}; }
  /// Hides the item for good.
  static AttentionItemAction dismiss() noexcept { return {Kind::dismiss, std::nullopt}; }
  /// Hides the item for good, because the matter is settled.
  static AttentionItemAction resolve() noexcept { return {Kind::resolve, std::nullopt}; }

  Kind kind() const noexcept { return kind_; }
  /// Present exactly when this is a snooze.
  std::optional<Instant> until() const noexcept { return until_; }

  bool operator==(const AttentionItemAction&) const = default;

 private:
  AttentionItemAction(Kind kind, std::optional<Instant> until) noexcept : kind_(kind), until_(until) {}

  Kind kind_;
  std::optional<Instant> until_;
};

/// Where a catch-up item stands. Only an active item is listed.
class AttentionItemState {
 public:
  enum class Kind { active, snoozed, dismissed, resolved };

  static AttentionItemState active() noexcept { return {Kind::active, std::nullopt}; }
  /// Hidden as long as `until` lies strictly after the moment of evaluation.
  static AttentionItemState snoozed(Instant until) noexcept { return {Kind::snoozed, until}; }
  /// Hidden; no later action changes it.
  static AttentionItemState dismissed() noexcept { return {Kind::dismissed, std::nullopt}; }
  /// Hidden; no later action changes it.
  static AttentionItemState resolved() noexcept { return {Kind::resolved, std::nullopt}; }

  Kind kind() const noexcept { return kind_; }
  /// Present exactly when this is a snooze.
  std::optional<Instant> until() const noexcept { return until_; }

  bool operator==(const AttentionItemState&) const = default;

 private:
  AttentionItemState(Kind kind, std::optional<Instant> until) noexcept : kind_(kind), until_(until) {}

  Kind kind_;
  std::optional<Instant> until_;
};

/// The state's case name: "snoozed".
std::string_view caseName(AttentionItemState::Kind kind) noexcept;

/// What the user decided about the item with one key.
class AttentionItemDispositionRecord {
 public:
  AttentionItemDispositionRecord(std::string itemKey, AttentionItemState state)
      : itemKey_(std::move(itemKey)), state_(state) {}

  const std::string& itemKey() const noexcept { return itemKey_; }
  const AttentionItemState& state() const noexcept { return state_; }

  bool operator==(const AttentionItemDispositionRecord&) const = default;

 private:
  std::string itemKey_;
  AttentionItemState state_;
};

/// How dispositions are read and changed. Never fails.
class AttentionItemDispositionTransition {
 public:
  AttentionItemDispositionTransition() = delete;

  /// The state of the item with `itemKey` at `asOf`. A record of another item counts as none, and no record means
  /// active. A snooze is over exactly at its end.
  static AttentionItemState state(std::string_view itemKey, const std::optional<AttentionItemDispositionRecord>& record,
                                  Instant asOf);

  /// The record after `action` on an item in `state`, which should come from state() at the same `asOf`. A new snooze
  /// replaces a running one, whether it ends earlier or later; one that ends at or before `asOf` changes nothing.
  /// Dismissed and resolved are final.
  static AttentionItemDispositionRecord apply(const AttentionItemAction& action, const AttentionItemState& state,
                                              std::string itemKey, Instant asOf);
};

} // namespace orvan
