#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "application/import/mail/mail_source_error.h"
#include "application/import/mail/maildir_source.h"
#include "application/import/mail/mbox_source.h"
#include "application/import/mail/question_detector.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view separator = "From zoe@example.org Thu Mar  5 09:15:00 2026\n";

std::string mail(const std::string& subject, const std::string& body = "Hello.\n") {
  return "From: zoe@example.org\nDate: Thu, 5 Mar 2026 09:15:00 +0000\nSubject: " + subject + "\n\n" + body;
}

/// The same in an mbox file.
std::string entry(const std::string& subject, const std::string& body = "Hello.\n") {
  return std::string{separator} + mail(subject, body);
}

std::string withCrLf(const std::string& text) {
  std::string lines;
  for (const char byte : text) {
    lines += byte == '\n' ? "\r\n" : std::string{byte};
  }
  return lines;
}

/// One word per item: the subject of a message, or "(description)" of a skip.
std::vector<std::string> outlineOf(MailSource& source) {
  std::vector<std::string> outline;
  while (const auto item = source.next()) {
    const auto* message = std::get_if<MailMessage>(&*item);
    outline.push_back(message != nullptr ? message->subject
                                         : "(" + std::string{description(std::get<MailSkip>(*item).reason)} + ")");
  }
  return outline;
}

class Mailbox : public testing::Test {
 protected:
  std::filesystem::path write(const std::string& name, std::string_view content) const {
    const auto file = path() / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream{file, std::ios::binary} << content;
    return file;
  }
  std::filesystem::path path() const { return folder_.path(); }

  std::vector<std::string> outline(const std::string& mbox) const {
    MboxSource source{write("inbox", mbox)};
    return outlineOf(source);
  }

  static MailMessage firstOf(MailSource&& source) { return std::get<MailMessage>(source.next().value()); }
  std::optional<std::string> questionIn(const std::string& body) const {
    const auto words = firstOf(MboxSource{write("inbox", entry("one", body))}).ownWords;
    return words ? firstQuestion(*words) : std::nullopt;
  }

  template <typename Source>
  static std::error_code openingErrorOf(const std::filesystem::path& mailbox) {
    return faultOf([&] { const Source source{mailbox}; });
  }

 private:
  ScratchFolder folder_;
};

TEST_F(Mailbox, OfMboxFormBeginsAMailAtAFromLineAfterABlankLine) {
  EXPECT_THAT(
      outline(entry("one") + "\n" + entry("two", "") + "\n" + entry("three", "A line.\nFrom here on, all is body.\n")),
      ElementsAre("one", "two", "three"));
  EXPECT_THAT(outline(entry("one", "\nFROM here\n\n From there\n\n>From elsewhere\n\nFromage\n")), ElementsAre("one"));
  EXPECT_THAT(outline(entry("one", "\nFrom here on, see\nhttp://a.example\n\nFrom now\n")), ElementsAre("one"));
  EXPECT_THAT(outline("\n\n" + entry("one")), ElementsAre("one")) << "blank lines before the first mail are nothing";
  EXPECT_THAT(outline(withCrLf(entry("one") + "\n" + entry("two"))), ElementsAre("one", "two"));
  EXPECT_THAT(outline(entry("one") + "\n" + entry("two", "no line end")), ElementsAre("one", "two"));
  EXPECT_THAT(outline(std::string{separator}), ElementsAre("(no sender address)"));
  EXPECT_THAT(outline(""), IsEmpty());
}

TEST_F(Mailbox, OfMboxFormBeginsAMailWithoutABlankLineOnlyWhereNothingElseCanBeMeant) {
  for (const char* end :
       {"- Mon Jan  1 00:00:00 2018", "\"z o\"@b Mon Jan 1 9:05 2018\r", "a@b Mon Jan  1 00:00:00 2018 +0100",
        "a@b Mon Jan  1 00:00:00 CEST 2018", "a@b Mon Jan 01 00:00:00 GMT 2018 GMT"}) {
    EXPECT_THAT(outline(entry("one") + "From " + end + "\n" + mail("two") + "From " + end + "\n" + mail("three")),
                ElementsAre("one", "two", "three"))
        << end;
  }
  for (const char* end : {"Mon Jan  1 00:00:00 2018", "a@b Mon Jan  1 00:00:00 18", "a@b Mon Jan  1 00:00:00 2018, ok?",
                          "a@b Jan  1 00:00:00 2018", "a@b Mon Jan  1 noon 2018", "a@b"}) {
    EXPECT_THAT(outline(entry("one") + "From " + end + "\n" + mail("two")), ElementsAre("one")) << end;
  }
  EXPECT_EQ(questionIn("As he wrote,\n" + std::string{separator} + "could we meet?\n"),
            "From zoe@example.org Thu Mar 5 09:15:00 2026 could we meet?");
}

TEST_F(Mailbox, GivesTheWordsOfMailThatMayAskTheUser) {
  const auto asks = [this](const std::string& addresses) {
    const auto file =
        write("inbox", std::string{separator} + addresses + "Date: Thu, 5 Mar 2026 09:15:00 +0000\n\nWhere?\n");
    return firstOf(MboxSource{file, {"me@example.org"}}).ownWords.has_value();
  };
  EXPECT_TRUE(asks("From: zoe@example.org\nTo: Me@example.org, list@example.org\n"));
  EXPECT_FALSE(asks("From: me@example.org\nTo: zoe@example.org\n"));
  EXPECT_FALSE(asks("From: zoe@example.org\nTo: ben@example.org\nCc: me@example.org\n"));
}

TEST_F(Mailbox, OfMboxFormGivesEscapedLinesAsTheyWereSent) {
  EXPECT_EQ(questionIn("\n>From Monday on, are you away?\n"), "From Monday on, are you away?");
  EXPECT_EQ(questionIn("\n>>From Monday on, are you away?\n"), std::nullopt) << "a quoted line, escaped";
  EXPECT_EQ(questionIn("\n>Fromage, would you like any?\n"), std::nullopt) << "not escaped, but quoted";
}

TEST_F(Mailbox, OfMboxFormIsReadPastWhatIsNoMailAndPastAnySize) {
  const std::string notMbox = "(text that is not in mbox form)";
  EXPECT_THAT(outline(std::string("\x7f\0\0binary\n\nmore", 15)), ElementsAre(notMbox));
  EXPECT_THAT(outline("Some notes.\n\n" + entry("one")), ElementsAre(notMbox, "one"));
  EXPECT_THAT(outline("From a\nDate: Thu, 5 Mar 2026 09:15:00 +0000\n\n\n" + entry("one") +
                      "\nFrom b\nFrom: b@example.org\n\n"),
              ElementsAre("(no sender address)", "one", "(no readable date)"));
  EXPECT_THAT(outline(entry("one") + "\n" + entry("two").substr(0, 80)), ElementsAre("one", "(no readable date)"))
      << "cut off within the header";

  const std::string longLine(8'000'000, 'x');
  EXPECT_THAT(outline(entry("one", longLine + "\nFrom here\n" + longLine) + "\n\n" + entry("two")),
              ElementsAre("one", "two"));
  EXPECT_THAT(outline("From " + longLine + "\n" + mail("one")), ElementsAre("one")) << "a separator of any length";
  EXPECT_THAT(outline("From a\nX-Long: " + longLine + "\n" + mail("one") + "\n" + entry("two")),
              ElementsAre("(no sender address)", "two"))
      << "header lines after the limit are dropped";
}

TEST_F(Mailbox, TellsHowFarItIsRead) {
  const auto content = entry("one") + "\n" + entry("one");
  MboxSource source{write("inbox", content)};
  EXPECT_EQ(source.amountTotal(), content.size());
  EXPECT_EQ(source.amountRead(), 0U);
  const auto first = source.next();
  EXPECT_EQ(source.amountRead(), entry("one").size() + 1 + separator.size());
  EXPECT_EQ(first, source.next()) << "a copy is given as often as it is there";
  EXPECT_EQ(source.amountRead(), content.size());
  EXPECT_EQ(source.next(), std::nullopt);
  EXPECT_EQ(source.next(), std::nullopt);
}

TEST_F(Mailbox, OfMaildirFormGivesDeliveredMailsOfAllFoldersInTheOrderOfTheirPaths) {
  for (const char* name : {"new/3", "cur/1:2,RS", "cur/2:2,DS", "cur/3:2,ST", "cur/4!2,T", "cur/5T:2,S", "tmp/0",
                           ".Sent/cur/1:2,S", ".Archive.2025/new/1", "cur/.hidden"}) {
    write(name, mail(name));
  }
  std::filesystem::create_symlink("nowhere", path() / "cur/6:2,S");
  std::filesystem::create_directory(path() / "cur/7");
  write("cur/8", "");
  MaildirSource source{path()};
  EXPECT_THAT(outlineOf(source), ElementsAre("cur/1:2,RS", "(draft)", "(in the trash)", "(in the trash)", "cur/5T:2,S",
                                             "(file that cannot be read)", "(file that cannot be read)",
                                             "(no sender address)", "new/3", ".Archive.2025/new/1", ".Sent/cur/1:2,S"));
}

TEST_F(Mailbox, RecognisesAMailWithoutIdInEitherForm) {
  write("cur/1", mail("no id"));
  const auto inMbox = write("inbox", withCrLf("From zoe\nStatus: RO\nX-Mozilla-Status: 0001\n" + mail("no id")));
  const auto other = write("other", entry("another"));
  EXPECT_EQ(firstOf(MaildirSource{path()}).messageID, firstOf(MboxSource{inMbox}).messageID);
  EXPECT_NE(firstOf(MboxSource{inMbox}).messageID, firstOf(MboxSource{other}).messageID);
}

TEST_F(Mailbox, SaysWhyItCannotBeOpened) {
  const auto file = write("file", "");
  EXPECT_EQ(openingErrorOf<MboxSource>(path()), MailSourceError::isAFolder);
  EXPECT_EQ(openingErrorOf<MboxSource>(path() / "absent"), MailSourceError::notFound);
  EXPECT_EQ(openingErrorOf<MaildirSource>(path()), MailSourceError::notAMaildir);
  EXPECT_EQ(openingErrorOf<MaildirSource>(file), MailSourceError::isAFile);
  EXPECT_EQ(openingErrorOf<MaildirSource>(path() / "absent"), MailSourceError::notFound);
}

} // namespace
} // namespace orvan
