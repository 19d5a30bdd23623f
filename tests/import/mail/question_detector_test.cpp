#include "application/import/mail/question_detector.h"

#include <gtest/gtest.h>

namespace orvan {
namespace {

void expectNone(std::initializer_list<const char*> texts) {
  for (const char* text : texts) {
    EXPECT_EQ(firstQuestion(text), std::nullopt) << text;
  }
}

TEST(Question, IsTheFirstSentenceThatEndsInAQuestionMark) {
  EXPECT_EQ(firstQuestion("Hi Zoë,\n\nthe plan is ready. Could you look\nat it by Friday? Is that fine?\n"),
            "Could you look at it by Friday?");
  EXPECT_EQ(firstQuestion("Great! Shall we meet Dr. Smith at 3.30 p.m. (or later)?"),
            "Shall we meet Dr. Smith at 3.30 p.m. (or later)?");
  EXPECT_EQ(firstQuestion("Agenda:\n- budget\n- who brings cake?!\n"), "who brings cake?!");
  EXPECT_EQ(firstQuestion("Tu viens demain\u00a0?"), "Tu viens demain ?");
  EXPECT_EQ(firstQuestion("¿Vienes mañana?"), "¿Vienes mañana?");
  EXPECT_EQ(firstQuestion("The shop (was it open?) is near."), "The shop (was it open?");
  EXPECT_EQ(firstQuestion("我看过了。你明天来吗？好的。"), "你明天来吗？");
  EXPECT_EQ(firstQuestion("شكرا. هل أنت بخير؟ نعم"), "هل أنت بخير؟");
  EXPECT_EQ(firstQuestion("Was that it?\nNo"), "Was that it?");
}

TEST(Question, NeedsWordsAndAMarkThatAsks) {
  expectNone({"", "What is this", "??", "Really?", "(?)", "Yes. ?!", "We meet on Monday (?) then.", "A vitamin?C mix",
              "See https://example.org/a?id=1 for more.", "Open <http://example.org/search?q=two words>",
              "www.example.org/find?", "mailto:zoe@example.org?subject=a b"});
  EXPECT_EQ(firstQuestion("Did you read https://example.org/a?id=1&b=2 already? Bye"),
            "Did you read https://example.org/a?id=1&b=2 already?");
}

TEST(Question, IsNotTakenFromAQuotedMail) {
  expectNone({"> Are you there?\nYes.", "  > > Are you there?", "| Are you there?",
              "Fine.\n\nOn Thu, 5 Mar 2026 at 09:15, Can you <can@example.org>\nwrote:\n\n> Are you there?\n",
              "Fine.\n\nAm 05.03.2026 um 09:15 schrieb Zoë:\n> Bist du da?\n",
              "Bien.\n\nLe 5 mars 2026 à 09:15, Zoë a écrit :\n\nEst-ce que tu es là ?\n",
              "Fine.\n\n-----Original Message-----\nAre you there?",
              "Fine.\n--------- Forwarded message ---------\nAre you there?",
              "Fine.\n________________________________\nAre you there?", "Begin forwarded message:\n\nAre you there?",
              "Fine.\n\nFrom: Zoë\nSent: Thursday\nTo: Ana\n\nAre you there?",
              "Gut.\n\n*Von:* Zoë\n*Gesendet:* Donnerstag\n\nBist du da?", "Regards\n-- \nZoë\nWhy not write to me?",
              "Regards\r\n--\r\nWhy not write to me?"});
}

TEST(Question, IsFoundBetweenAndBelowQuotations) {
  EXPECT_EQ(firstQuestion("On Thu, 5 Mar 2026, Zoë wrote:\n> Are you there?\n\nYes. And where are you?\n> Bye"),
            "And where are you?");
  EXPECT_EQ(firstQuestion("From: the heart, can I ask you something?\n"), "From: the heart, can I ask you something?")
      << "one label is no head of a mail";
  EXPECT_EQ(firstQuestion("As Zoë wrote:\nwe are late. Can you help?\n"), "Can you help?");
}

TEST(Question, IsCutBetweenTwoCharactersAsItsReaderSeesThem) {
  std::string whole = "Is it";
  for (int word = 0; word < 73; ++word) {
    whole += " abc";
  }
  EXPECT_EQ(firstQuestion(whole + "d?"), whole + "d?") << "299 characters";
  EXPECT_EQ(firstQuestion(whole + "de?"), whole + "de?") << "300 characters";
  const auto cut = firstQuestion(whole + "e\u0301 and so on?");
  EXPECT_EQ(cut, whole + "e\u0301…") << "exactly at the limit";
  EXPECT_EQ(firstQuestion(whole + "\U0001F469\u200D\U0001F52C now?"), whole + "…") << "no half of an emoji";
}

} // namespace
} // namespace orvan
