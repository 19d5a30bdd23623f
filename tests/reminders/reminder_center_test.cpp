#include "application/agent/reminders/application_notification_center.h"
#include "reminder_world.h"

namespace orvan {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Reminders : public testing::Test, public ReminderWorld {
 protected:
  Reminders() { start(); }
};

Instant at(const char* time) {
  return *parseInternetDateTime(time);
}

TEST_F(Reminders, WaitForTheUsersLeaveAndAreThenShownInTheOrderOfTheirDates) {
  addDueIn("Second", hours{2});
  addDueIn("First", hours{1});
  addDueIn("Third", hours{3});
  advance(hours{2});
  EXPECT_THAT(desktop.appeared, IsEmpty());
  EXPECT_FALSE(agent->alarm->instant().has_value()) << "nothing to wake for while nothing may be shown";

  agent->center->requestAuthorization(own, "Orvan");
  agent->center->requestAuthorization(own, "Orvan");
  settle();
  EXPECT_THAT(desktop.appeared, ElementsAre("Allow reminders?"));
  press("Allow reminders?", "not-now");
  EXPECT_THAT(pending(), SizeIs(3));
  EXPECT_THAT(desktop.appeared, SizeIs(1));

  end();
  start();
  EXPECT_EQ(agent->center->requestAuthorization(own, "Orvan"), AuthorizationStatus::denied);
  allow();
  EXPECT_THAT(desktop.appeared, ElementsAre("Allow reminders?", "First", "Second"));
  EXPECT_THAT(delivered(), ElementsAre("First", "Second"));
  EXPECT_EQ(agent->alarm->instant(), clock->now() + hours{1});
  advance(hours{1});
  EXPECT_THAT(delivered(), ElementsAre("First", "Second", "Third"));
  EXPECT_THAT(told, ElementsAre("org.orvan.Orvan.test denied", "org.orvan.Orvan.test allowed"));
}

TEST_F(Reminders, AQuestionWaitsForAServiceAndIsAskedAgainOnlyWhenClosedAndAskedFor) {
  desktop.isThere = false;
  agent->center->requestAuthorization(own, "Orvan");
  settle();
  desktop.isThere = true;
  serviceChanged();
  desktop.restart(":1.8");
  serviceChanged();
  EXPECT_THAT(desktop.appeared, ElementsAre("Allow reminders?", "Allow reminders?"));

  const auto popup = desktop.find("Allow reminders?").value();
  desktop.standing.clear();
  agent->presenter->listener_->popupClosed(popup);
  EXPECT_EQ(agent->center->status(own), AuthorizationStatus::notDetermined);
  agent->center->requestAuthorization(own, "Orvan");
  settle();
  EXPECT_THAT(desktop.appeared, SizeIs(3));
  allow();
  EXPECT_THAT(desktop.standing, IsEmpty());
}

TEST_F(Reminders, FollowTheWallClockAndTheZoneOfTheMoment) {
  allow();
  setZone("Europe/Berlin");
  setClock(at("2026-03-28T12:00:00Z"));
  add("Skipped by summer time", {2026, 3, 29, 2, 30, 0});
  add("Shown twice by winter time", {2026, 10, 25, 2, 30, 0});
  add("In the evening", {2026, 10, 25, 18, 0, 0});
  EXPECT_EQ(agent->alarm->instant(), at("2026-03-29T01:30:00Z"));

  setClock(at("2026-03-29T01:29:59Z"));
  EXPECT_THAT(delivered(), IsEmpty());
  setClock(at("2026-03-29T01:30:00Z"));
  EXPECT_THAT(delivered(), SizeIs(1));
  setClock(at("2026-01-01T00:00:00Z"));
  EXPECT_THAT(desktop.appeared, SizeIs(1)) << "what was shown stays shown when the clock is set back";
  EXPECT_EQ(agent->alarm->instant(), at("2026-10-25T01:30:00Z")) << "the later of the two";

  setClock(at("2026-10-25T16:00:00Z"));
  EXPECT_THAT(delivered(), SizeIs(2));
  setZone("Europe/Helsinki");
  clockChanged();
  EXPECT_THAT(delivered(), SizeIs(3)) << "it is 18:00 there";
}

TEST_F(Reminders, ManyAtOnceAreOnePopupThatStandsForThoseThatAreLeft) {
  allow();
  for (int number = 0; number < 1000; ++number) {
    addDueIn("Reminder " + std::to_string(number), minutes{1});
  }
  advance(hours{1});
  EXPECT_THAT(desktop.appeared, ElementsAre("1000 follow-up reminders"));
  EXPECT_THAT(delivered(), SizeIs(1000));
  EXPECT_THAT(pending(), IsEmpty());

  agent->center->removeDelivered(own, {"Reminder 3", "Reminder 4", "never added"});
  settle();
  EXPECT_THAT(desktop.appeared, SizeIs(1));
  EXPECT_TRUE(desktop.find("998 follow-up reminders"));
  press("998 follow-up reminders", "default");
  EXPECT_THAT(agent->actions->calls, ElementsAre("open all token"));

  press("998 follow-up reminders", "later");
  EXPECT_THAT(desktop.standing, IsEmpty());
  EXPECT_THAT(pending(), SizeIs(998));
  advance(hours{1} - std::chrono::seconds{1});
  EXPECT_THAT(desktop.appeared, SizeIs(1));
  advance(std::chrono::seconds{1});
  EXPECT_THAT(desktop.appeared, SizeIs(2));

  agent->presenter->listener_->popupClosed(desktop.find("998 follow-up reminders").value());
  desktop.standing.clear();
  agent->center->removeDelivered(own, {"Reminder 5"});
  settle();
  EXPECT_THAT(desktop.standing, IsEmpty()) << "what the user closed does not come back";
}

TEST_F(Reminders, WaitForAServiceAndOutliveOneThatFails) {
  allow();
  desktop.isThere = false;
  addDueIn("Waits", minutes{1});
  advance(hours{1});
  EXPECT_THAT(pending(), ElementsAre("Waits"));
  desktop.isThere = true;
  serviceChanged();
  EXPECT_THAT(delivered(), ElementsAre("Waits"));

  agent->presenter->failures = {PresenterError::serviceVanished};
  addDueIn("Vanished", minutes{1});
  advance(minutes{1});
  EXPECT_THAT(pending(), ElementsAre("Vanished"));
  desktop.restart(":1.8");
  serviceChanged();
  EXPECT_THAT(delivered(), ElementsAre("Waits", "Vanished"));

  agent->presenter->failures = {PresenterError::timedOut, PresenterError::refused};
  addDueIn("Unanswered", minutes{1});
  addDueIn("Refused", minutes{2});
  addDueIn("Taken", minutes{3});
  advance(minutes{3});
  EXPECT_THAT(delivered(), ElementsAre("Waits", "Vanished", "Unanswered", "Taken"));
  EXPECT_THAT(desktop.appeared, ElementsAre("Waits", "Vanished", "Taken"));
  advance(minutes{5});
  EXPECT_THAT(desktop.appeared, ElementsAre("Waits", "Vanished", "Taken", "Refused"));
}

TEST_F(Reminders, AddedAgainTakeThePlaceOfTheirFormerSelves) {
  allow();
  addDueIn("Call", minutes{5});
  addDueIn("Call", minutes{10});
  advance(minutes{5});
  EXPECT_THAT(desktop.appeared, IsEmpty());
  advance(minutes{5});
  addDueIn("Call", minutes{10});
  EXPECT_THAT(delivered(), ElementsAre("Call")) << "until the new one is due";
  desktop.replacesByTag = false;
  advance(minutes{10});
  EXPECT_THAT(desktop.appeared, ElementsAre("Call"));
  EXPECT_THAT(delivered(), ElementsAre("Call"));
  EXPECT_THAT(pending(), IsEmpty());

  addDueIn("Call", minutes{1});
  agent->center->removePending(own, {"Call"});
  advance(minutes{1});
  EXPECT_THAT(delivered(), ElementsAre("Call"));
  agent->center->removeDelivered(own, {"Call"});
  EXPECT_THAT(desktop.standing, IsEmpty());
  EXPECT_THAT(delivered(), IsEmpty());

  addDueIn("Of a service that is gone", minutes{1});
  advance(minutes{1});
  const auto former = desktop.find("Of a service that is gone").value();
  desktop.restart(":1.8");
  desktop.standing.emplace(former.number, Popup{});
  agent->center->removeDelivered(own, {"Of a service that is gone"});
  EXPECT_THAT(desktop.standing, SizeIs(1));
}

TEST_F(Reminders, WithdrawnOnTheWayLeaveNoPopup) {
  allow();
  agent->center->add(own, "Orvan",
                     NotificationRequest{"Call", {"Call", {}}, CalendarTrigger{userCalendarComponents(clock->now())}});
  loop.restart();
  loop.poll_one(); // The popup is asked for; the answer is on its way.
  EXPECT_THAT(pending(), ElementsAre("Call"));
  agent->center->removePending(own, {"Call"});
  settle();
  EXPECT_THAT(desktop.appeared, ElementsAre("Call"));
  EXPECT_THAT(desktop.standing, IsEmpty());
  EXPECT_THAT(delivered(), IsEmpty());
}

TEST_F(Reminders, TheUsersWordCountsAndOnlyThat) {
  allow();
  allow(other);
  agent->center->setTitles(TitleDisclosure::general);
  addDueIn("Secret", minutes{1});
  advance(minutes{1});
  press("Follow-up reminder", "default");
  agent->presenter->listener_->popupClosed(desktop.find("Follow-up reminder").value());
  EXPECT_THAT(delivered(), ElementsAre("Secret"));
  EXPECT_THAT(agent->actions->calls, ElementsAre("open Secret token"));

  agent->center->setTitles(TitleDisclosure::said);
  addDueIn("Call", minutes{1});
  addDueIn("Of another program", minutes{2}, other);
  advance(minutes{2});
  end();
  start();
  agent->actions->outcome = ReminderActions::DoneOutcome::notSaved;
  press("Call", "done");
  EXPECT_THAT(delivered(), ElementsAre("Secret", "Call"));
  EXPECT_TRUE(desktop.find("This could not be saved"));
  agent->actions->outcome = ReminderActions::DoneOutcome::saved;
  press("Call", "done");
  EXPECT_THAT(delivered(), ElementsAre("Secret"));
  EXPECT_FALSE(desktop.find("Call"));
  EXPECT_THAT(agent->actions->calls, ElementsAre("done Call", "done Call"));

  press("Of another program", "done");
  press("Of another program", "default");
  EXPECT_EQ(told.back(), "org.example.Other Of another program default");
  press("Of another program", "later");
  EXPECT_EQ(agent->center->nextDue(), clock->now() + hours{1});
}

TEST_F(Reminders, InDoubtWaitForAServiceOfWhichItIsKnownWhatItCanDo) {
  allow();
  agent->presenter->dieAt(1, DesktopPresenter::Death::beforeShown);
  addDueIn("Call", minutes{0});
  end();
  desktop.service = {};
  start();
  EXPECT_THAT(pending(), ElementsAre("Call"));
  desktop.restart(":1.8");
  serviceChanged();
  EXPECT_THAT(desktop.appeared, ElementsAre("Call"));
  EXPECT_THAT(delivered(), ElementsAre("Call"));
}

TEST_F(Reminders, AskWhoeverStandsInFront) {
  allow();
  agent->foreground->isInFront = true;
  for (const char* title : {"Dropped", "Shown", "Unanswered", "Withdrawn"}) {
    addDueIn(title, minutes{1});
  }
  advance(minutes{1});
  auto& questions = agent->foreground->questions;
  ASSERT_THAT(questions, SizeIs(4));
  agent->center->removePending(own, {"Withdrawn"});
  questions.at("Dropped")(PresentationOptions{});
  questions.at("Shown")(PresentationOptions::banner);
  questions.at("Withdrawn")(PresentationOptions::banner);
  EXPECT_THAT(desktop.appeared, IsEmpty()) << "an answer is still awaited";
  questions.at("Unanswered")(std::nullopt);
  settle();
  EXPECT_THAT(desktop.appeared, testing::UnorderedElementsAre("Shown", "Unanswered"));
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(Reminders, AreReachedThroughANotificationCentreOfOneApplication) {
  const auto center = std::make_shared<ApplicationNotificationCenter>(loop.get_executor(), agent->center, own, "Orvan");
  const UserInfo userInfo{{"flag", true}, {"count", std::int64_t{-1} << 60U}, {"share", 0.1}, {"text", "\"\u00e9\n"}};
  const NotificationRequest request{"id", {"Call", userInfo}, CalendarTrigger{{2026, 3, 5, 9, 0, 0}}};
  const NotificationRequest impossible{"id", {"Call", {}}, CalendarTrigger{{2026, 2, 30, 9, 0, 0}}};
  const NotificationRequest unreachable{"id", {"Call", {}}, CalendarTrigger{{5'000'000, 2, 3, 9, 0, 0}}};
  std::vector<bool> failed;
  const auto noteFailure = [&](const std::exception_ptr& error) { failed.push_back(error != nullptr); };
  center->add(request, noteFailure);
  center->add(impossible, noteFailure);
  center->add(unreachable, noteFailure);
  std::vector<NotificationRequest> requests;
  center->getPendingNotificationRequests([&](auto found) { requests = std::move(found); });
  bool granted = true;
  center->requestAuthorization(AuthorizationOptions::alert, [&](bool given, auto /*error*/) { granted = given; });
  settle();
  EXPECT_THAT(failed, ElementsAre(false, true, true));
  EXPECT_THAT(requests, ElementsAre(request));
  EXPECT_FALSE(granted);
  EXPECT_TRUE(desktop.find("Allow reminders?"));
}

} // namespace
} // namespace orvan
