#include "application/desktop/wording.h"

#include <QCoreApplication>
#include <chrono>
#include <string>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/internet_date_time.h"
#include "OrvanPlatform/printable_text.h"

namespace orvan {
namespace {

struct Wording {
  Q_DECLARE_TR_FUNCTIONS(Wording)
};

QString quoted(const std::string& text) {
  return Wording::tr("“%1”").arg(displayText(text));
}

QString timeOf(Instant startsAt, bool isAllDay) {
  return isAllDay ? Wording::tr("%1, all day").arg(displayText(humanDateText(startsAt)))
                  : displayText(humanMomentText(startsAt));
}

QString titleAndPlace(const About& about) {
  const auto title = displayText(about.title.value_or(""));
  const auto place = displayText(about.place.value_or(""));
  if (title.isEmpty() || place.isEmpty()) {
    return title + place;
  }
  return Wording::tr("%1 (%2)", "what a meeting is about, and where it is").arg(title, place);
}

QString withAbout(const QString& sentence, const About& about) {
  const auto line = about.question || about.subject ? inALine(about) : titleAndPlace(about);
  return line.isEmpty() ? sentence : Wording::tr("%1: %2").arg(sentence, line);
}

QString sentenceFor(const OpenThreadEvidence& thread, const About& about) {
  return withAbout(Wording::tr("Waiting for your reply since %1").arg(dateOf(thread.lastInboundOccurredAt())), about);
}

QString sentenceFor(const UpcomingInteractionEvidence& meeting, const About& about) {
  const auto time = about.startsAt ? timeOf(*about.startsAt, about.isAllDay) : dateOf(meeting.occurredAt());
  return withAbout(Wording::tr("Meeting on %1").arg(time), about);
}

QString sentenceFor(const ChangedContextEvidence& context, const About& about) {
  return withAbout(Wording::tr("Back in touch since %1, after quiet since %2")
                       .arg(dateOf(context.resumedAt()), dateOf(context.quietSinceAt())),
                   about);
}

QString sentenceFor(const CommitmentEvidence& commitment, const About& about) {
  return withAbout(Wording::tr("Still open since %1").arg(dateOf(commitment.detectedAt())), about);
}

/// With places for the person and the time.
QString sentenceFor(AgentControlError unreached) {
  switch (unreached) {
    case AgentControlError::noBus:
    case AgentControlError::noAgent:
      return Wording::tr("Noted for %2: %1. The reminder service does not run here; the reminder comes once it does.");
    case AgentControlError::locked:
      return Wording::tr(
          "Noted for %2: %1. The reminder service waits for the desktop's keyring; the reminder comes once that is "
          "unlocked.");
    default:
      return Wording::tr(
          "Noted for %2: %1. The reminder service could not take the reminder; “orvan reminders” tells why.");
  }
}

QString sentenceFor(const ReminderEnd& reminder) {
  if (reminder.unreached) {
    return sentenceFor(*reminder.unreached);
  }
  if (reminder.hindrance == EffectReasonToken::authorizationPending) {
    return reminder.comesByItself
               ? Wording::tr(
                     "Noted for %2: %1. The desktop asks you whether reminders are allowed; when you allow them, this "
                     "one is set.")
               : Wording::tr(
                     "Noted for %2: %1. The desktop asks you whether reminders are allowed; when you have allowed "
                     "them, “orvan reminders reconcile” sets this one.");
  }
  if (reminder.hindrance == EffectReasonToken::notificationsDenied) {
    return Wording::tr(
        "Noted for %2: %1. No reminder comes, because reminders are not allowed; “orvan reminders allow” allows them.");
  }
  if (reminder.hindrance == EffectReasonToken::followUpNotLive) {
    return Wording::tr("The follow-up is over already: %1");
  }
  if (reminder.hindrance) {
    return Wording::tr("Noted for %2: %1. No reminder is set yet; “orvan reminders reconcile” tries again.");
  }
  return reminder.canBeShown ? Wording::tr("You will be reminded on %2: %1")
                             : Wording::tr(
                                   "Noted for %2: %1. Nothing here shows notifications; the reminder comes as soon as "
                                   "something does.");
}

} // namespace

QString displayText(std::string_view text) {
  return QString::fromStdString(printableText(text));
}

QString joinedForDisplay(std::span<const std::string> texts) {
  QStringList words;
  for (const auto& text : texts) {
    words.append(displayText(text));
  }
  return words.join(Wording::tr(", "));
}

QString headingOf(ListPart part) {
  switch (part) {
    case ListPart::followUp:
      return Wording::tr("You wanted to get back to");
    case ListPart::near:
      return Wording::tr("Now");
    case ListPart::current:
      return Wording::tr("Lately");
    case ListPart::strangers:
      return Wording::tr("New to you");
    case ListPart::older:
      return Wording::tr("Older");
  }
  return {};
}

QString inALine(const About& about) {
  if (about.question) {
    return quoted(*about.question);
  }
  return about.subject ? displayText(*about.subject) : meetingInWords(about);
}

QString meetingInWords(const About& about) {
  auto what = titleAndPlace(about);
  if (!about.startsAt) {
    return what;
  }
  const auto time = timeOf(*about.startsAt, about.isAllDay);
  return what.isEmpty() ? time : Wording::tr("%1: %2").arg(time, what);
}

QString inWords(const Matter& matter) {
  return std::visit([&](const auto& evidence) { return sentenceFor(evidence, matter.about); }, matter.evidence);
}

QString inWords(const ListedFollowUp& followUp) {
  const auto due = Wording::tr("Due %1").arg(momentInWords(followUp.dueAt));
  return followUp.said ? Wording::tr("%1: %2").arg(due, displayText(*followUp.said)) : due;
}

QString momentInWords(Instant moment) {
  return displayText(humanMomentText(moment));
}

QString writerOf(const Exchange& exchange) {
  switch (exchange.kind) {
    case Exchange::Kind::sent:
      return Wording::tr("You", "who wrote");
    case Exchange::Kind::meeting:
      return Wording::tr("Meeting");
    case Exchange::Kind::received:
      break;
  }
  return exchange.from ? displayText(*exchange.from) : Wording::tr("Somebody");
}

QString wordsOf(const Exchange& exchange) {
  if (exchange.question) {
    return quoted(*exchange.question);
  }
  return exchange.kind == Exchange::Kind::meeting ? QString{} : Wording::tr("wrote", "in a table: who, what");
}

QString sentenceOf(const Exchange& exchange) {
  QStringList parts{dateOf(exchange.occurredAt), writerOf(exchange), wordsOf(exchange)};
  parts.removeAll(QString{});
  return parts.join(Wording::tr(", "));
}

QString inWords(const HiddenThing& thing) {
  if (thing.scope == HiddenScope::mail) {
    return thing.name.empty() ? Wording::tr("A mail that waits for nothing")
                              : Wording::tr("%1, a mail that waits for nothing").arg(quoted(thing.name));
  }
  return thing.name.empty() ? Wording::tr("A conversation") : Wording::tr("%1, a conversation").arg(quoted(thing.name));
}

QString inWords(SuggestionGround ground) {
  return ground == SuggestionGround::sameName
             ? Wording::tr("May be the same: goes by the same full name.")
             : Wording::tr("May be the same: goes by the same full name, which a contact card of yours has, too.");
}

QString dateOf(std::string_view timestamp) {
  const auto instant = parseInternetDateTime(timestamp);
  return displayText(instant ? humanDateText(*instant) : std::string{timestamp});
}

QString inWords(const NotShown& person) {
  switch (person.reason) {
    case NotShownReason::nothingToTell:
    case NotShownReason::noEvidence:
      return Wording::tr("Nothing is waiting between you.");
    case NotShownReason::noValidReason:
    case NotShownReason::noItemKey:
      return Wording::tr("What the store holds gives no reason that could be shown.");
    case NotShownReason::noName:
      return Wording::tr("There is a reason, but no name to show.");
    case NotShownReason::snoozed:
      return person.until ? Wording::tr("Snoozed until %1.").arg(displayText(humanDateText(*person.until)))
                          : Wording::tr("Snoozed.");
    case NotShownReason::dismissed:
      return Wording::tr("You dismissed this reason. A new one brings them back by itself.");
    case NotShownReason::resolved:
      return Wording::tr("You resolved this. A new reason brings them back by itself.");
    case NotShownReason::beyondTheCap:
      return Wording::tr("Not looked at: the list looks at the people you deal with most.");
    case NotShownReason::hidden:
      return Wording::tr("You hide this person.");
  }
  return {};
}

QString inWords(const AttentionItemState& state) {
  switch (state.kind()) {
    case AttentionItemState::Kind::snoozed:
      return Wording::tr("Snoozed until %1").arg(displayText(humanDateText(*state.until())));
    case AttentionItemState::Kind::dismissed:
      return Wording::tr("Dismissed");
    case AttentionItemState::Kind::resolved:
      return Wording::tr("Resolved");
    case AttentionItemState::Kind::active:
      break;
  }
  return Wording::tr("On the list");
}

QString inWords(const AttentionItemAction& action, const QString& displayName) {
  switch (action.kind()) {
    case AttentionItemAction::Kind::dismiss:
      return Wording::tr("Dismissed: %1").arg(displayName);
    case AttentionItemAction::Kind::resolve:
      return Wording::tr("Resolved: %1").arg(displayName);
    case AttentionItemAction::Kind::snooze:
      break;
  }
  return Wording::tr("Snoozed until %2: %1").arg(displayName, displayText(humanDateText(*action.until())));
}

QString inWords(SourceKind kind) {
  switch (kind) {
    case SourceKind::mail:
      return Wording::tr("Mail");
    case SourceKind::calendar:
      return Wording::tr("Calendar");
    case SourceKind::cards:
      return Wording::tr("Contacts");
  }
  return {};
}

QString inWords(ProposedAddress::Ground ground) {
  switch (ground) {
    case ProposedAddress::Ground::settings:
      return Wording::tr("in a mail program's settings");
    case ProposedAddress::Ground::sentMail:
      return Wording::tr("in your sent mail");
    case ProposedAddress::Ground::mostMail:
      return Wording::tr("named in much of the mail");
  }
  return {};
}

QString inWords(const FollowUpToEnd& followUp, const QString& displayName) {
  return followUp.end == FollowUpToEnd::End::completed ? Wording::tr("Follow-up done: %1").arg(displayName)
                                                       : Wording::tr("Follow-up cancelled: %1").arg(displayName);
}

QString inWords(const ReminderEnd& reminder, const QString& displayName, Instant dueAt) {
  return sentenceFor(reminder).arg(displayName, momentInWords(dueAt));
}

QString freshnessInWords(std::optional<Instant> broughtInAt, Instant now) {
  using namespace std::chrono_literals;
  if (!broughtInAt) {
    return {};
  }
  const auto age = now - *broughtInAt;
  if (age < 1min) {
    return Wording::tr("Up to date");
  }
  if (age < 1h) {
    return Wording::tr("Up to date %1 min ago").arg(std::chrono::floor<std::chrono::minutes>(age).count());
  }
  if (age < 24h) {
    return Wording::tr("Up to date %1 h ago").arg(std::chrono::floor<std::chrono::hours>(age).count());
  }
  return Wording::tr("Up to date on %1").arg(displayText(humanDateText(*broughtInAt)));
}

} // namespace orvan
