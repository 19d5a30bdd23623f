#include "application/desktop/reminder_choices.h"

#include <QCoreApplication>
#include <algorithm>
#include <string>

#include "application/session/said_moment.h"

namespace orvan {
namespace {

struct Reminder {
  Q_DECLARE_TR_FUNCTIONS(Reminder)
};

/// "14" and "14.30" as "14:00" and "14:30".
QString inColonForm(QString time) {
  time = time.trimmed().replace(u'.', u':');
  const bool isHour = !time.isEmpty() && std::ranges::all_of(time, [](QChar letter) { return letter.isDigit(); });
  return isHour ? time + QStringLiteral(":00") : time;
}

} // namespace

std::vector<ReminderChoice> reminderChoices(Instant asOf) {
  std::vector<ReminderChoice> choices;
  const auto offer = [&](const QString& label, const char* said) {
    const auto moment = parseSaidMoment(said, asOf, UnsaidTime::morning);
    if (moment && *moment > asOf) {
      choices.emplace_back(label, *moment);
    }
  };
  offer(Reminder::tr("Tonight"), "today 18:00");
  offer(Reminder::tr("Tomorrow"), "tomorrow");
  offer(Reminder::tr("Next week"), "monday");
  return choices;
}

std::optional<Instant> reminderMoment(const QString& day, const QString& time, Instant asOf) {
  const auto said = day.toStdString() + " " + inColonForm(time).toStdString();
  const auto moment = parseSaidMoment(said, asOf, UnsaidTime::morning);
  return moment && *moment > asOf ? moment : std::nullopt;
}

} // namespace orvan
