#include "application/cli/command_line.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "OrvanSpineCore/key_file.h"
#include "application/store/application_store.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using nlohmann::json;
using std::filesystem::perms;

constexpr const char* noon = "2026-03-10T12:00:00Z";

/// A mail of 9 March at this hour, from Ada to Robin.
std::string mail(const std::string& id, const std::string& hour, const std::string& inReplyTo = "",
                 const std::string& from = "Ada Marsh <ada@hill.example>") {
  return "From mailer Tue Mar 10 00:00:00 2026\nMessage-ID: <" + id + ">\nFrom: " + from +
         "\nTo: robin@orvan.example\nDate: Mon, 09 Mar 2026 " + hour + ":00:00 +0000\nSubject: The boat\n" +
         (inReplyTo.empty() ? "" : "In-Reply-To: <" + inReplyTo + ">\n") + "\nThe boat is ready.\n\n";
}

/// The program on a store of its own.
class CommandLine : public testing::Test {
 protected:
  struct Outcome {
    int status;
    std::string output;
    std::string errors;
  };

  CommandLine() {
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    deriveKeysQuickly();
  }

  static Outcome runBare(std::vector<std::string> words) {
    words.insert(words.begin(), "orvan");
    std::vector<const char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments), &std::string::c_str);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(static_cast<int>(arguments.size()), arguments.data());
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  }

  Outcome run(std::vector<std::string> words, const std::string& asOf = noon) const {
    words.insert(words.begin(), {"--store", path("store.db"), "--key-file", path("key"), "--as-of", asOf});
    return runBare(std::move(words));
  }

  json list(const std::string& asOf = noon) const {
    return json::parse(run({"catch-up", "--explain", "--json"}, asOf).output);
  }

  void importFile(const std::string& kind, const std::string& content, const std::string& me = "Robin@Orvan.example") {
    std::ofstream(path("imported")) << content;
    ASSERT_EQ(run({"import", "--me", me, kind, path("imported")}).status, 0);
  }

  /// Puts a program before all others of its name, and hides those that are installed.
  void installProgram(const std::string& name, const std::string& script) const {
    std::filesystem::create_directories(path("bin"));
    std::ofstream(path("bin/" + name)) << "#!/bin/sh\n" << script << '\n';
    std::filesystem::permissions(path("bin/" + name), perms::owner_all);
    setenv("PATH", path("bin").c_str(), 1);
  }

  void makeStoreWithAMailFromAda() {
    ASSERT_EQ(run({"init"}).status, 0);
    importFile("--mbox", mail("a1", "08"));
  }

  /// The store as another program has it open.
  std::shared_ptr<DatabaseQueue> openStore() const {
    return ApplicationStore::open(path("store.db"), CredentialVault(std::make_shared<KeyFile>(path("key"))),
                                  ApplicationStore::Access::write);
  }
  void change(const char* statement) const {
    openStore()->write([&](Connection& store) { store.execute(statement); });
  }

  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

 private:
  ScratchFolder folder_;
};

TEST_F(CommandLine, SnoozedPersonReturnsAtTheEndOrWithANewReason) {
  makeStoreWithAMailFromAda();
  const auto before = list();
  ASSERT_EQ(before["items"].size(), 1U);
  EXPECT_EQ(before["items"][0]["displayName"], "Ada Marsh");
  EXPECT_EQ(before["items"][0]["whyNow"]["kind"], "openThread");
  EXPECT_EQ(before["items"][0]["whyNow"]["evidenceLines"][0], "Last message received Mar 9, 2026.");

  const auto elsewhere = openStore();
  const auto snoozed = run({"snooze", "ada@hill.example", "--until", "3d", "--json"});
  EXPECT_EQ(json::parse(snoozed.output)["until"], "2026-03-13T12:00:00Z");
  EXPECT_EQ(ApplicationStore::logSize(path("store.db")), 0U) << "no decision stays in the log";
  EXPECT_EQ(list()["notShown"][0]["reason"], "snoozed");
  EXPECT_EQ(list("2026-03-13T11:59:59Z")["items"].size(), 0U);
  EXPECT_EQ(list("2026-03-13T12:00:00Z")["items"].size(), 1U);

  importFile("--mbox", mail("a2", "09", "a1"));
  EXPECT_EQ(list()["items"].size(), 1U);
  const auto capped = json::parse(run({"catch-up", "--explain", "--json", "--max-people", "0"}).output);
  EXPECT_TRUE(capped["items"].empty());
  EXPECT_EQ(capped["notShown"][0]["reason"], "beyondTheCap");
}

TEST_F(CommandLine, RefusesADecisionAboutAReasonThatChanged) {
  makeStoreWithAMailFromAda();
  const std::string oldKey = list()["items"][0]["itemKey"];
  importFile("--mbox", mail("a2", "09"));
  const auto refused = run({"dismiss", oldKey});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.errors.find("waiting on your reply. Last message received Mar 9, 2026."), std::string::npos);
  const std::string newKey = list()["items"].at(0)["itemKey"];
  EXPECT_EQ(run({"dismiss", newKey}).status, 0);
  EXPECT_EQ(list()["notShown"][0]["reason"], "dismissed");
  const auto tooLate = run({"snooze", newKey, "--until", "3d"});
  EXPECT_EQ(tooLate.status, 0);
  EXPECT_EQ(tooLate.output.find("An earlier decision is final"), 0U) << tooLate.output;
  EXPECT_EQ(run({"snooze", newKey, "--until", "2026-01-01"}).status, 1);
  EXPECT_EQ(run({"snooze", newKey, "--until", "someday"}).status, 2);
}

TEST_F(CommandLine, TellsWhatAnItemIsAboutAndWhichNamesakeItIs) {
  makeStoreWithAMailFromAda();
  EXPECT_EQ(list()["items"][0]["about"]["subject"], "The boat");
  EXPECT_TRUE(list()["items"][0]["address"].is_null());
  importFile("--mbox", mail("b1", "09", "", "ada MARSH <ada@lake.example>"));
  importFile("--ics",
             "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:a\nDTSTART:20260312T090000Z\nSUMMARY:Tea\nLOCATION:Café Sol\n"
             "ORGANIZER:mailto:ada@hill.example\nEND:VEVENT\nEND:VCALENDAR\n");
  setenv("TZ", "America/New_York", 1);
  const auto output = run({"catch-up"}).output;
  EXPECT_TRUE(output.contains("Ada Marsh <ada@hill.example>  p-")) << output;
  EXPECT_TRUE(output.contains("ada MARSH <ada@lake.example>  p-")) << output;
  EXPECT_TRUE(output.contains("\n  Mar 12, 2026, 5:00 AM: Tea (Café Sol)\n")) << output;

  const auto shown = run({"show", "ada@hill.example"});
  EXPECT_TRUE(shown.output.contains("  Waiting for your reply since Mar 9, 2026: The boat\n")) << shown.output;
  importFile("--mbox", mail("b2", "10", "b1", "ada MARSH <ada@lake.example>"));
  const auto details = json::parse(run({"show", "ada@lake.example", "--json"}).output);
  EXPECT_EQ(details["address"], "ada@lake.example");
  EXPECT_EQ(details["conversation"]["exchanges"][1]["from"], "ada MARSH");
  EXPECT_EQ(run({"show", details["itemKey"]}, "2026-03-09T09:30:00Z").status, 1) << "there was another reason then";
  EXPECT_EQ(run({"show", "ada@lake.example"}, "2026-03-08T09:30:00Z").status, 1) << "there was none then";
}

TEST_F(CommandLine, OpensAMessageInTheMailProgramWithoutTellingItsNameToAnybodyElse) {
  makeStoreWithAMailFromAda();
  EXPECT_EQ(run({"open", "Ada Marsh"}).status, 1) << "its Message-ID is none that a mail program knows";
  importFile("--mbox", mail("a2+x@hill.example", "09"));
  EXPECT_EQ(run({"open", "Ada Marsh", "--print"}).output, "mid:a2%2Bx@hill.example\n");
  installProgram("xdg-mime", "");
  EXPECT_TRUE(run({"open", "Ada Marsh"}).errors.contains("No program is set"));
  installProgram("xdg-mime", "echo post.desktop");
  EXPECT_TRUE(run({"open", "Ada Marsh"}).errors.contains("install xdg-utils"));
  installProgram("xdg-open", "echo \"$@\" >&2; echo \"$@\"; exit 4");
  const auto failed = run({"open", "Ada Marsh"});
  EXPECT_EQ(failed.status, 1);
  EXPECT_FALSE(failed.errors.contains("a2")) << failed.errors;
  installProgram("xdg-open", "echo \"$@\" > \"${0%/*}/opened\"");
  EXPECT_EQ(run({"open", "Ada Marsh"}).status, 0);
  std::string opened;
  std::getline(std::ifstream(path("bin/opened")), opened);
  EXPECT_EQ(opened, "mid:a2%2Bx@hill.example");
}

TEST_F(CommandLine, HonoursADeclineUnderAnAddressToldEarlier) {
  makeStoreWithAMailFromAda();
  const auto calendarWith = [](const std::string& answer) {
    return "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:a\nDTSTART:20260312T090000Z\nORGANIZER:mailto:kim@hill.example\n"
           "ATTENDEE;PARTSTAT=" +
           answer + ":mailto:robin@orvan.example\nEND:VEVENT\nEND:VCALENDAR\n";
  };
  importFile("--ics", calendarWith("ACCEPTED"), "robin@home.example");
  EXPECT_EQ(list()["items"].size(), 2U);
  importFile("--ics", calendarWith("DECLINED"), "robin@home.example");
  EXPECT_EQ(list()["items"].size(), 1U);
}

TEST_F(CommandLine, NamesEveryWrongCommandLineInOneSentence) {
  for (const std::vector<std::string>& words : {std::vector<std::string>{"frobnicate"},
                                                {"frobnicate", "--help"},
                                                {},
                                                {"Jo Same"},
                                                {"why", "Jo", "Same"},
                                                {"catch-up", "Same"},
                                                {"people", "--frob=Same", "--help"},
                                                {"people", "--json=Same"},
                                                {"snooze", "ada"},
                                                {"people", "--store", ""},
                                                {"people", "--key-file="},
                                                {"people", "--as-of", ""},
                                                {"people", "--as-of", "yesterday"},
                                                {"people", "--max-people", "-1"},
                                                {"people", "--max-people", "many"},
                                                {"why", ""},
                                                {"import", "--me", "a@b"},
                                                {"import", "--mbox", ""}}) {
    const auto refused = runBare(words);
    EXPECT_EQ(refused.status, 2) << testing::PrintToString(words);
    EXPECT_TRUE(refused.output.empty());
    EXPECT_EQ(refused.errors.find('\n'), refused.errors.size() - 1) << refused.errors;
    EXPECT_TRUE(refused.errors.starts_with("orvan: ") && refused.errors.ends_with(".\n")) << refused.errors;
    EXPECT_FALSE(refused.errors.contains("Same")) << refused.errors;
  }
  EXPECT_TRUE(runBare({"snoze"}).errors.contains("'snoze' is no command; the nearest is 'snooze'"));
  EXPECT_EQ(runBare({"snooze", "--help"}).status, 0);
  EXPECT_EQ(runBare({"--help"}).status, 0);
}

TEST_F(CommandLine, ImportsTheOtherSourcesBesideAWrongOne) {
  makeStoreWithAMailFromAda();
  importFile("--mbox", "");
  struct Wrong {
    const char* kind;
    std::string content;
    const char* told;
  };
  const Wrong wrongs[] = {{"--mbox", "BEGIN:VCALENDAR\nEND:VCALENDAR\n", "give it with --ics"},
                          {"--mbox", "Hello,\n\nFriday?\n", "There is no mail in it"},
                          {"--mbox", {'S', '\0', '\x01'}, "neither mail nor a calendar"},
                          {"--ics", mail("b1", "08"), "give it with --mbox"},
                          {"--ics", std::string("SQLite format 3\0", 16), "is a database"},
                          {"--ics", "", "holds no calendar"}};
  for (const auto& [kind, content, told] : wrongs) {
    std::ofstream(path("wrong"), std::ios::binary) << content;
    std::ofstream(path("right")) << mail("a1", "08");
    const auto outcome = run({"import", kind, path("wrong"), "--mbox", path("right"), "--json"});
    EXPECT_EQ(outcome.status, 1) << told;
    EXPECT_TRUE(outcome.errors.starts_with("orvan: " + path("wrong") + ": ")) << outcome.errors;
    const auto report = json::parse(outcome.output);
    const std::string error = report[kind == std::string{"--ics"} ? "calendars" : "mail"][0]["error"];
    EXPECT_TRUE(error.contains(told)) << error;
    EXPECT_EQ(report["mail"].back()["known"], 1) << told;
  }
}

TEST_F(CommandLine, TellsByItsStatusWhatWentWrong) {
  EXPECT_EQ(run({"catch-up"}).status, 3) << "no store";
  EXPECT_FALSE(std::filesystem::exists(path("store.db")));
  std::filesystem::create_directory(path("store.db"));
  std::filesystem::permissions(path("store.db"), perms::owner_all);
  const auto folder = run({"catch-up"});
  EXPECT_EQ(folder.status, 3);
  EXPECT_NE(folder.errors.find("is a folder, a pipe or a device"), std::string::npos) << folder.errors;
  std::filesystem::remove(path("store.db"));
  ASSERT_EQ(run({"init"}).status, 0);
  EXPECT_EQ(run({"init"}).status, 1) << "never over an existing store";
  EXPECT_EQ(run({"import", "--me", "robin@orvan.example", "--mbox", path("missing")}).status, 1);
  EXPECT_EQ(run({"why", "Ada Marsh"}).status, 1) << "nobody of that name";
  EXPECT_EQ(run({"import", "--me", "nobody", "--mbox", path("missing")}).status, 2);

  std::ofstream(path("store.db-wal")).close();
  for (const char* file : {"key", "store.db", "store.db-wal"}) {
    std::filesystem::permissions(path(file), perms{0640});
    EXPECT_EQ(run({"people"}).status, 3) << "others can read " << file;
    std::filesystem::permissions(path(file), perms{0600});
  }
  std::ofstream(path("key"), std::ios::binary | std::ios::trunc) << std::string(32, 'k');
  EXPECT_EQ(run({"catch-up"}).status, 3) << "another key";
  EXPECT_EQ(run({"doctor"}).status, 1);
  std::ofstream(path("key"), std::ios::binary | std::ios::trunc) << std::string(31, 'k');
  EXPECT_EQ(run({"people"}).status, 3);
  std::ofstream(path("store.db"), std::ios::binary | std::ios::trunc) << "SQLite format 3" << std::string(200, '\0');
  const auto plaintext = run({"catch-up", "--json"});
  EXPECT_EQ(plaintext.status, 3);
  EXPECT_TRUE(plaintext.output.empty());
  EXPECT_NE(plaintext.errors.find("without encryption"), std::string::npos);
  std::filesystem::remove(path("key"));
  EXPECT_EQ(run({"init"}).status, 3) << "no new key while there is a store";
  EXPECT_FALSE(std::filesystem::exists(path("key")));
}

TEST_F(CommandLine, KeepsItsOwnFolderPrivate) {
  setenv("XDG_DATA_HOME", path("data").c_str(), 1);
  ASSERT_EQ(runBare({"init"}).status, 0);
  std::filesystem::permissions(path("data/orvan"), perms{0750});
  EXPECT_EQ(runBare({"people"}).status, 3);
  EXPECT_EQ(runBare({"doctor"}).status, 1);
}

TEST_F(CommandLine, SaysWhenItsOutputIsLost) {
  const std::ofstream full("/dev/full");
  auto* const before = std::cout.rdbuf(full.rdbuf());
  const auto outcome = runBare({"--help"});
  std::cout.rdbuf(before);
  std::cout.clear();
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("could not be written"), std::string::npos);
}

TEST_F(CommandLine, ExplainsADamagedStoreAndANamelessPerson) {
  makeStoreWithAMailFromAda();
  EXPECT_EQ(run({"doctor"}).status, 0);
  change("UPDATE person SET display_name = ' '");
  EXPECT_EQ(list()["notShown"].at(0)["reason"], "noName");
  std::ofstream(path("store.db.before-version-2")) << "left";
  const auto withACopy = run({"doctor"});
  EXPECT_EQ(withACopy.status, 1);
  EXPECT_NE(withACopy.output.find(path("store.db.before-version-2")), std::string::npos) << withACopy.output;
  change("DROP INDEX open_loop_by_person");
  const auto examined = run({"doctor"});
  EXPECT_EQ(examined.status, 1);
  EXPECT_NE(examined.output.find("The store lacks index open_loop_by_person;"), std::string::npos) << examined.output;
}

TEST_F(CommandLine, ForgetsAPersonForGoodAndKnowsWhichAddressesAreTheUsers) {
  makeStoreWithAMailFromAda();
  EXPECT_EQ(run({"me", "remove", "robin@orvan.example"}).status, 1) << "the only one";
  EXPECT_EQ(run({"me", "add", "ada"}).status, 2);
  const auto taken = run({"me", "add", "ada@hill.example", "Robin@Orvan.example"});
  EXPECT_EQ(taken.output.find("ada@hill.example is yours now. It was taken for Ada Marsh"), 0U) << taken.output;
  EXPECT_EQ(json::parse(run({"me", "--json"}).output)[0],
            (json{{"address", "ada@hill.example"}, {"toldBy", "user"}, {"hasMail", false}}));
  EXPECT_EQ(run({"forget", "Ada Marsh", "--yes"}).status, 1) << "that is the user";
  const auto unknown = run({"me", "remove", "ben@hill.example"});
  EXPECT_NE(unknown.errors.find("which are: ada@hill.example, robin@orvan.example."), std::string::npos);
  EXPECT_EQ(json::parse(run({"me", "remove", "ada@hill.example", "--json"}).output)["isReadAgain"], false);
  EXPECT_EQ(list()["items"].size(), 1U);

  EXPECT_EQ(run({"forget", "Ada Marsh"}).status, 2) << "nobody can be asked";
  EXPECT_EQ(json::parse(run({"forget", "Ada Marsh", "--yes", "--json"}).output)["mails"], 1);
  EXPECT_EQ(ApplicationStore::logSize(path("store.db")), 0U);
  importFile("--mbox", mail("a1", "08") + mail("a2", "09"));
  EXPECT_EQ(run({"people"}).output.find("Ada"), std::string::npos);
}

} // namespace
} // namespace orvan
