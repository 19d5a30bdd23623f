#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "OrvanRelationshipAttention/evidence/values/attention_evidence_bundle.h"
#include "application/import/ledger/card_importer.h"
#include "application/import/ledger/mail_importer.h"
#include "application/import/ledger/meeting_importer.h"
#include "application/session/catch_up_list.h"
#include "application/session/item_details.h"
#include "application/session/people_list.h"
#include "application/session/person_lookup.h"

namespace orvan {

/// Writes what a command found to standard output, for people: aligned, in colour only on a terminal. Characters in the
/// user's data that a terminal would obey are replaced, and in a list a line is cut where the terminal ends.
class HumanOutput {
 public:
  HumanOutput();

  /// The first `shown`, in columns, and how many more there are.
  void people(const std::vector<ListedPerson>& people, std::size_t shown) const;
  /// People to choose among, each with an address.
  void choice(const std::vector<NamedPerson>& people) const;
  /// Whether there is a terminal, where a long list scrolls out of sight.
  bool isTerminal() const noexcept { return columns_.has_value(); }
  /// `matters` are those of the bundle.
  void bundle(const AttentionEvidenceBundle& bundle, std::string_view displayName,
              const std::vector<Matter>& matters) const;
  void whyNow(const AttentionWhyNowItem& item) const;
  /// A follow-up that is due, and what else there is.
  void why(const ListedFollowUp& followUp, const std::optional<AttentionWhyNowItem>& other) const;
  /// The first `shown` rows, and how many more there are.
  void catchUpList(const CatchUpList& list, std::size_t shown, Explanation explanation, Instant asOf) const;
  /// In columns, with what tells each from the others.
  void followUps(const std::vector<ListedFollowUp>& followUps, Instant asOf) const;
  /// One alone, beneath a line that says what was done with it.
  void followUp(const ListedFollowUp& followUp) const;
  void details(const ItemDetails& details) const;
  void record(const AttentionItemDispositionRecord& record) const;
  void mailReport(std::string_view source, const MailReport& report) const;
  void cardReport(std::string_view source, const CardReport& report) const;
  void meetingReport(std::string_view source, const MeetingReport& report) const;
  void line(std::string_view text) const;
  /// One that stands out above others.
  void heading(std::string_view text) const;
  /// One of a list: cut where the terminal ends.
  void row(std::string_view text) const;
  /// A line of a short table without a heading.
  void row(std::string_view name, std::string_view text) const;
  void check(bool isFine, std::string_view name, std::string_view detail) const;

 private:
  void moreThan(std::size_t shown, const CatchUpList& list) const;
  std::string bold(std::string_view text) const;
  std::string faint(std::string_view text) const;
  std::string fitted(std::string_view text) const;
  void item(const AttentionCatchUpItem& item, const std::optional<std::string>& address) const;
  void conversation(const Conversation& conversation) const;
  void notShown(const NotShown& person) const;

  bool usesColour_;
  /// What a line has place for; unlimited where there is no terminal.
  std::optional<std::size_t> columns_;
};

/// "1 mail", "2 mails".
std::string counted(std::int64_t count, std::string_view one, std::string_view many);

} // namespace orvan
