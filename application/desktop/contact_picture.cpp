#include "application/desktop/contact_picture.h"

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <numeric>
#include <utility>
#include <vector>

#include "OrvanPlatform/human_date.h"
#include "application/desktop/wording.h"

namespace orvan {
namespace {

/// People travel: a pause of up to so many weeks says nothing. The overview takes no notice of such a one either.
constexpr std::int64_t weeksOfAnyPause = 8;

struct Words {
  Q_DECLARE_TR_FUNCTIONS(ContactPicture)
};

int sumOf(const std::vector<std::int64_t>& counts) {
  return static_cast<int>(std::accumulate(counts.begin(), counts.end(), std::int64_t{0}));
}

QString monthOf(std::int64_t week) {
  return displayText(humanMonthText(Instant{std::chrono::weeks{week}}));
}

/// English has no text of its own for one, as long as it is not translated.
QString mailsInWords(int count) {
  return count == 1 ? Words::tr("one mail") : Words::tr("%n mails", "", count);
}

QString timesInWords(int count) {
  return count == 1 ? Words::tr("once") : Words::tr("%n times", "", count);
}

bool says(const std::optional<QuietStretch>& stretch) {
  return stretch && stretch->weeks > weeksOfAnyPause;
}

QString quietInWords(const QuietStretch& stretch, bool goesOn) {
  return goesOn ? Words::tr("quiet since %1", "with the month").arg(monthOf(stretch.firstWeek))
                : Words::tr("quiet for %n weeks", "", static_cast<int>(stretch.weeks));
}

/// How much there was, without what was never.
QString amountInWords(const ContactPicture& picture) {
  const auto to = mailsInWords(picture.mailsTo());
  const auto from = mailsInWords(picture.mailsFrom());
  const auto met = timesInWords(picture.meetings());
  if (picture.mailsTo() + picture.mailsFrom() == 0) {
    return Words::tr("Over two years you met %1", "how often").arg(met);
  }
  return picture.meetings() == 0
             ? Words::tr("Over two years you wrote %1, they wrote %2").arg(to, from)
             : Words::tr("Over two years you wrote %1, they wrote %2, you met %3").arg(to, from, met);
}

} // namespace

ContactPicture::ContactPicture(ContactHistory history)
    : history_(std::move(history)),
      mailsTo_(sumOf(history_.mailsTo)),
      mailsFrom_(sumOf(history_.mailsFrom)),
      meetings_(sumOf(history_.meetings)) {
  const auto last = std::max({history_.lastMailToAt, history_.lastMailFromAt, history_.lastMetAt});
  if (!hasContact()) {
    sentence_ =
        last ? Words::tr("You were last in touch in %1.", "with the month").arg(displayText(humanMonthText(*last)))
             : QString{};
    return;
  }
  firstMonth_ = monthOf(history_.firstWeek);
  const bool goesOn = says(history_.currentQuiet);
  quietStretch_ = goesOn ? history_.currentQuiet : history_.longestQuiet;
  if (says(quietStretch_)) {
    quiet_ = quietInWords(*quietStretch_, goesOn);
    // What goes on has lasted until today.
    quietStretch_->weeks += goesOn ? 1 : 0;
  } else {
    quietStretch_.reset();
  }
  if (!quietStretch_) {
    sentence_ = Words::tr("%1.", "ends a sentence").arg(amountInWords(*this));
  } else if (goesOn) {
    sentence_ = Words::tr("%1; %2.", "how much there was, and “quiet since” a month").arg(amountInWords(*this), quiet_);
  } else {
    sentence_ = Words::tr("%1; %2 from %3.", "how much there was, “quiet for” some weeks, and the first month of those")
                    .arg(amountInWords(*this), quiet_, monthOf(quietStretch_->firstWeek));
  }
}

} // namespace orvan
