#include "OrvanRelationshipAttention/follow_up/internal/reminder_text.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace orvan::internal {
namespace {

std::string repeated(std::string_view text, std::size_t count) {
  std::string all;
  while (count-- > 0) {
    all += text;
  }
  return all;
}

TEST(ReminderText, IsTheUsersWordsWithSingleBlanksAndACapital) {
  EXPECT_EQ(reminderText("  call   about\nthe lease "), "Call about the lease");
  EXPECT_EQ(reminderText("\u00a0call\u3000them\u2028back\r\n"), "Call them back");
  EXPECT_EQ(reminderText(" \n\t\u2003"), "");
}

TEST(ReminderText, LeavesFirstWordsThatAreMoreThanLowercaseLettersAlone) {
  for (const char* text : {"iPhone repair", "3pm call", "Sarah", "call, then mail", "don't forget", "don\u2019t",
                           "電話", "\U0001F4DE call", "ª", "4th"}) {
    EXPECT_EQ(reminderText(text), text);
  }
}

TEST(ReminderText, CapitalizesWholeCharactersHoweverManyItTakes) {
  EXPECT_EQ(reminderText("éclair for Zoë"), "Éclair for Zoë");
  EXPECT_EQ(reminderText("e\u0301clair"), "E\u0301clair") << "a letter with a combining mark";
  EXPECT_EQ(reminderText("ßa"), "SSa") << "the capital is longer than the letter";
  EXPECT_EQ(reminderText("\ufb01nd"), "FInd");
  EXPECT_EQ(reminderText("izmir"), "Izmir") << "no language's own rules";
  EXPECT_EQ(reminderText("aªºĸʰ call"), "Aªºĸʰ call") << "lowercase letters without a capital";
}

TEST(ReminderText, IsShortenedByCharactersAsReadersCountThem) {
  EXPECT_EQ(reminderText(repeated("x", 120)), "X" + repeated("x", 119));
  EXPECT_EQ(reminderText("x " + repeated("y", 119)), "X " + repeated("y", 117) + "\u2026");
  EXPECT_EQ(reminderText(repeated("x", 121)), repeated("x", 119) + "\u2026")
      << "a first word that was cut is not one in letters throughout";
  const std::string family = "\U0001F469\u200D\U0001F469\u200D\U0001F467";
  EXPECT_EQ(reminderText(repeated(family, 120)), repeated(family, 120));
  EXPECT_EQ(reminderText(repeated(family, 121)), repeated(family, 119) + "\u2026");
  const std::string accented = "e\u0301";
  EXPECT_EQ(reminderText("X" + repeated(accented, 130)), "X" + repeated(accented, 118) + "\u2026");
  EXPECT_EQ(reminderText(repeated("X", 118) + " " + repeated("y", 80)), repeated("X", 118) + "\u2026")
      << "no blank before the ellipsis";
}

TEST(ReminderText, IsFoundInTheContextThatTheUserGave) {
  EXPECT_EQ(userFollowUpOf(R"({"user_follow_up": "call", "other": [1, {"user_follow_up": 2}]})"), "call");
  EXPECT_EQ(userFollowUpOf(R"({"n": 1e999, "user_follow_up": "1234 \"5678", "m": [-1234567e-89012, 123.456]})"),
            "1234 \"5678")
      << "whatever the size of a number";
  EXPECT_EQ(userFollowUpOf(R"({"other": "\\"})"), std::nullopt);
  EXPECT_EQ(userFollowUpOf(R"({"user_follow_up": null})"), std::nullopt);
  for (const char* text : {"", "call", "[]", "\"call\"", "null", R"({"user_follow_up": 3})", R"({"user_follow_up": "a)",
                           "{\"user_follow_up\": \"\xff\"}", R"({"user_follow_up": "a", "n": 0123})"}) {
    EXPECT_THROW(userFollowUpOf(text), std::exception) << text;
  }
}

} // namespace
} // namespace orvan::internal
