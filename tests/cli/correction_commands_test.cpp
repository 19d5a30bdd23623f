#include "application/cli/correction_commands.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "OrvanSpineCore/key_file.h"
#include "application/cli/command_line.h"
#include "application/store/application_store.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using nlohmann::json;

constexpr const char* dayOfCorrections = "2026-03-10T12:00:00Z";

/// A terminal that stands for this program's own until its end. What is typed waits for whoever reads it.
class Terminal {
 public:
  explicit Terminal(const std::string& typed) {
    openpty(&keyboard_, &screen_, nullptr, nullptr, nullptr);
    [[maybe_unused]] const auto written = write(keyboard_, typed.data(), typed.size());
    for (int standard = 0; standard < 3; ++standard) {
      before_.at(static_cast<std::size_t>(standard)) = dup(standard);
      dup2(screen_, standard);
    }
  }
  ~Terminal() {
    for (int standard = 0; standard < 3; ++standard) {
      dup2(before_.at(static_cast<std::size_t>(standard)), standard);
      close(before_.at(static_cast<std::size_t>(standard)));
    }
    close(screen_);
    close(keyboard_);
  }

  std::string shown() const {
    fflush(stdout);
    fcntl(keyboard_, F_SETFL, O_NONBLOCK);
    std::string text;
    std::array<char, 4096> part{};
    for (auto length = read(keyboard_, part.data(), part.size()); length > 0;
         length = read(keyboard_, part.data(), part.size())) {
      text.append(part.data(), static_cast<std::size_t>(length));
    }
    return text;
  }

 private:
  int keyboard_ = -1;
  int screen_ = -1;
  std::array<int, 3> before_{};
};

class CorrectionCommands : public testing::Test {
 protected:
  struct Outcome {
    int status;
    std::string text;
  };

  CorrectionCommands() {
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    deriveKeysQuickly();
    run({"init"});
  }

  Outcome run(std::vector<std::string> words, const std::string& asOf = dayOfCorrections) const {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runWords(std::move(words), asOf);
    const auto output = testing::internal::GetCapturedStdout();
    return {status, output + testing::internal::GetCapturedStderr()};
  }
  json read(std::vector<std::string> words, const std::string& asOf = dayOfCorrections) const {
    words.emplace_back("--json");
    return json::parse(run(std::move(words), asOf).text);
  }

  Outcome runOnATerminal(const std::string& answer, std::vector<std::string> words) const {
    const Terminal terminal(answer + "\n");
    const int status = runWords(std::move(words), dayOfCorrections);
    return {status, terminal.shown()};
  }

  /// Mail to Robin, who owns the store.
  void import(const std::string& mails) const {
    std::ofstream(path("mbox")) << mails;
    ASSERT_EQ(run({"import", "--me", "robin@orvan.example", "--mbox", path("mbox")}).status, 0);
  }

  static std::string mail(const std::string& id, const std::string& at, const std::string& text = "The boat is ready.",
                          const std::string& from = "Ada Marsh <ada@hill.example>",
                          const std::string& to = "robin@orvan.example", const std::string& inReplyTo = "") {
    return "From mailer Tue Mar 10 00:00:00 2026\nMessage-ID: <" + id + ">\nFrom: " + from + "\nTo: " + to +
           "\nDate: " + at + ":00 +0000\nSubject: The boat\n" +
           (inReplyTo.empty() ? "" : "In-Reply-To: <" + inReplyTo + ">\n") + "\n" + text + "\n\n";
  }

  std::string path(const std::string& name) const { return (folder_.path() / name).string(); }

 private:
  int runWords(std::vector<std::string> words, const std::string& asOf) const {
    words.insert(words.begin(), {"orvan", "--store", path("store.db"), "--key-file", path("key"), "--as-of", asOf});
    std::vector<const char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments), &std::string::c_str);
    return runCommandLine(static_cast<int>(arguments.size()), arguments.data());
  }

  ScratchFolder folder_;
};

TEST_F(CorrectionCommands, AskSomebodyAtATerminalBeforeWhatTheyDidNotSeeOrCannotTakeBack) {
  import(mail("a1", "Mon, 09 Mar 2026 08:00"));
  const auto unseen = runOnATerminal("n", {"snooze", "Ada Marsh", "--until", "3d"});
  EXPECT_EQ(unseen.status, 1);
  EXPECT_TRUE(
      unseen.text.contains("waiting on your reply. Last message received Mar 9, 2026.\r\nThis reason was not "
                           "shown to you yet. Snooze it until Mar 13, 2026? [y/N]"))
      << unseen.text;
  EXPECT_TRUE(read({"history"}).empty()) << "no is no";

  const auto elsewhere = ApplicationStore::open(
      path("store.db"), CredentialVault(std::make_shared<KeyFile>(path("key"))), ApplicationStore::Access::write);
  elsewhere->write([this](Connection& /*writing*/) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_TRUE(runOnATerminal("", {"catch-up"}).text.contains("Ada Marsh"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds{4}) << "a list waits for nobody";
  });
  EXPECT_TRUE(runOnATerminal("n", {"dismiss", "Ada Marsh"}).text.contains("not shown to you yet"));
  EXPECT_EQ(runOnATerminal("", {"catch-up"}).status, 0);
  const auto seen = runOnATerminal("n", {"snooze", "Ada Marsh", "--until", "3d"});
  EXPECT_TRUE(seen.text.contains("Snoozed until Mar 13, 2026: Ada Marsh")) << seen.text;
  EXPECT_EQ(run({"snooze", "Ada Marsh", "--until", "5d"}).status, 0);
  EXPECT_TRUE(run({"undo", "1"}).text.contains("by action 2; take that back first"));
  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_EQ(read({"records", "Ada Marsh"})[0]["until"], "2026-03-13T12:00:00Z") << "the earlier snooze is back";
  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_EQ(read({"catch-up"})["items"].size(), 1U);

  import(mail("a2", "Mon, 09 Mar 2026 09:00"));
  const auto changed = runOnATerminal("y", {"dismiss", "Ada Marsh"});
  EXPECT_TRUE(changed.text.contains("has changed since it was shown to you. Dismiss it for good?")) << changed.text;
  EXPECT_TRUE(changed.text.contains("Dismissed for good: Ada Marsh")) << changed.text;
  EXPECT_TRUE(run({"undo", "3"}).text.contains("stays so for good"));
  const auto final = runOnATerminal("", {"resolve", "Ada Marsh", "-y"});
  EXPECT_TRUE(final.text.contains("An earlier decision is final") && !final.text.contains("[y/N]")) << final.text;
  EXPECT_EQ(read({"history"}).size(), 3U) << "what changed nothing is none";
}

TEST_F(CorrectionCommands, KeepWhatIsHiddenOutOfSightUntilItIsShownAgain) {
  import(mail("a1", "Mon, 09 Mar 2026 08:00"));
  const std::string itemKey = read({"catch-up"})["items"][0]["itemKey"];
  const std::string key = read({"hide", "Ada Marsh"})["key"];
  EXPECT_TRUE(run({"hide", "ada@hill.example"}).text.starts_with("Hidden already, since Mar 10, 2026: Ada Marsh"));
  EXPECT_EQ(read({"catch-up", "--explain"})["notShown"][0]["reason"], "hidden");
  EXPECT_TRUE(run({"why", "Ada Marsh"}).text.starts_with("That person is hidden"));
  EXPECT_EQ(run({"show", "Ada Marsh"}).status, 1);
  EXPECT_EQ(read({"unhide", "Ada Marsh"})["key"], key);
  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_EQ(read({"hidden"}).size(), 1U);
  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_TRUE(read({"hidden"}).empty());

  EXPECT_EQ(read({"hide", itemKey})["scope"], "conversation");
  EXPECT_TRUE(read({"catch-up"})["items"].empty());
  EXPECT_EQ(read({"unhide", "The boat"})["personKey"], read({"people"})[0]["personKey"]);
  import(mail("m1", "Mon, 09 Mar 2026 09:00", "Hello.", "mail <mail@hill.example>"));
  EXPECT_TRUE(run({"hide", "mail"}).text.contains("Several things go by that; name the one you mean: mail-"));
  EXPECT_EQ(run({"hide", "mail@hill.example"}).status, 0);
  EXPECT_EQ(read({"catch-up"})["items"].size(), 1U);
  EXPECT_EQ(run({"unhide", "Ada Marsh"}).status, 1);
}

TEST_F(CorrectionCommands, KeepWhatWasWrongThroughLaterImports) {
  const std::string robin = "Robin <robin@orvan.example>";
  const auto known =
      mail("r1", "Thu, 01 Jan 2026 08:00", "The boat?", robin, "ada@hill.example") +
      mail("a1", "Wed, 25 Feb 2026 08:00", "Could you send me the drawings of the boat?") +
      mail("a2", "Thu, 26 Feb 2026 08:00", "It is ready.", "Ada Marsh <ada@hill.example>", "robin@orvan.example", "a1");
  import(known);
  const auto kind = [this] {
    const auto items = read({"catch-up"})["items"];
    return items.empty() ? "" : items[0]["whyNow"]["kind"].get<std::string>();
  };
  EXPECT_EQ(kind(), "openThread");
  EXPECT_EQ(read({"wrong", "Ada Marsh"})["wrong"], "notWaiting");
  EXPECT_EQ(kind(), "commitment") << "the question in it";
  EXPECT_EQ(read({"wrong", "Ada Marsh"})["wrong"], "noQuestion");
  import(known);
  EXPECT_NE(kind(), "openThread");
  EXPECT_NE(kind(), "commitment");
  EXPECT_EQ(read({"bundle", "Ada Marsh"})["userCorrectionCountInWindow"], 2);
}

TEST_F(CorrectionCommands, DoNotTakeASettledMailForSilenceNorAskWhatWasAnswered) {
  const std::string robin = "Robin <robin@orvan.example>";
  const std::string kim = "Kim Oar <kim@hill.example>";
  import(mail("r1", "Mon, 26 Jan 2026 08:00", "The boat?", robin, "ada@hill.example") +
         mail("a1", "Wed, 11 Feb 2026 08:00") +
         mail("r2", "Sun, 08 Feb 2026 08:00", "Hello", robin, "kim@hill.example") +
         mail("k1", "Mon, 09 Feb 2026 08:00", "Could you send me the drawings of the boat?", kim));
  const std::string then = "2026-02-12T12:00:00Z";
  EXPECT_EQ(read({"wrong", "Ada Marsh"}, then)["wrong"], "notWaiting");
  EXPECT_EQ(read({"wrong", "Kim Oar"}, then)["wrong"], "noQuestion");
  import(mail("a2", "Fri, 27 Feb 2026 08:00") +
         mail("r3", "Fri, 13 Feb 2026 08:00", "Here.", robin, "kim@hill.example", "k1"));
  const auto list = read({"catch-up"})["items"];
  ASSERT_EQ(list.size(), 1U);
  EXPECT_EQ(list[0]["whyNow"]["evidenceLines"][0], "Last message received Feb 27, 2026.");
  EXPECT_TRUE(read({"bundle", "Ada Marsh"})["changedContext"].is_null()) << "there was a mail in between";
  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_TRUE(read({"bundle", "Kim Oar"})["commitments"].empty()) << "answered meanwhile";
}

} // namespace
} // namespace orvan
