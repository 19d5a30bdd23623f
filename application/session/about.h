#pragma once

#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "OrvanRelationshipAttention/why_now/attention_why_now_item.h"
#include "OrvanStore/connection.h"
#include "application/session/listed_follow_up.h"

namespace orvan {

/// What a reason is about, as far as the rows tell that it rests on: a mail or a meeting, and a question. Of several
/// mails and meetings it is the latest. Absent is what the rows do not tell, what is empty, and all of what was deleted
/// or is kept from being shown. The texts are the user's data and those of others: they may hold any character.
struct About {
  std::optional<std::string> threadID = {};
  /// Of a mail: what its thread is about, and what a mail program finds it by, without angle brackets. That is known of
  /// mail to the user alone, and only when its sender wrote one.
  std::optional<std::string> subject = {};
  std::optional<std::string> messageID = {};
  /// In the words of who asked.
  std::optional<std::string> question = {};
  /// Of a meeting. One without a time of day starts at midnight, in the time zone that the user was in at its import.
  std::optional<std::string> title = {};
  std::optional<Instant> startsAt = {};
  bool isAllDay = false;
  std::optional<std::string> place = {};

  bool operator==(const About&) const = default;
};

/// What the rows tell that a reason to get in touch with that person rests on. Runs within the caller's read; throws
/// StoreError.
About aboutOf(const std::string& personKey, std::span<const AttentionWhyNowEvidenceReference> references,
              Connection& connection);

/// Which mail or meeting that is about; nothing where it is about none.
std::optional<std::string> interactionBehind(const std::string& personKey,
                                             std::span<const AttentionWhyNowEvidenceReference> references,
                                             Connection& connection);

/// The same of the mail or meeting that a follow-up is about.
About aboutOf(const ListedFollowUp& followUp, Connection& connection);

/// One piece of the evidence on a person, and what it is about.
struct Matter {
  std::variant<OpenThreadEvidence, UpcomingInteractionEvidence, ChangedContextEvidence, CommitmentEvidence> evidence;
  About about;
};

/// Which kind of reason the evidence gives.
AttentionWhyNowItem::Kind kindOf(const Matter& matter) noexcept;

/// All the evidence of a bundle, kind by kind in the order of the variant, each kind in the bundle's order. Runs within
/// the caller's read; throws StoreError.
std::vector<Matter> mattersOf(const AttentionEvidenceBundle& bundle, Connection& connection);

} // namespace orvan
