#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "OrvanObservatory/projection_reader.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/ledger/meeting_importer.h"
#include "application/session/catch_up_list.h"

namespace orvan {

/// Writes what a command found to standard output, for people: aligned, in colour only on a terminal. Characters in the
/// user's data that a terminal would obey are replaced.
class HumanOutput {
 public:
  HumanOutput();

  void people(const std::vector<ProjectedPerson>& people) const;
  void bundle(const AttentionEvidenceBundle& bundle, std::string_view displayName) const;
  void whyNow(const AttentionWhyNowItem& item) const;
  /// The first `shown` rows, and how many more there are.
  void catchUpList(const CatchUpList& list, std::size_t shown, Explanation explanation, Instant asOf) const;
  void record(const AttentionItemDispositionRecord& record) const;
  void mailReport(std::string_view source, const MailReport& report) const;
  void meetingReport(std::string_view source, const MeetingReport& report) const;
  void line(std::string_view text) const;
  void check(bool isFine, std::string_view name, std::string_view detail) const;

 private:
  void moreThan(std::size_t shown, const CatchUpList& list) const;
  std::string bold(std::string_view text) const;
  std::string faint(std::string_view text) const;
  void item(const AttentionCatchUpItem& item) const;
  void notShown(const NotShown& person) const;

  bool usesColour_;
};

} // namespace orvan
