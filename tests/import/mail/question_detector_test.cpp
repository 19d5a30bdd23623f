#include "application/import/mail/question_detector.h"

#include <gtest/gtest.h>

#include <fstream>

#include "application/import/mail/own_words.h"

namespace orvan {
namespace {

/// Anna reads the mail, and Bob and Clara.
const ReaderNames readers{.own = {"anna", "berg"}, .others = {"bob", "stone", "clara", "weiss"}};

std::optional<std::string> questionIn(std::string_view text) {
  return firstQuestion(ownWords(text), readers);
}

/// "\n" in the file is a line break.
std::string withLineBreaks(std::string text) {
  for (auto at = text.find("\\n"); at != std::string::npos; at = text.find("\\n", at)) {
    text.replace(at, 2, "\n");
  }
  return text;
}

TEST(Questions, AreTakenFromMailsAsPeopleGetThem) {
  constexpr std::string_view arrow = " <= ";
  std::ifstream file{ORVAN_QUESTION_EXAMPLES};
  int examples = 0;
  for (std::string line; std::getline(file, line);) {
    const auto end = line.find(arrow);
    if (line.starts_with('#') || end == std::string::npos) {
      continue;
    }
    ++examples;
    EXPECT_EQ(questionIn(withLineBreaks(line.substr(end + arrow.size()))).value_or("-"), line.substr(0, end)) << line;
  }
  EXPECT_GT(examples, 150);
}

TEST(ReaderNames, AreTheWordsOfToAndCcButNotOfTheSenderOrAGroup) {
  MailMessage mail;
  mail.from = {{"Eva", "eva@example.org"}};
  mail.to = {{"Anna Berg", "a.berg@example.org"}, {"Eva", "eva@example.org"}, {"", "team@example.org"}};
  mail.cc = {{"Bob Berg", "bob.2@example.org"}};
  const auto names = readerNames(mail, {"a.berg@example.org"});
  EXPECT_EQ(names.own, (std::vector<std::string>{"anna", "berg", "berg"}));
  EXPECT_EQ(names.others, (std::vector<std::string>{"bob", "bob"}));
}

TEST(Question, IsCutBetweenTwoCharactersAsItsReaderSeesThem) {
  std::string whole = "Is it";
  for (int word = 0; word < 73; ++word) {
    whole += " abc";
  }
  EXPECT_EQ(questionIn(whole + "d?"), whole + "d?") << "299 characters";
  EXPECT_EQ(questionIn(whole + "de?"), whole + "de?") << "300 characters";
  const auto cut = questionIn(whole + "e\u0301 and so on?");
  EXPECT_EQ(cut, whole + "e\u0301…") << "exactly at the limit";
  EXPECT_EQ(questionIn(whole + "\U0001F469\u200D\U0001F52C now?"), whole + "…") << "no half of an emoji";
}

} // namespace
} // namespace orvan
