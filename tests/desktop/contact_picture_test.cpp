#include <gtest/gtest.h>
#include <stdlib.h>

#include <QImage>
#include <QPainter>

#include "OrvanPlatform/internet_date_time.h"
#include "application/desktop/contact_sparkline.h"

namespace orvan {
namespace {

constexpr std::int64_t firstWeek = 2800;

ContactHistory historyOf(std::int64_t to, std::int64_t from, std::int64_t met) {
  ContactHistory history{firstWeek, {}, {}, {}, parseInternetDateTime("2024-01-10T12:00:00Z"), {}, {}, {}, {}};
  for (auto* counts : {&history.mailsTo, &history.mailsFrom, &history.meetings}) {
    counts->assign(weeksOfHistory, 0);
  }
  history.mailsTo[4] = to;
  history.mailsFrom[4] = from;
  history.meetings[4] = met;
  return history;
}

TEST(ContactPicture, TellsInWordsWhatItShows) {
  setenv("TZ", "UTC", 1);
  setenv("LC_ALL", "en_US.UTF-8", 1);
  auto history = historyOf(84, 1, 6);
  history.longestQuiet = QuietStretch{firstWeek, 8};
  EXPECT_EQ(ContactPicture(history).sentence(),
            "Over two years you wrote 84 mails, they wrote one mail, you met 6 times.");
  history.longestQuiet = QuietStretch{firstWeek + 5, 90};
  EXPECT_EQ(ContactPicture(history).quiet(), "quiet for 90 weeks");
  history.currentQuiet = QuietStretch{firstWeek + 90, 14};
  EXPECT_EQ(ContactPicture(history).sentence(),
            "Over two years you wrote 84 mails, they wrote one mail, you met 6 times; quiet since May 2025.");
  EXPECT_EQ(ContactPicture(historyOf(0, 0, 0)).sentence(), "You were last in touch in Jan 2024.");
  EXPECT_EQ(ContactPicture(ContactHistory{}).sentence(), "");
}

TEST(ContactSparkline, DrawsWhatTheUserWroteAboveAndTheOldestWeekWhereReadingBegins) {
  constexpr int width = 420;
  ContactSparkline drawing;
  drawing.setSize({width, 60});
  drawing.setPicture(ContactPicture(historyOf(3, 0, 0)));
  drawing.setProperty("ownColor", QColor(Qt::blue));
  const auto paint = [&drawing] {
    QImage image(width, 60, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    drawing.paint(&painter);
    painter.end();
    return image;
  };
  const auto image = paint();
  EXPECT_EQ(image.pixelColor(17, 26), QColor(Qt::blue));
  EXPECT_EQ(image.pixelColor(17, 34), QColor(Qt::white));
  drawing.setProperty("isMirrored", true);
  EXPECT_EQ(paint(), image.mirrored(true, false));
}

} // namespace
} // namespace orvan
