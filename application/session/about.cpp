#include "application/session/about.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "OrvanSpineCore/source_eligibility.h"

namespace orvan {
namespace {

using Kind = AttentionWhyNowItem::Kind;
using Reference = AttentionWhyNowEvidenceReference;
using Policy = SourceEligibility::Policy;

std::optional<std::string> textUnlessEmpty(const Query& row, Column column) {
  const auto text = row.optionalText(column);
  return text && !text->empty() ? std::optional<std::string>{*text} : std::nullopt;
}

/// A mail without a Message-ID is kept under a name that no mail program knows. Such a name has no "@", nor has
/// anything that a mail program could be asked for.
std::optional<std::string> messageIDIn(const Query& row, Column column) {
  auto text = textUnlessEmpty(row, column);
  return text && text->contains('@') ? std::move(text) : std::nullopt;
}

/// A mail or a meeting, and when it was.
struct Occasion {
  std::string interactionID;
  std::string occurredAt;
  About about;
};

About aboutMail(const Query& row) {
  About about;
  about.threadID = textUnlessEmpty(row, row.column("thread_id"));
  about.subject = textUnlessEmpty(row, row.column("subject"));
  about.messageID = messageIDIn(row, row.column("message_id"));
  return about;
}

About aboutMeeting(const Query& row) {
  About about;
  about.threadID = textUnlessEmpty(row, row.column("thread_id"));
  about.title = textUnlessEmpty(row, row.column("subject"));
  about.startsAt = parseInternetDateTime(row.text(row.column("occurred_at")));
  about.isAllDay = row.integer(row.column("is_all_day")) != 0;
  about.place = textUnlessEmpty(row, row.column("location"));
  return about;
}

/// Nothing when the row is gone or may not be shown.
std::optional<Occasion> occasion(const std::string& personKey, std::string_view interactionID, Connection& connection) {
  static const std::string untilEligibility = R"sql(
SELECT i.thread_id, i.kind, i.occurred_at, title.subject, mail.message_id, meeting.location, meeting.is_all_day
FROM (SELECT ?1 AS person_id) asked
JOIN interaction i ON i.id = ?2
LEFT JOIN thread_text title ON title.thread_id = i.thread_id
LEFT JOIN message_text mail ON mail.interaction_id = i.id
LEFT JOIN meeting_text meeting ON meeting.interaction_id = i.id
WHERE )sql";
  auto rows = connection.query(
      untilEligibility + SourceEligibility::interactionPredicateSQL(Policy::showable, "i.id", "i.thread_id",
                                                                    "i.source_event_id", "asked.person_id", connection),
      personKey, interactionID);
  if (!rows.next()) {
    return std::nullopt;
  }
  const bool isMeeting = rows.text(rows.column("kind")) == "meeting";
  return Occasion{std::string{interactionID}, std::string{rows.text(rows.column("occurred_at"))},
                  isMeeting ? aboutMeeting(rows) : aboutMail(rows)};
}

/// What was claimed of the person, and the mail that the claim was read from.
struct Claim {
  std::optional<std::string> interactionID;
  std::optional<std::string> question;
};

std::optional<Claim> claimBehind(const std::string& personKey, std::string_view claimEvidenceID,
                                 Connection& connection) {
  static const std::string untilEligibility = R"sql(
SELECT i.id, CASE WHEN c.kind = 'asked_question' THEN said.statement END AS question
FROM claim_evidence proof
JOIN claim c ON c.id = proof.claim_id AND c.person_id = ?1
LEFT JOIN claim_text said ON said.claim_id = c.id
LEFT JOIN interaction i ON i.id = (
  SELECT first.id FROM interaction first
  WHERE first.source_event_id = proof.source_event_id
  ORDER BY first.id LIMIT 1)
WHERE proof.id = ?2 AND )sql";
  auto rows = connection.query(
      untilEligibility + SourceEligibility::interactionPredicateSQL(Policy::showable, "i.id", "i.thread_id",
                                                                    "proof.source_event_id", "c.person_id", connection),
      personKey, claimEvidenceID);
  if (!rows.next()) {
    return std::nullopt;
  }
  return Claim{textUnlessEmpty(rows, rows.column("id")), textUnlessEmpty(rows, rows.column("question"))};
}

/// Reads what one person's references name.
class AboutReader {
 public:
  AboutReader(const std::string& personKey, Connection& connection) : personKey_(personKey), connection_(connection) {}

  About read(std::span<const Reference> references) {
    for (const auto& reference : references) {
      if (reference.kind() == Reference::Kind::interaction) {
        keepLater(reference.identifier());
      } else if (reference.kind() == Reference::Kind::claimEvidence) {
        readClaim(reference.identifier());
      }
    }
    auto about = latest_ ? latest_->about : About{};
    about.question = std::move(question_);
    return about;
  }

  /// Of what was read.
  std::optional<std::string> interactionID() const {
    return latest_ ? std::optional{latest_->interactionID} : std::nullopt;
  }

 private:
  void keepLater(std::string_view interactionID) {
    auto found = occasion(personKey_, interactionID, connection_);
    if (found && (!latest_ || latest_->occurredAt < found->occurredAt)) {
      latest_ = std::move(found);
    }
  }

  void readClaim(std::string_view claimEvidenceID) {
    if (auto claim = claimBehind(personKey_, claimEvidenceID, connection_)) {
      question_ = std::move(claim->question);
      if (claim->interactionID) {
        keepLater(*claim->interactionID);
      }
    }
  }

  const std::string& personKey_;
  Connection& connection_;
  std::optional<Occasion> latest_;
  std::optional<std::string> question_;
};

std::vector<Reference> referencesOf(const OpenThreadEvidence& thread) {
  return {Reference::interaction(thread.lastInboundInteractionID())};
}

std::vector<Reference> referencesOf(const UpcomingInteractionEvidence& meeting) {
  return {Reference::interaction(meeting.interactionID())};
}

std::vector<Reference> referencesOf(const ChangedContextEvidence& context) {
  std::vector<Reference> references;
  for (const auto& id : context.resumedInteractionIDs()) {
    references.push_back(Reference::interaction(id));
  }
  return references;
}

std::vector<Reference> referencesOf(const CommitmentEvidence& commitment) {
  const auto& evidence = commitment.evidenceRef();
  return evidence ? std::vector{Reference::claimEvidence(*evidence)} : std::vector<Reference>{};
}

} // namespace

About aboutOf(const std::string& personKey, std::span<const Reference> references, Connection& connection) {
  return AboutReader(personKey, connection).read(references);
}

std::optional<std::string> interactionBehind(const std::string& personKey, std::span<const Reference> references,
                                             Connection& connection) {
  AboutReader reader(personKey, connection);
  reader.read(references);
  return reader.interactionID();
}

About aboutOf(const ListedFollowUp& followUp, Connection& connection) {
  if (!followUp.interactionID) {
    return {};
  }
  const std::vector references{Reference::interaction(*followUp.interactionID)};
  return aboutOf(followUp.personKey, references, connection);
}

Kind kindOf(const Matter& matter) noexcept {
  constexpr Kind kinds[] = {Kind::openThread, Kind::upcomingInteraction, Kind::changedContext, Kind::commitment};
  return kinds[matter.evidence.index()];
}

std::vector<Matter> mattersOf(const AttentionEvidenceBundle& bundle, Connection& connection) {
  std::vector<Matter> matters;
  const auto add = [&](const auto& evidence) {
    matters.push_back({evidence, aboutOf(bundle.personKey(), referencesOf(evidence), connection)});
  };
  std::ranges::for_each(bundle.openThreads(), add);
  std::ranges::for_each(bundle.upcomingInteractions(), add);
  if (const auto& context = bundle.changedContext()) {
    add(*context);
  }
  std::ranges::for_each(bundle.commitments(), add);
  return matters;
}

} // namespace orvan
