#include "application/cli/follow_up_commands.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "application/cli/command_line.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using nlohmann::json;

constexpr const char* dayOfFollowUps = "2026-03-10T12:00:00Z";
constexpr const char* later = "2026-03-12T12:00:00Z";

/// Ada has written, and waits. Kim is somebody whom the user only wrote to. There is no desktop session.
class FollowUpCommands : public testing::Test {
 protected:
  struct Outcome {
    int status;
    std::string output;
    std::string errors;
  };

  FollowUpCommands() {
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
    deriveKeysQuickly();
    run({"init"});
    std::ofstream(path("mbox")) << mail("a1", "Ada Marsh <ada@hill.example>", "robin@orvan.example")
                                << mail("r1", "robin@orvan.example", "Kim Reed <kim@mill.example>");
    run({"import", "--me", "robin@orvan.example", "--mbox", path("mbox")});
  }

  Outcome run(std::vector<std::string> words, const std::string& asOf = dayOfFollowUps) const {
    words.insert(words.begin(), {"orvan", "--store", path("store.db"), "--key-file", path("key"), "--as-of", asOf});
    std::vector<const char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments), &std::string::c_str);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(static_cast<int>(arguments.size()), arguments.data());
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  }
  json read(std::vector<std::string> words, const std::string& asOf = dayOfFollowUps) const {
    words.emplace_back("--json");
    return json::parse(run(std::move(words), asOf).output);
  }

  std::string add(const std::string& whom, const std::string& when, const std::string& about) const {
    return read({"follow-up", "add", whom, "--on", when, "--about", about}).at("id");
  }
  std::string stateOf(const std::string& id) const {
    for (const auto& followUp : read({"follow-up", "list", "--all"})) {
      if (followUp.at("id") == id) {
        return followUp.at("state");
      }
    }
    return "gone";
  }
  /// Names and headlines of a list, in its order.
  std::vector<std::string> listAt(const std::string& asOf) const {
    std::vector<std::string> rows;
    for (const auto& item : read({"catch-up"}, asOf).at("items")) {
      rows.push_back(item.at("displayName").get<std::string>() + ": " +
                     item.at("whyNow").at("headline").get<std::string>());
    }
    return rows;
  }
  std::string keyOf(const std::string& name, const std::string& asOf) const {
    for (const auto& item : read({"catch-up"}, asOf).at("items")) {
      if (item.at("displayName") == name) {
        return item.at("itemKey");
      }
    }
    return "";
  }

  static std::string mail(const std::string& id, const std::string& from, const std::string& to) {
    return "From mailer Mon Mar  9 00:00:00 2026\nMessage-ID: <" + id + "@hill.example>\nFrom: " + from +
           "\nTo: " + to + "\nDate: Mon, 09 Mar 2026 08:00:00 +0000\nSubject: The boat\n\nThe boat is ready.\n\n";
  }
  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

 private:
  ScratchFolder folder_;
};

const std::string waiting = ": A conversation with them is waiting on your reply.";
const std::string due = ": A follow-up with them is coming due.";

TEST_F(FollowUpCommands, HaveWhatIsDueComeFirstOnTheListAndNeverBefore) {
  const auto added = run({"follow-up", "add", "kim@mill.example", "--on", "thursday", "--about", "send the keys"});
  EXPECT_EQ(added.status, 0) << "what is noted down is, whether or not anything can remind of it";
  EXPECT_TRUE(added.output.contains("Due Mar 12, 2026, 9:00 AM: send the keys")) << added.output;
  EXPECT_TRUE(added.errors.contains("There is no desktop session to remind you in")) << added.errors;
  const auto ada = add(keyOf("Ada Marsh", dayOfFollowUps), "tomorrow 9:30", "ask for the boat's papers");
  add("Ada Marsh", "2h", "and for the oars");

  EXPECT_EQ(listAt(dayOfFollowUps), std::vector{"Ada Marsh" + waiting});
  EXPECT_EQ(listAt(later), (std::vector{"Kim Reed" + due, "Ada Marsh" + due}));
  const auto text = run({"catch-up"}, later).output;
  EXPECT_TRUE(
      text.contains("  Due Mar 10, 2026, 2:00 PM: and for the oars\n"
                    "  Also: Due Mar 11, 2026, 9:30 AM: ask for the boat's papers\n"
                    "  Also: A conversation with them is waiting on your reply. Last message"))
      << text;
  EXPECT_EQ(read({"catch-up", "--max-people", "0"}, later).at("items").size(), 2U) << "whatever the cap";

  const auto shown = run({"show", read({"follow-up", "list"}).at(1).at("itemKey")}, later).output;
  EXPECT_TRUE(shown.contains("ask for the boat's papers\n  Subject: The boat"))
      << "about the mail behind the item: " << shown;
  EXPECT_TRUE(run({"show", "kim@mill.example"}).output.contains("send the keys")) << "before it is due, too";
  EXPECT_EQ(run({"why", "kim@mill.example"}).output, "There is no reason to get in touch now.\n");

  run({"snooze", "Ada Marsh", "--until", "2026-03-20"}, later);
  EXPECT_EQ(read({"catch-up"}, later).at("items").at(1).at("followUp").at("id"), ada) << "the next one stands";
  run({"hide", "Ada Marsh"}, later);
  EXPECT_EQ(listAt(later), std::vector{"Kim Reed" + due});
}

TEST_F(FollowUpCommands, EndByDecisionsAndAreTakenBack) {
  const auto id = add("kim@mill.example", "2h", "send the keys");
  EXPECT_EQ(run({"follow-up", "complete", "kim@mill.example"}, later).status, 0);
  EXPECT_EQ(stateOf(id), "completed");
  EXPECT_EQ(run({"follow-up", "cancel", id}, later).status, 1) << "it is done";
  EXPECT_EQ(run({"undo"}, later).status, 0);
  EXPECT_EQ(listAt(later), (std::vector{"Kim Reed" + due, "Ada Marsh" + waiting}));

  EXPECT_EQ(run({"resolve", "kim@mill.example", "--yes"}, later).status, 0);
  EXPECT_EQ(stateOf(id), "completed");
  EXPECT_EQ(run({"follow-up", "reopen", id.substr(10, 8)}, later).status, 0);
  EXPECT_EQ(listAt(later).size(), 2U) << "open again, it is on the list again";
  EXPECT_EQ(run({"dismiss", "kim@mill.example", "--yes"}, later).status, 0);
  EXPECT_EQ(stateOf(id), "cancelled");

  const auto second = add("Ada Marsh", "3d", "one");
  add("Ada Marsh", "4d", "two");
  const auto several = run({"follow-up", "cancel", "Ada Marsh"});
  EXPECT_TRUE(several.status == 1 && several.output.contains(second.substr(10, 8))) << several.output;
  EXPECT_EQ(run({"follow-up", "cancel", second}).status, 0);
  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_EQ(run({"undo"}).status, 0) << "and the making of the last one";
  EXPECT_EQ(read({"follow-up", "list"}).size(), 1U);
  EXPECT_EQ(read({"history"}).at(0).at("words"), "follow-up cancelled: one");
}

TEST_F(FollowUpCommands, SayWhatTheyDoNotTake) {
  EXPECT_EQ(run({"follow-up", "add", "Ada Marsh", "--on", "2026-03-01"}).status, 2) << "has passed";
  EXPECT_EQ(run({"follow-up", "add", "Ada Marsh", "--on", "soon"}).status, 2);
  EXPECT_EQ(run({"follow-up", "add", "Ada Marsh", "--on", "3d", "--about", "  "}).status, 2);
  EXPECT_EQ(run({"follow-up", "add", "Nobody", "--on", "3d"}).status, 1);
  EXPECT_TRUE(read({"history"}).empty());
  EXPECT_EQ(run({"reminders"}).status, 1);
  EXPECT_EQ(run({"doctor"}).status, 0) << "without a desktop session all is well";
}

} // namespace
} // namespace orvan
