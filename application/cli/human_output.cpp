#include "application/cli/human_output.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <span>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"
#include "application/cli/terminal_text.h"
#include "application/session/reason_in_words.h"

namespace orvan {
namespace {

/// The date of a stored timestamp, or the text itself when it is none.
std::string dateOf(std::string_view timestamp) {
  const auto instant = parseInternetDateTime(timestamp);
  return instant ? humanDateText(*instant) : printableText(timestamp);
}

/// The same with the time of day.
std::string momentOf(std::string_view timestamp) {
  const auto instant = parseInternetDateTime(timestamp);
  return instant ? humanMomentText(*instant) : printableText(timestamp);
}

std::string meetingTime(Instant startsAt, bool isAllDay) {
  return isAllDay ? humanDateText(startsAt) + ", all day" : humanMomentText(startsAt);
}

/// "Tea (Café Sol)", or as much of it as is known.
std::string titleAndPlace(const About& about) {
  std::string text = about.title.value_or("");
  if (about.place) {
    text += (text.empty() ? "(" : " (") + *about.place + ")";
  }
  return printableText(text);
}

std::string inQuotes(std::string_view text) {
  return "\"" + std::string{text} + "\"";
}

/// What follows a piece of evidence.
std::string inAWord(const About& about) {
  const auto text = about.question  ? inQuotes(printableText(*about.question))
                    : about.subject ? printableText(*about.subject)
                                    : titleAndPlace(about);
  return text.empty() ? "" : ": " + text;
}

/// A line for each thing that is known.
std::vector<std::string> linesFor(const About& about) {
  std::vector<std::string> lines;
  if (about.question) {
    lines.push_back("They asked: " + inQuotes(printableText(*about.question)));
  }
  if (about.subject) {
    lines.push_back("Subject: " + printableText(*about.subject));
  }
  if (about.startsAt) {
    const auto what = titleAndPlace(about);
    lines.push_back(meetingTime(*about.startsAt, about.isAllDay) + (what.empty() ? "" : ": ") + what);
  }
  return lines;
}

/// "Due Mar 4, 2026, 9:15 AM: Call about the lease"
std::string sentenceFor(const ListedFollowUp& followUp) {
  return "Due " + humanMomentText(followUp.dueAt) + (followUp.said ? ": " + printableText(*followUp.said) : "");
}

/// What stands behind the row's follow-up, a line for each.
std::vector<std::string> linesForOthers(const CatchUpRow& row) {
  std::vector<std::string> lines;
  lines.reserve(row.furtherFollowUps.size() + 1);
  for (const auto& followUp : row.furtherFollowUps) {
    lines.push_back("Also: " + sentenceFor(followUp));
  }
  if (row.otherReason) {
    lines.push_back("Also: " + printableText(reasonInWords(*row.otherReason)));
  }
  return lines;
}

std::string sentenceFor(const OpenThreadEvidence& thread, const About& about) {
  return "Waiting for your reply since " + dateOf(thread.lastInboundOccurredAt()) + inAWord(about);
}

std::string sentenceFor(const UpcomingInteractionEvidence& meeting, const About& about) {
  const auto time = about.startsAt ? meetingTime(*about.startsAt, about.isAllDay) : momentOf(meeting.occurredAt());
  return "Meeting on " + time + inAWord(about);
}

std::string sentenceFor(const ChangedContextEvidence& context, const About& about) {
  return "Back in touch since " + dateOf(context.resumedAt()) + " after quiet since " + dateOf(context.quietSinceAt()) +
         inAWord(about);
}

std::string sentenceFor(const CommitmentEvidence& commitment, const About& about) {
  return "Still open since " + dateOf(commitment.detectedAt()) + " (" + printableText(commitment.kind()) + ")" +
         inAWord(about);
}

std::string sentenceFor(const Matter& matter) {
  return std::visit([&](const auto& evidence) { return sentenceFor(evidence, matter.about); }, matter.evidence);
}

std::string writerOf(const Exchange& exchange) {
  switch (exchange.kind) {
    case Exchange::Kind::sent:
      return "you";
    case Exchange::Kind::meeting:
      return "meeting";
    case Exchange::Kind::received:
      break;
  }
  return printableText(exchange.from.value_or("somebody unknown"));
}

std::string sentenceFor(const NotShown& person) {
  switch (person.reason) {
    case NotShownReason::nothingToTell:
    case NotShownReason::noEvidence:
      return "nothing is waiting";
    case NotShownReason::noValidReason:
      return "what the store holds gives no valid reason";
    case NotShownReason::noName:
      return "there is a reason, but no name to show";
    case NotShownReason::noItemKey:
      return "the reason rests on nothing that can be named";
    case NotShownReason::snoozed:
      return "snoozed until " + (person.until ? humanDateText(*person.until) : std::string{"later"});
    case NotShownReason::dismissed:
      return "dismissed";
    case NotShownReason::resolved:
      return "resolved";
    case NotShownReason::beyondTheCap:
      return "not looked at: beyond the cap (see --max-people)";
    case NotShownReason::hidden:
      return "hidden";
  }
  return "";
}

std::string exchangeInWords(double exchange) {
  constexpr double much = 4;
  constexpr double some = 1;
  if (exchange >= much) {
    return "you write to each other a lot";
  }
  return exchange >= some ? "you write to each other now and then" : "you hardly write to each other these days";
}

/// Why a row stands where it stands.
std::string sentenceFor(const ListPlace& place) {
  switch (place.part) {
    case ListPart::followUp:
      return "First, because you asked to be reminded of it.";
    case ListPart::near:
      return "Among the first, because it is near; " + exchangeInWords(place.exchange) + ".";
    case ListPart::current:
      return "Here by how recent it is, and because " + exchangeInWords(place.exchange) + ".";
    case ListPart::strangers:
      return "After the others, because you never wrote to them nor met them.";
    case ListPart::older:
      return "Last, because it has waited for more than 90 days.";
  }
  return "";
}

std::string inWords(const AttentionItemState& state) {
  std::string text{caseName(state.kind())};
  if (const auto until = state.until()) {
    text += " until " + humanDateText(*until) + " (" + formatInternetDateTime(*until) + ")";
  }
  return text;
}

std::string joinedAddresses(const std::vector<std::string>& addresses) {
  std::string text;
  for (const auto& address : addresses) {
    text += (text.empty() ? "" : ", ") + printableText(address);
  }
  return text;
}

std::vector<std::string> columnsFor(const ListedPerson& person) {
  const auto hidden = person.visibility == Visibility::hidden ? " (hidden)" : "";
  return {printableText(person.displayName) + hidden, std::to_string(person.mailsTo), std::to_string(person.mailsFrom),
          person.lastContactAt ? dateOf(*person.lastContactAt) : "never", joinedAddresses(person.addresses)};
}

/// A scheduled one is due from its time on.
std::string stateOf(const ListedFollowUp& followUp, Instant asOf) {
  const bool isDue = followUp.state == FollowUpState::scheduled && followUp.dueAt <= asOf;
  return isDue ? "due" : std::string{caseName(followUp.state)};
}

std::vector<std::string> columnsFor(const ListedFollowUp& followUp, Instant asOf) {
  return {printableText(followUp.shortID()), humanMomentText(followUp.dueAt), stateOf(followUp, asOf),
          printableText(followUp.displayName), printableText(followUp.said.value_or(""))};
}

using Rows = std::vector<std::vector<std::string>>;

std::vector<std::size_t> widthsOf(const Rows& rows) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const auto& row : rows) {
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], columnsOf(row[column]));
    }
  }
  return widths;
}

bool isNumber(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Two blanks between the columns; numbers stand at the right of theirs. Nothing is put behind the last one.
std::string aligned(const std::vector<std::string>& row, const std::vector<std::size_t>& widths) {
  std::string text;
  for (std::size_t column = 0; column < row.size(); ++column) {
    const auto blanks = std::string(widths[column] - columnsOf(row[column]), ' ');
    const bool isLast = column + 1 == row.size();
    text += column == 0 ? "" : "  ";
    text += isNumber(row[column]) ? blanks + row[column] : row[column] + (isLast ? "" : blanks);
  }
  return text;
}

bool standardOutputTakesColour() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing changes the environment of this program.
  const char* refused = std::getenv("NO_COLOR");
  return isatty(STDOUT_FILENO) != 0 && (refused == nullptr || *refused == '\0');
}

} // namespace

HumanOutput::HumanOutput() : usesColour_(standardOutputTakesColour()), columns_(columnsOfStandardOutput()) {}

/// As much of `text` as a line has place for.
std::string HumanOutput::fitted(std::string_view text) const {
  return columns_ ? cutToColumns(text, *columns_) : std::string{text};
}

std::string HumanOutput::bold(std::string_view text) const {
  return usesColour_ ? "\033[1m" + std::string{text} + "\033[0m" : std::string{text};
}

std::string HumanOutput::faint(std::string_view text) const {
  return usesColour_ ? "\033[2m" + std::string{text} + "\033[0m" : std::string{text};
}

void HumanOutput::line(std::string_view text) const {
  std::cout << text << '\n';
}

void HumanOutput::heading(std::string_view text) const {
  line(bold(text));
}

void HumanOutput::row(std::string_view text) const {
  line(fitted(text));
}

void HumanOutput::people(const std::vector<ListedPerson>& people, std::size_t shown) const {
  std::vector<std::vector<std::string>> rows{{"Name", "You wrote", "They wrote", "Last contact", "Address"}};
  for (const auto& person : std::span{people}.first(shown)) {
    rows.push_back(columnsFor(person));
  }
  const auto widths = widthsOf(rows);
  for (const auto& row : rows) {
    const auto text = fitted(aligned(row, widths));
    line(&row == &rows.front() ? faint(text) : text);
  }
  if (shown < people.size()) {
    line("\n" + std::to_string(people.size() - shown) +
         " more: 'orvan people --all' lists everyone, 'orvan people TEXT' whose name or address has a text in it.");
  }
}

void HumanOutput::choice(const std::vector<NamedPerson>& people) const {
  for (const auto& person : people) {
    line("  " + printableText(person.displayName) + "  " + printableText(person.address.value_or(person.personKey)));
  }
}

void HumanOutput::bundle(const AttentionEvidenceBundle& bundle, std::string_view displayName,
                         const std::vector<Matter>& matters) const {
  std::cout << bold(printableText(displayName)) << faint("  " + printableText(bundle.personKey())) << '\n';
  if (bundle.isEmpty()) {
    line("  Nothing is waiting.");
  }
  for (const auto& matter : matters) {
    line("  " + sentenceFor(matter));
  }
  for (const auto& freshness : bundle.sourceFreshness()) {
    const auto& syncedAt = freshness.lastSuccessfulSyncAt();
    line(faint("  " + printableText(freshness.sourceAccountID()) + " is " + freshness.freshnessState() +
               ", last read " + (syncedAt ? dateOf(*syncedAt) : "never")));
  }
}

void HumanOutput::whyNow(const AttentionWhyNowItem& item) const {
  line(item.headline());
  for (const auto& evidence : item.evidenceLines()) {
    line(faint("  " + printableText(evidence)));
  }
}

void HumanOutput::why(const ListedFollowUp& followUp, const std::optional<AttentionWhyNowItem>& other) const {
  whyNow(followUp.item.value().whyNow());
  line("  " + sentenceFor(followUp));
  if (other) {
    line(faint("  Also: " + printableText(reasonInWords(*other))));
  }
}

void HumanOutput::item(const AttentionCatchUpItem& item, const std::optional<std::string>& address) const {
  std::cout << '\n' << bold(printableText(item.displayName()));
  if (address) {
    std::cout << " <" << printableText(*address) << '>';
  }
  line(faint("  " + printableText(item.personKey())));
  line("  " + item.whyNow().headline());
  for (const auto& evidence : item.whyNow().evidenceLines()) {
    line(faint("  " + printableText(evidence)));
  }
}

void HumanOutput::conversation(const Conversation& conversation) const {
  line("\n" + bold("The conversation"));
  if (conversation.earlier > 0) {
    line(faint("  ... " + std::to_string(conversation.earlier) + " earlier"));
  }
  for (const auto& exchange : conversation.exchanges) {
    line("  " + momentOf(exchange.occurredAt) + "  " + writerOf(exchange));
  }
}

void HumanOutput::details(const ItemDetails& details) const {
  item(details.item, details.address);
  if (details.followUp) {
    line("  " + sentenceFor(*details.followUp));
  }
  for (const auto& about : linesFor(details.about)) {
    line(faint("  " + about));
  }
  if (!details.conversation.exchanges.empty()) {
    conversation(details.conversation);
  }
  if (!details.others.empty() || !details.furtherFollowUps.empty()) {
    line("\n" + bold("There is also"));
  }
  for (const auto& followUp : details.furtherFollowUps) {
    line("  A follow-up: " + sentenceFor(followUp));
  }
  for (const auto& matter : details.others) {
    line("  " + sentenceFor(matter));
  }
  if (!details.records.empty()) {
    line("\n" + bold("What you decided"));
  }
  for (const auto& decided : details.records) {
    const bool isOwn = decided.itemKey() == details.item.itemKey();
    line("  " + inWords(decided.state()) + faint("  " + (isOwn ? "this item" : printableText(decided.itemKey()))));
  }
}

void HumanOutput::notShown(const NotShown& person) const {
  const auto address = person.address ? " <" + printableText(*person.address) + ">" : std::string{};
  line(printableText(person.displayName) + address + faint("  " + printableText(person.personKey)) + "  " +
       sentenceFor(person));
}

void HumanOutput::catchUpList(const CatchUpList& list, std::size_t shown, Explanation explanation, Instant asOf) const {
  const auto current = list.rows.size() - list.older;
  if (current == 0) {
    line("Nobody is waiting for you as of " + humanDateText(asOf) + ".");
  } else {
    line(counted(static_cast<std::int64_t>(current), "person", "people") + " to get back in touch with, " +
         humanDateText(asOf));
  }
  for (const auto& row : std::span{list.rows}.first(shown)) {
    item(row.item, row.address);
    if (row.followUp) {
      line(fitted("  " + sentenceFor(*row.followUp)));
    }
    for (const auto& about : linesFor(row.about)) {
      line(faint(fitted("  " + about)));
    }
    for (const auto& other : linesForOthers(row)) {
      line(faint(fitted("  " + other)));
    }
    if (explanation == Explanation::everyone) {
      line(faint("  " + sentenceFor(row.place)));
    }
  }
  moreThan(shown, list);
  if (!list.notShown.empty()) {
    line("\n" + bold("Not shown"));
  }
  for (const auto& person : list.notShown) {
    notShown(person);
  }
}

void HumanOutput::moreThan(std::size_t shown, const CatchUpList& list) const {
  const auto current = list.rows.size() - list.older;
  std::string more;
  if (shown < current) {
    more = std::to_string(current - shown) + " more";
  }
  if (shown < list.rows.size() && list.older > 0) {
    more += (more.empty() ? "" : ", and ") + std::to_string(list.older) + " older";
  }
  if (!more.empty()) {
    line("\n" + more + ": 'orvan catch-up --all' shows everyone.");
  }
  if (list.notLookedAt > 0) {
    line("\n" + counted(static_cast<std::int64_t>(list.notLookedAt), "further person was", "further people were") +
         " not looked at; --max-people raises the number.");
  }
}

void HumanOutput::record(const AttentionItemDispositionRecord& record) const {
  line(inWords(record.state()) + faint("  " + printableText(record.itemKey())));
}

void HumanOutput::mailReport(std::string_view source, const MailReport& report) const {
  line(bold(printableText(source)) + ": " + counted(report.read, "message", "messages") + " read, " +
       std::to_string(report.imported) + " new, " + std::to_string(report.known) + " known");
  if (report.automated > 0) {
    line("  " + std::to_string(report.automated) + " written by machines, kept out of histories");
  }
  if (report.elsewhere > 0) {
    line("  " + std::to_string(report.elsewhere) +
         " with none of your addresses on them (name all that are yours with --me)");
  }
  if (report.completed > 0) {
    line("  " + std::to_string(report.completed) + " known so far from a copy that told less");
  }
  if (report.notes > 0) {
    line("  " + std::to_string(report.notes) + " from you to nobody else");
  }
  if (report.forgotten > 0) {
    line("  " + std::to_string(report.forgotten) + " from or to people you had forgotten, left out");
  }
  for (const auto& [reason, count] : report.skipped) {
    line("  " + std::to_string(count) + " skipped: " + std::string{description(reason)});
  }
}

void HumanOutput::meetingReport(std::string_view source, const MeetingReport& report) const {
  line(bold(printableText(source)) + ": " + counted(report.events, "event", "events") + ", " +
       counted(report.meetings, "meeting", "meetings") + " read, " + std::to_string(report.imported) + " new, " +
       std::to_string(report.known) + " known");
  if (report.withdrawn > 0) {
    line("  " + std::to_string(report.withdrawn) + " withdrawn: no longer in the calendar");
  }
  if (report.forgotten > 0) {
    line("  " + std::to_string(report.forgotten) + " with people you had forgotten, left out");
  }
  for (const auto& [reason, count] : report.skipped) {
    line("  " + std::to_string(count) + " skipped: " + describe(reason));
  }
  for (const auto& [notice, count] : report.notices) {
    line("  " + std::to_string(count) + " read with an assumption: " + describe(notice));
  }
}

void HumanOutput::cardReport(std::string_view source, const CardReport& report) const {
  line(bold(printableText(source)) + ": " + counted(report.cards, "contact card", "contact cards") + " read, " +
       std::to_string(report.imported) + " new, " + std::to_string(report.known) + " known");
  if (report.joined > 0) {
    line("  " + counted(report.joined, "person", "people") + " joined with another one who has the same card");
  }
  if (report.ambiguous > 0) {
    line("  " + counted(report.ambiguous, "address", "addresses") + " on cards of different names, left as before");
  }
  if (report.keptApart > 0) {
    line("  " + counted(report.keptApart, "person", "people") + " kept apart, as you said");
  }
  for (const auto& [reason, count] : report.skipped) {
    line("  " + std::to_string(count) + " skipped: " + describe(reason));
  }
}

void HumanOutput::row(std::string_view name, std::string_view text) const {
  std::cout << std::left << std::setw(12) << name << text << '\n';
}

void HumanOutput::followUp(const ListedFollowUp& followUp) const {
  line("  " + sentenceFor(followUp));
}

void HumanOutput::followUps(const std::vector<ListedFollowUp>& followUps, Instant asOf) const {
  if (followUps.empty()) {
    line("There is nothing to follow up; 'orvan follow-up add' notes something down.");
    return;
  }
  Rows rows{{"Id", "Due", "State", "Whom", "About"}};
  for (const auto& followUp : followUps) {
    rows.push_back(columnsFor(followUp, asOf));
  }
  const auto widths = widthsOf(rows);
  for (const auto& row : rows) {
    const auto text = fitted(aligned(row, widths));
    line(&row == &rows.front() ? faint(text) : text);
  }
}

void HumanOutput::check(bool isFine, std::string_view name, std::string_view detail) const {
  std::cout << (isFine ? "ok       " : bold("problem  ")) << std::left << std::setw(14) << name << detail << '\n';
}

std::string counted(std::int64_t count, std::string_view one, std::string_view many) {
  return std::to_string(count) + " " + std::string{count == 1 ? one : many};
}

} // namespace orvan
