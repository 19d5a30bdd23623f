#include "application/desktop/snooze_choices.h"

#include <QCoreApplication>
#include <QDate>
#include <chrono>

#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/local_time.h"
#include "application/desktop/wording.h"

namespace orvan {
namespace {

using std::chrono::days;
using std::chrono::local_days;
using std::chrono::year_month_day;

struct Snooze {
  Q_DECLARE_TR_FUNCTIONS(Snooze)
};

local_days localDayOf(Instant asOf) {
  return std::chrono::floor<days>(localTimeOf(asOf));
}

QString written(local_days day) {
  const year_month_day date{day};
  return QDate(static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
               static_cast<int>(static_cast<unsigned>(date.day())))
      .toString(Qt::ISODate);
}

local_days nextMonday(local_days today) {
  const auto until = std::chrono::Monday - std::chrono::weekday{today};
  return today + (until == days{0} ? days{7} : until);
}

local_days nextMonth(local_days today) {
  const auto same = year_month_day{today} + std::chrono::months{1};
  return same.ok() ? local_days{same} : local_days{same.year() / same.month() / std::chrono::last};
}

SnoozeChoice choice(const QString& label, local_days day) {
  return {label, displayText(humanDateText(instantOfLocalTime(day))), written(day)};
}

} // namespace

std::vector<SnoozeChoice> snoozeChoices(Instant asOf) {
  const auto today = localDayOf(asOf);
  return {choice(Snooze::tr("Tomorrow"), today + days{1}), choice(Snooze::tr("Next week"), nextMonday(today)),
          choice(Snooze::tr("Next month"), nextMonth(today))};
}

QString dayOf(Instant asOf) {
  return written(localDayOf(asOf));
}

} // namespace orvan
