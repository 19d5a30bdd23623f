#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "OrvanPlatform/instant.h"
#include "OrvanRelationshipAttention/catch_up/attention_item_disposition.h"
#include "application/corrections/hiding.h"
#include "application/corrections/person_suggestions.h"
#include "application/desktop/decision_to_save.h"
#include "application/desktop/window_reminders.h"
#include "application/session/catch_up_list.h"
#include "application/session/item_details.h"
#include "application/session/listed_follow_up.h"
#include "application/session/people_list.h"
#include "application/sources/own_address_proposal.h"

namespace orvan {

// What the window says in words of its own, in the language of the user. Texts of the user's data are made printable.

QString displayText(std::string_view text);

/// Several, with commas between them.
QString joinedForDisplay(std::span<const std::string> texts);

/// The heading of a part of the list.
QString headingOf(ListPart part);

/// What a reason is about, in one line: the question, or else the subject, or else the meeting. Empty when nothing is
/// known.
QString inALine(const About& about);

/// The same of a meeting alone: its time, title and place.
QString meetingInWords(const About& about);

/// A matter beside the one reason, as a sentence.
QString inWords(const Matter& matter);

/// When a follow-up is due, and what the user said of it.
QString inWords(const ListedFollowUp& followUp);

/// A date with the time of day.
QString momentInWords(Instant moment);

/// Who wrote, or that it was a meeting.
QString writerOf(const Exchange& exchange);

/// What they asked, or else only that they wrote. Empty for a meeting.
QString wordsOf(const Exchange& exchange);

/// When, who and what, for those who hear it.
QString sentenceOf(const Exchange& exchange);

/// What is hidden beside people: "“The boat”, a conversation".
QString inWords(const HiddenThing& thing);

/// Why somebody may be the same as another.
QString inWords(SuggestionGround ground);

/// The date of a timestamp of the store.
QString dateOf(std::string_view timestamp);

QString inWords(const NotShown& person);

/// What was decided: "Snoozed until Mar 4, 2026".
QString inWords(const AttentionItemState& state);

/// What the user just did: "Dismissed: Ada Marsh".
QString inWords(const AttentionItemAction& action, const QString& displayName);
QString inWords(const FollowUpToEnd& followUp, const QString& displayName);

/// What became of the reminder of a follow-up that the user has just noted down, with its person and its time.
QString inWords(const ReminderEnd& reminder, const QString& displayName, Instant dueAt);

/// What a source holds.
QString inWords(SourceKind kind);

/// How an address came to be taken for the user's.
QString inWords(ProposedAddress::Ground ground);

/// How long ago mail and calendars were brought in last: "Up to date 4 min ago".
QString freshnessInWords(std::optional<Instant> broughtInAt, Instant now);

} // namespace orvan
