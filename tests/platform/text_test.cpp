#include <gtest/gtest.h>

#include "OrvanPlatform/folded_text.h"
#include "OrvanPlatform/printable_text.h"
#include "OrvanPlatform/secret_bytes.h"
#include "OrvanPlatform/white_space.h"

namespace orvan {
namespace {

TEST(WhiteSpace, TrimsEveryUnicodeBlankAndNothingElse) {
  EXPECT_EQ(trimmed(" \t\r\n a b \u00a0\u2003\u2028\u3000\u0085"), "a b");
  EXPECT_EQ(trimmed("\u200bx\u200b"), "\u200bx\u200b") << "a zero-width space is not white space";
  EXPECT_EQ(trimmed(" \n\u2029 "), "");
  EXPECT_EQ(trimmed("\xff \xff"), "\xff \xff") << "bytes that are not UTF-8 stay";
  EXPECT_EQ(trimmed("\x80\x80\x80\x80\x80"), "\x80\x80\x80\x80\x80");
}

TEST(WhiteSpace, AcceptsAnIdentifierOnlyWhenItIsItsOwnTrimmedForm) {
  EXPECT_TRUE(isTrimmedAndNotEmpty("p 42"));
  for (const char* refused : {"", "p-42\u00a0", "\np-42"}) {
    EXPECT_FALSE(isTrimmedAndNotEmpty(refused)) << refused;
  }
}

TEST(PrintableText, ShowsWhatATerminalWouldObey) {
  EXPECT_EQ(printableText("a\nb\x1b[2J\x7f\u0085\u009b31m\u2028\u202eevil\u2066\u200f"), "a b [2J   31m  evil  ");
  EXPECT_EQ(printableText("Zoë 山田 \U0001F469\u200D\U0001F52C"), "Zoë 山田 \U0001F469\u200D\U0001F52C");
  EXPECT_EQ(printableText("a\xff"
                          "b"),
            "a\ufffdb");
}

TEST(FoldedText, ComparesNamesOfAllScriptsWithoutCaseAndAccents) {
  EXPECT_EQ(withoutCase(" ΠΑΠΠΆ"), withoutCase("παππά"));
  EXPECT_EQ(withoutCase("Zoe\u0308"), withoutCase("ZO\u00cb"));
  EXPECT_NE(withoutCase("Zoë"), withoutCase("Zoe"));
  EXPECT_EQ(withoutAccents("Jiří ŁUKASZ Øster"), "jiri lukasz oster");
  EXPECT_NE(withoutAccents("\u0915\u0941"), withoutAccents("\u0915")) << "a vowel sign is a letter";
}

TEST(SecretBytes, HoldsNothingAfterItWasMovedFrom) {
  SecretBytes secret(4);
  secret.bytes()[0] = 7;
  const SecretBytes moved = std::move(secret);
  EXPECT_EQ(moved.bytes()[0], 7);
  EXPECT_EQ(secret.size(), 0U); // NOLINT(bugprone-use-after-move): the point of the test.
}

} // namespace
} // namespace orvan
