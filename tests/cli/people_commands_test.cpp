#include "application/cli/people_commands.h"

#include <gmock/gmock.h>
#include <stdlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>

#include "application/cli/command_line.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class PeopleCommands : public testing::Test {
 protected:
  struct Outcome {
    int status;
    std::string output;
    std::string errors;
  };

  PeopleCommands() {
    setenv("TZ", "UTC", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    deriveKeysQuickly();
    run({"init"});
    import({{"ada@hill.example", "Ádá Marsh", "09"},
            {"ada@mill.example", "Ada Marsh", "10"},
            {"jo@out.example", "Jo Rink", "11"}});
  }

  Outcome run(std::vector<std::string> words) const {
    words.insert(words.begin(), "orvan");
    for (const auto& word :
         {std::string{"--store"}, (folder_.path() / "store.db").string(), std::string{"--key-file"},
          (folder_.path() / "key").string(), std::string{"--as-of"}, std::string{"2026-03-10T12:00:00Z"}}) {
      words.push_back(word);
    }
    std::vector<const char*> arguments;
    std::ranges::transform(words, std::back_inserter(arguments), &std::string::c_str);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const int status = runCommandLine(static_cast<int>(arguments.size()), arguments.data());
    return {status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  }

  struct Writer {
    std::string address;
    std::string name;
    std::string hour;
  };

  void import(const std::vector<Writer>& writers) const {
    std::ofstream mbox(folder_.path() / "inbox");
    for (const auto& [address, name, hour] : writers) {
      mbox << "From mailer Tue Mar 10 00:00:00 2026\nMessage-ID: <" << hour << ">\nFrom: " << name << " <" << address
           << ">\nTo: robin@orvan.example\nDate: Mon, 09 Mar 2026 " << hour
           << ":00:00 +0000\nSubject: Boat\n\nHello.\n\n";
    }
    mbox.close();
    EXPECT_EQ(run({"import", "--me", "robin@orvan.example", "--mbox", folder_.path() / "inbox"}).status, 0);
  }

  json people() const { return json::parse(run({"people", "--json"}).output); }

 private:
  ScratchFolder folder_;
};

TEST_F(PeopleCommands, ListAndFindPeopleAndNameTheNearest) {
  EXPECT_EQ(people().size(), 3U);
  const auto found = json::parse(run({"people", "ada mar", "--json"}).output);
  ASSERT_EQ(found.size(), 2U) << "with or without accents";
  for (const auto& person : found) {
    EXPECT_EQ(person.at("mailsFrom"), 1);
    EXPECT_THAT(person.at("lastContactAt").get<std::string>(), HasSubstr("2026-03-09T"));
  }
  EXPECT_EQ(run({"why", "ADA MARSH"}).status, 0) << "one is called so, the other only without accents";
  const auto unknown = run({"why", "jo rikn"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.output, "  Jo Rink  jo@out.example\n");
  EXPECT_THAT(unknown.errors, testing::Not(HasSubstr("Rink")));
}

TEST_F(PeopleCommands, PutRightWhoIsWhoForGoodUnlessTakenBack) {
  EXPECT_THAT(run({"people", "suggest"}).output, HasSubstr("1  "));
  const auto merged = run({"people", "suggest", "1"});
  EXPECT_THAT(merged.output, HasSubstr("are one person now"));
  ASSERT_EQ(people().size(), 2U);
  EXPECT_EQ(run({"people", "rename", "ada@mill.example", " Ada of the Hill "}).status, 0);
  import({{"ada@mill.example", "A. Marsh", "12"}, {"ada@hill.example", "Other", "13"}});
  EXPECT_EQ(json::parse(run({"people", "of the hill", "--json"}).output).at(0).at("mailsFrom"), 4);
  EXPECT_THAT(run({"people", "rename", "ada@mill.example", ""}).output,
              HasSubstr("is called Ada Marsh now, as mail says"));
  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_EQ(json::parse(run({"people", "of the hill", "--json"}).output).size(), 1U);

  EXPECT_EQ(run({"people", "merge", "ada@mill.example", "ada@hill.example"}).status, 1) << "one person already";
  EXPECT_EQ(run({"people", "merge", "jo@out.example"}).status, 2);
  EXPECT_EQ(run({"people", "split", "jo@out.example"}).status, 1) << "the only address";
  EXPECT_EQ(run({"people", "split", "nobody@out.example"}).status, 1);
  EXPECT_EQ(run({"people", "split", "ada@mill.example"}).status, 0);
  EXPECT_EQ(people().size(), 3U);
  EXPECT_THAT(run({"people", "suggest"}).output, HasSubstr("nobody who looks like"));

  EXPECT_EQ(run({"undo"}).status, 0);
  EXPECT_EQ(people().size(), 2U);
  EXPECT_EQ(run({"undo"}).status + run({"undo"}).status, 0) << "the new name, and that they are one";
  EXPECT_EQ(people().size(), 3U);
  EXPECT_EQ(json::parse(run({"people", "of the hill", "--json"}).output), json::array());
}

} // namespace
} // namespace orvan
