#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"

namespace orvan {

namespace internal {
class AttentionCatchUpItemMaker;
}

/// A person to consider for the list.
class AttentionCatchUpPerson {
 public:
  AttentionCatchUpPerson(std::string personKey, std::string displayName, AttentionEvidenceBundle evidence)
      : personKey_(std::move(personKey)), displayName_(std::move(displayName)), evidence_(std::move(evidence)) {}

  const std::string& personKey() const noexcept { return personKey_; }
  /// May have white space around it; the list shows it without.
  const std::string& displayName() const noexcept { return displayName_; }
  const AttentionEvidenceBundle& evidence() const noexcept { return evidence_; }

  bool operator==(const AttentionCatchUpPerson&) const = default;

 private:
  std::string personKey_;
  std::string displayName_;
  AttentionEvidenceBundle evidence_;
};

/// Which screen of a person an item opens: the person, or the preparation for something that is coming.
enum class AttentionRouteKind { personFocus, personPrep };

/// The kind's case name: "personFocus".
std::string_view caseName(AttentionRouteKind kind) noexcept;

/// What the application is asked for when the user opens an item.
class AttentionRouteRequest {
 public:
  AttentionRouteRequest(std::string itemKey, std::string personKey,
                        std::vector<AttentionWhyNowEvidenceReference> evidenceReferences, AttentionRouteKind kind)
      : itemKey_(std::move(itemKey)),
        personKey_(std::move(personKey)),
        evidenceReferences_(std::move(evidenceReferences)),
        kind_(kind) {}

  const std::string& itemKey() const noexcept { return itemKey_; }
  const std::string& personKey() const noexcept { return personKey_; }
  const std::vector<AttentionWhyNowEvidenceReference>& evidenceReferences() const noexcept {
    return evidenceReferences_;
  }
  AttentionRouteKind kind() const noexcept { return kind_; }

  bool operator==(const AttentionRouteRequest&) const = default;

 private:
  std::string itemKey_;
  std::string personKey_;
  std::vector<AttentionWhyNowEvidenceReference> evidenceReferences_;
  AttentionRouteKind kind_;
};

/// What the application is asked for when the user snoozes, dismisses or resolves an item.
class AttentionItemActionRequest {
 public:
  AttentionItemActionRequest(std::string itemKey, std::string personKey,
                             std::vector<AttentionWhyNowEvidenceReference> evidenceReferences,
                             AttentionItemAction action)
      : itemKey_(std::move(itemKey)),
        personKey_(std::move(personKey)),
        evidenceReferences_(std::move(evidenceReferences)),
        action_(action) {}

  const std::string& itemKey() const noexcept { return itemKey_; }
  const std::string& personKey() const noexcept { return personKey_; }
  const std::vector<AttentionWhyNowEvidenceReference>& evidenceReferences() const noexcept {
    return evidenceReferences_;
  }
  const AttentionItemAction& action() const noexcept { return action_; }

  bool operator==(const AttentionItemActionRequest&) const = default;

 private:
  std::string itemKey_;
  std::string personKey_;
  std::vector<AttentionWhyNowEvidenceReference> evidenceReferences_;
  AttentionItemAction action_;
};

/// One row of the catch-up list. Made by AttentionCatchUpSelector and by the follow-up projection, never by embedding
/// code. The route request always agrees with the other fields.
class AttentionCatchUpItem {
 public:
  /// The item's identity: the same as long as the person's reason is the same, and another as soon as it changes, so
  /// what the user decided about one reason lapses with it. Plain text of any length.
  const std::string& itemKey() const noexcept { return itemKey_; }
  /// The same as itemKey().
  const std::string& id() const noexcept { return itemKey_; }
  const std::string& personKey() const noexcept { return personKey_; }
  const std::string& displayName() const noexcept { return displayName_; }
  const AttentionWhyNowItem& whyNow() const noexcept { return whyNow_; }
  const AttentionRouteRequest& routeRequest() const noexcept { return routeRequest_; }

  /// The key that the reason of `itemKey`, an item of `personKey`, has when it is another person's, as after two people
  /// turned out to be one; nothing when `itemKey` is no key of an item of theirs.
  static std::optional<std::string> itemKeyFor(std::string_view otherPersonKey, std::string_view itemKey,
                                               std::string_view personKey);

  /// The request to do `action` to this item.
  AttentionItemActionRequest actionRequest(const AttentionItemAction& action) const;

  bool operator==(const AttentionCatchUpItem&) const = default;

 private:
  friend class internal::AttentionCatchUpItemMaker;

  AttentionCatchUpItem(std::string itemKey, std::string personKey, std::string displayName, AttentionWhyNowItem whyNow,
                       AttentionRouteRequest routeRequest)
      : itemKey_(std::move(itemKey)),
        personKey_(std::move(personKey)),
        displayName_(std::move(displayName)),
        whyNow_(std::move(whyNow)),
        routeRequest_(std::move(routeRequest)) {}

  std::string itemKey_;
  std::string personKey_;
  std::string displayName_;
  AttentionWhyNowItem whyNow_;
  AttentionRouteRequest routeRequest_;
};

} // namespace orvan
