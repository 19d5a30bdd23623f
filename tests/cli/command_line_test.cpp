#include "application/cli/command_line.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace orvan {
namespace {

using nlohmann::json;

constexpr const char* noon = "2026-03-10T12:00:00Z";

std::string mail(const std::string& id, const std::string& from, const std::string& to, const std::string& date,
                 const std::string& inReplyTo, const std::string& body) {
  return "From mailer Tue Mar 10 00:00:00 2026\nMessage-ID: <" + id + ">\nFrom: " + from + "\nTo: " + to +
         "\nDate: " + date + "\nSubject: The boat\n" + (inReplyTo.empty() ? "" : "In-Reply-To: <" + inReplyTo + ">\n") +
         "\n" + body + "\n\n";
}

/// The program on a store of its own, with Robin's mail from Ada.
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
    std::string name = (std::filesystem::temp_directory_path() / "orvan-cli-XXXXXX").string();
    folder_ = mkdtemp(name.data());
  }
  ~CommandLine() override { std::filesystem::remove_all(folder_); }

  Outcome run(std::vector<std::string> words, const std::string& asOf = noon) const {
    words.insert(words.begin(), {"orvan", "--store", path("store.db"), "--key-file", path("key"), "--as-of", asOf});
    std::vector<const char*> arguments;
    arguments.reserve(words.size());
    for (const auto& word : words) {
      arguments.push_back(word.c_str());
    }
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(static_cast<int>(arguments.size()), arguments.data());
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  }

  json list(const std::string& asOf = noon) const {
    return json::parse(run({"catch-up", "--explain", "--json"}, asOf).output);
  }

  void importMail(const std::string& file, const std::string& mails) const {
    std::ofstream(path(file)) << mails;
    ASSERT_EQ(run({"import", "--me", "Robin@Orvan.example", "--mbox", path(file)}).status, 0);
  }

  void makeStoreWithAMailFromAda() const {
    ASSERT_EQ(run({"init"}).status, 0);
    importMail("mail", mail("a1", "Ada Marsh <ada@hill.example>", "robin@orvan.example",
                            "Mon, 09 Mar 2026 08:00:00 +0000", "", "The boat is ready."));
  }

  std::string path(const std::string& name) const { return (folder_ / name).string(); }

 private:
  std::filesystem::path folder_;
};

TEST_F(CommandLine, SnoozedPersonReturnsAtTheEndOrWithANewReason) {
  makeStoreWithAMailFromAda();
  const auto before = list();
  ASSERT_EQ(before["items"].size(), 1U);
  EXPECT_EQ(before["items"][0]["displayName"], "Ada Marsh");
  EXPECT_EQ(before["items"][0]["whyNow"]["kind"], "openThread");
  EXPECT_EQ(before["items"][0]["whyNow"]["evidenceLines"][0], "Last message received Mar 9, 2026.");

  const auto snoozed = run({"snooze", "ada@hill.example", "--until", "3d", "--json"});
  ASSERT_EQ(snoozed.status, 0) << snoozed.errors;
  EXPECT_EQ(json::parse(snoozed.output)["until"], "2026-03-13T12:00:00Z");
  const auto hidden = list();
  EXPECT_TRUE(hidden["items"].empty());
  EXPECT_EQ(hidden["notShown"][0]["reason"], "snoozed");
  EXPECT_EQ(list("2026-03-13T11:59:59Z")["items"].size(), 0U);
  EXPECT_EQ(list("2026-03-13T12:00:00Z")["items"].size(), 1U);

  importMail("more", mail("a2", "Ada Marsh <ada@hill.example>", "robin@orvan.example",
                          "Tue, 10 Mar 2026 09:00:00 +0000", "a1", "Nobody waits for the tide."));
  EXPECT_EQ(list()["items"].size(), 1U);
}

TEST_F(CommandLine, RefusesADecisionAboutAReasonThatChanged) {
  makeStoreWithAMailFromAda();
  const std::string oldKey = list()["items"][0]["itemKey"];
  importMail("more", mail("a2", "Ada Marsh <ada@hill.example>", "robin@orvan.example",
                          "Tue, 10 Mar 2026 09:00:00 +0000", "", "Another matter."));
  const auto refused = run({"dismiss", oldKey});
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.errors.find("A conversation with them is waiting on your reply."), std::string::npos);
  EXPECT_EQ(list()["items"].size(), 1U) << "nothing was dismissed";
  EXPECT_EQ(run({"dismiss", list()["items"][0]["itemKey"]}).status, 0);
  EXPECT_EQ(list()["notShown"][0]["reason"], "dismissed");
  EXPECT_EQ(run({"snooze", "ada@hill.example", "--until", "2026-01-01"}).status, 1);
  EXPECT_EQ(run({"snooze", "ada@hill.example", "--until", "someday"}).status, 2);
}

TEST_F(CommandLine, TellsByItsStatusWhatWentWrong) {
  EXPECT_EQ(run({"catch-up"}).status, 3) << "no store";
  EXPECT_FALSE(std::filesystem::exists(path("store.db")));
  EXPECT_EQ(run({"frobnicate"}).status, 2);
  EXPECT_EQ(run({"catch-up"}, "yesterday").status, 2);
  ASSERT_EQ(run({"init"}).status, 0);
  EXPECT_EQ(run({"init"}).status, 1) << "never over an existing store";
  EXPECT_EQ(run({"import", "--me", "robin@orvan.example", "--mbox", path("missing")}).status, 1);
  EXPECT_EQ(run({"import", "--me", "nobody", "--mbox", path("missing")}).status, 2);
  EXPECT_EQ(run({"doctor"}).status, 0);

  std::filesystem::permissions(path("key"), std::filesystem::perms::group_read, std::filesystem::perm_options::add);
  EXPECT_EQ(run({"people"}).status, 3) << "a key that others can read";
  std::filesystem::permissions(path("key"), std::filesystem::perms::group_read, std::filesystem::perm_options::remove);
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

TEST_F(CommandLine, PeopleBeyondTheCapAreNamedAsSuch) {
  makeStoreWithAMailFromAda();
  const auto capped = json::parse(run({"catch-up", "--explain", "--json", "--max-people", "0"}).output);
  EXPECT_TRUE(capped["items"].empty());
  EXPECT_EQ(capped["notShown"][0]["reason"], "beyondTheCap");
}

} // namespace
} // namespace orvan
