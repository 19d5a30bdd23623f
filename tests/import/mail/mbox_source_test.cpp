#include "application/import/mail/mbox_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "application/import/mail/mail_source_error.h"
#include "scratch_mailbox.h"

namespace orvan {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string mail(const std::string& subject, const std::string& body = "Hello.\n") {
  return "From zoe@example.org Thu Mar  5 09:15:00 2026\nFrom: zoe@example.org\nDate: Thu, 5 Mar 2026 09:15:00 +0000\n"
         "Subject: " +
         subject + "\n\n" + body;
}

std::string withCrLf(const std::string& text) {
  std::string lines;
  for (const char byte : text) {
    lines += byte == '\n' ? "\r\n" : std::string{byte};
  }
  return lines;
}

class MboxFile : public testing::Test {
 protected:
  std::vector<std::string> outline(const std::string& content) const {
    MboxSource source{mailbox_.write("inbox", content)};
    return outlineOf(source);
  }

  /// The first mail's question.
  std::optional<std::string> question(const std::string& content) const {
    MboxSource source{mailbox_.write("inbox", content)};
    return std::get<MailMessage>(source.next().value_or(MailSkip{MailSkipReason::unreadable})).question;
  }

  ScratchMailbox mailbox_;
};

TEST_F(MboxFile, BeginsAMailOnlyAtAFromLineAfterABlankLine) {
  EXPECT_THAT(
      outline(mail("one") + "\n" + mail("two", "") + "\n" + mail("three", "A line.\nFrom here on, all is body.\n")),
      ElementsAre("one", "two", "three"));
  EXPECT_THAT(outline(mail("one", "\nFROM here\n\n From there\n\n>From elsewhere\n\nFromage\n")), ElementsAre("one"));
  EXPECT_THAT(outline("\n\n" + mail("one")), ElementsAre("one")) << "blank lines before the first mail are nothing";
}

TEST_F(MboxFile, GivesACopyOfAMailAsOftenAsItIsThere) {
  MboxSource source{mailbox_.write("inbox", mail("one") + "\n" + mail("one"))};
  const auto first = source.next();
  EXPECT_EQ(first, source.next());
  EXPECT_EQ(source.next(), std::nullopt);
}

TEST_F(MboxFile, ReadsEveryKindOfLineEnd) {
  EXPECT_THAT(outline(withCrLf(mail("one") + "\n" + mail("two"))), ElementsAre("one", "two"));
  EXPECT_THAT(outline(mail("one") + "\n" + mail("two", "no line end")), ElementsAre("one", "two"));
  EXPECT_THAT(outline("From zoe@example.org Thu Mar  5 09:15:00 2026"), ElementsAre("(no sender address)"));
  EXPECT_THAT(outline(""), IsEmpty());
}

TEST_F(MboxFile, ReadsEscapedLinesAsTheyWereSent) {
  EXPECT_EQ(question(mail("one", "\n>From Monday on, are you away?\n")), "From Monday on, are you away?");
  EXPECT_EQ(question(mail("one", "\n>>From Monday on, are you away?\n")), std::nullopt) << "a quoted line, escaped";
  EXPECT_EQ(question(mail("one", "\n>Fromage, would you like any?\n")), std::nullopt) << "not escaped, but quoted";
}

TEST_F(MboxFile, CountsWhatIsNoMailAndGoesOn) {
  EXPECT_THAT(outline(std::string("\x7f"
                                  "ELF\0\0binary\n",
                                  13) +
                      "\nmore"),
              ElementsAre("(text that is not in mbox form)"));
  EXPECT_THAT(outline("Some notes.\n\n" + mail("one")), ElementsAre("(text that is not in mbox form)", "one"));
  EXPECT_THAT(
      outline("From a\nDate: Thu, 5 Mar 2026 09:15:00 +0000\n\n\n" + mail("one") + "\nFrom b\nFrom: b@example.org\n\n"),
      ElementsAre("(no sender address)", "one", "(no readable date)"));
  const std::string whole = mail("one");
  EXPECT_THAT(outline(mail("one") + "\n" + whole.substr(0, whole.find("Date:") + 10)),
              ElementsAre("one", "(no readable date)"))
      << "cut off within the header";
}

TEST_F(MboxFile, FindsTheNextMailAfterLinesAndBodiesOfAnySize) {
  std::string longLine;
  longLine.resize(10'000'000, 'x');
  EXPECT_THAT(outline(mail("one", longLine + "\nFrom here\n" + longLine) + "\n\n" + mail("two")),
              ElementsAre("one", "two"));
  EXPECT_THAT(outline("From " + longLine + mail("one").substr(4)), ElementsAre("one"))
      << "the separator takes its line, however long";
  std::string manyLines;
  for (int line = 0; line < 400'000; ++line) {
    manyLines += "Twelve bytes\n";
  }
  EXPECT_THAT(outline(mail("one", manyLines) + "\n" + mail("two")), ElementsAre("one", "two"));
  EXPECT_THAT(
      outline("From a\nX-Long: " + longLine + "\n" + mail("one").substr(mail("").find('\n') + 1) + "\n" + mail("two")),
      ElementsAre("(no sender address)", "two"))
      << "header lines after the limit are dropped";
}

TEST_F(MboxFile, TellsHowFarItIs) {
  const auto content = mail("one") + "\n" + mail("two");
  MboxSource source{mailbox_.write("inbox", content)};
  EXPECT_EQ(source.bytesTotal(), content.size());
  EXPECT_EQ(source.bytesRead(), 0U);
  source.next();
  EXPECT_EQ(source.bytesRead(), mail("one").size() + 1);
  source.next();
  EXPECT_EQ(source.bytesRead(), content.size());
  EXPECT_EQ(source.next(), std::nullopt);
  EXPECT_EQ(source.next(), std::nullopt);
}

TEST_F(MboxFile, SaysWhyItCannotBeOpened) {
  EXPECT_EQ(openingErrorOf<MboxSource>(mailbox_.path()), make_error_code(MailSourceError::isAFolder));
  EXPECT_EQ(openingErrorOf<MboxSource>(mailbox_.path() / "absent"), make_error_code(MailSourceError::notFound));
}

} // namespace
} // namespace orvan
