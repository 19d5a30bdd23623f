#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanRelationshipAttention/why_now/attention_why_now_evidence_reference.h"

namespace orvan {

namespace internal {
class AttentionWhyNowItemMaker;
}

/// The one reason to get back in touch with a person now, worded for display. Made by AttentionWhyNowSelector and by
/// the follow-up projection, never by embedding code. A const object may be read from any thread.
class AttentionWhyNowItem {
 public:
  /// Which kind of reason. When two reasons are equally recent, the kind declared first wins.
  enum class Kind { openThread, changedContext, commitment, upcomingInteraction };

  Kind kind() const noexcept { return kind_; }
  /// When the event behind the reason took place, exactly as the store has it.
  const std::string& definingEventTimestamp() const noexcept { return definingEventTimestamp_; }
  /// One sentence.
  const std::string& headline() const noexcept { return headline_; }
  /// What the reason rests on, in words, in display order. Dates are in the form of the user's locale.
  const std::vector<std::string>& evidenceLines() const noexcept { return evidenceLines_; }
  /// The rows that the reason rests on, by the kind's name and then by identifier, each once.
  const std::vector<AttentionWhyNowEvidenceReference>& evidenceReferences() const noexcept {
    return evidenceReferences_;
  }

  /// Also compares whether the references and the timestamp are usable, which only the library sees.
  bool operator==(const AttentionWhyNowItem&) const = default;

 private:
  friend class internal::AttentionWhyNowItemMaker;

  AttentionWhyNowItem(Kind kind, std::string definingEventTimestamp, std::string headline,
                      std::vector<std::string> evidenceLines,
                      std::vector<AttentionWhyNowEvidenceReference> evidenceReferences, bool hasValidEvidenceReferences,
                      bool hasValidDefiningEventTimestamp)
      : kind_(kind),
        definingEventTimestamp_(std::move(definingEventTimestamp)),
        headline_(std::move(headline)),
        evidenceLines_(std::move(evidenceLines)),
        evidenceReferences_(std::move(evidenceReferences)),
        hasValidEvidenceReferences_(hasValidEvidenceReferences),
        hasValidDefiningEventTimestamp_(hasValidDefiningEventTimestamp) {}

  Kind kind_;
  std::string definingEventTimestamp_;
  std::string headline_;
  std::vector<std::string> evidenceLines_;
  std::vector<AttentionWhyNowEvidenceReference> evidenceReferences_;
  bool hasValidEvidenceReferences_;
  bool hasValidDefiningEventTimestamp_;
};

/// The kind's text form, which is its case name: "openThread".
std::string_view caseName(AttentionWhyNowItem::Kind kind) noexcept;

} // namespace orvan
