#include "application/import/mail/question_detector.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utext.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

#include "OrvanPlatform/white_space.h"
#include "application/import/mail/characters.h"
#include "application/import/mail/decoded_text.h"
#include "application/import/mail/own_words.h"

namespace orvan {
namespace {

constexpr std::string_view fullWidthMark = "？";
constexpr std::string_view arabicMark = "؟";

bool hasQuestionMark(std::string_view text) noexcept {
  return text.contains('?') || text.contains(fullWidthMark) || text.contains(arabicMark);
}

bool isWhiteSpace(UChar32 character) noexcept {
  return u_isUWhiteSpace(character) != 0;
}

bool isClosingMark(UChar32 character) noexcept {
  const auto category = u_charType(character);
  return character == '"' || character == '\'' || character == '*' || category == U_END_PUNCTUATION ||
         category == U_FINAL_PUNCTUATION;
}

/// These end a sentence wherever they stand: their scripts do not put blanks after them.
bool endsSentenceAnywhere(UChar32 character) noexcept {
  return character == 0xFF1F || character == 0x061F || character == 0x3002 || character == 0xFF01;
}

bool isQuestionMark(UChar32 character) noexcept {
  return character == '?' || character == 0xFF1F || character == 0x061F;
}

bool isUrl(std::string_view word) noexcept {
  return word.contains("://") || word.starts_with("www.") || word.starts_with("mailto:");
}

// --- What makes a sentence a question -------------------------------------------------------------------------------

struct LetterCounts {
  int words = 0;
  int nonLatinLetters = 0;
};

bool isNonLatinLetter(UChar32 character) noexcept {
  if (u_isalpha(character) == 0) {
    return false;
  }
  UErrorCode status = U_ZERO_ERROR;
  const auto script = uscript_getScript(character, &status);
  return script != USCRIPT_LATIN && script != USCRIPT_COMMON && script != USCRIPT_INHERITED;
}

void countLetters(std::string_view word, LetterCounts& counts) noexcept {
  bool hasLetter = false;
  for (std::size_t position = 0; position < word.size();) {
    const auto character = takeCharacter(word, position);
    hasLetter = hasLetter || u_isalpha(character) != 0;
    counts.nonLatinLetters += isNonLatinLetter(character) ? 1 : 0;
  }
  counts.words += hasLetter ? 1 : 0;
}

/// `sentence` is on one line. Web addresses are not words.
bool saysEnough(std::string_view sentence) noexcept {
  LetterCounts counts;
  while (!sentence.empty()) {
    const auto word = sentence.substr(0, sentence.find(' '));
    if (!isUrl(word)) {
      countLetters(word, counts);
    }
    sentence.remove_prefix(std::min(word.size() + 1, sentence.size()));
  }
  return counts.words >= 2 || counts.nonLatinLetters >= 2;
}

/// Without the list bullet, opening quotation mark or bracket in front of it.
std::string_view withoutOpeningMarks(std::string_view sentence) noexcept {
  for (std::size_t position = 0; position < sentence.size();) {
    const auto start = position;
    const auto character = takeCharacter(sentence, position);
    const bool isMark = u_ispunct(character) != 0 && character != 0xBF && character != '@' && character != '#';
    if (!isMark && !isWhiteSpace(character)) {
      return sentence.substr(start);
    }
  }
  return {};
}

// --- Cutting --------------------------------------------------------------------------------------------------------

struct CloseBreaks {
  void operator()(UBreakIterator* breaks) const noexcept { ubrk_close(breaks); }
};
struct CloseText {
  void operator()(UText* text) const noexcept { utext_close(text); }
};

/// The last position up to `limit` between two characters as a reader sees them.
std::size_t lastBreakBefore(std::string_view text, std::size_t limit) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UText, CloseText> utf8{
      utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status)};
  const std::unique_ptr<UBreakIterator, CloseBreaks> breaks{ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status)};
  ubrk_setUText(breaks.get(), utf8.get(), &status);
  if (U_FAILURE(status)) {
    return 0;
  }
  const auto end = static_cast<std::int32_t>(limit);
  const auto position = ubrk_isBoundary(breaks.get(), end) != 0 ? end : ubrk_preceding(breaks.get(), end);
  return position == UBRK_DONE ? 0 : static_cast<std::size_t>(position);
}

/// Where the `count`th character of `text` ends, or the text if it has no more.
std::size_t endOfCharacters(std::string_view text, std::size_t count) noexcept {
  std::size_t position = 0;
  for (std::size_t passed = 0; passed < count && position < text.size(); ++passed) {
    takeCharacter(text, position);
  }
  return position;
}

std::string cutToLength(std::string question) {
  constexpr std::size_t mostCharacters = 300;
  if (endOfCharacters(question, mostCharacters) == question.size()) {
    return question;
  }
  const auto limit = lastBreakBefore(question, endOfCharacters(question, mostCharacters - 1));
  question.resize(trimmed(std::string_view{question}.substr(0, limit)).size());
  return question + "…";
}

// --- Sentences ------------------------------------------------------------------------------------------------------

/// Goes through a text sentence by sentence.
class SentenceReader {
 public:
  explicit SentenceReader(std::string_view text) noexcept : text_{text} {}

  /// The next sentence that ends in a question mark, with that mark and without what stands around the sentence.
  std::optional<std::string_view> nextQuestion() {
    while (position_ < text_.size()) {
      const auto markStart = position_;
      const auto mark = takeCharacter(text_, position_);
      if (isQuestionMark(mark) && endsSentence(markStart, mark)) {
        return takeQuestion();
      }
      if (beginsSentenceAfter(markStart, mark)) {
        start_ = position_;
      }
    }
    return std::nullopt;
  }

 private:
  std::string_view takeQuestion() {
    while (position_ < text_.size() && std::string_view{"?!"}.contains(text_[position_])) {
      ++position_;
    }
    const auto question = text_.substr(start_, position_ - start_);
    start_ = position_;
    return question;
  }

  bool beginsSentenceAfter(std::size_t markStart, UChar32 mark) const {
    switch (mark) {
      case '\n':
        return paragraphEnds();
      case '!':
      case 0x2026:
        return endsSentence(markStart, mark) && !lowerCaseFollows();
      case '.':
        return endsSentence(markStart, mark) && !lowerCaseFollows() && !isAbbreviation(wordBefore(markStart));
      default:
        return endsSentenceAnywhere(mark);
    }
  }

  /// Whether the mark stands at the end of a word, rather than inside a number, name or web address, or alone in
  /// brackets, where it only comments on the word before it.
  bool endsSentence(std::size_t markStart, UChar32 mark) const {
    if (endsSentenceAnywhere(mark)) {
      return true;
    }
    const char before = markStart == 0 ? '\0' : text_[markStart - 1];
    if (before == '(' || before == '[') {
      return false;
    }
    const auto character = nextThatIsNot([](UChar32 following) {
      return isClosingMark(following) || following == '?' || following == '!' || following == '.';
    });
    return character == 0 || isWhiteSpace(character) || (character >= 0x80 && u_isalpha(character) == 0);
  }

  /// At a line break: whether the next line is empty or an entry of a list.
  bool paragraphEnds() const noexcept {
    const auto next = text_.substr(position_);
    return next.empty() || next.starts_with('\n') || next.starts_with("- ") || next.starts_with("* ") ||
           next.starts_with("• ");
  }

  bool lowerCaseFollows() const noexcept {
    const auto character =
        nextThatIsNot([](UChar32 following) { return isWhiteSpace(following) || u_ispunct(following) != 0; });
    return u_islower(character) != 0;
  }

  /// The next character that `passes` does not hold for; 0 at the end, or when it is far: a text of marks alone would
  /// otherwise be read once for each of them.
  UChar32 nextThatIsNot(bool (*passes)(UChar32)) const noexcept {
    constexpr int mostPassed = 32;
    auto after = position_;
    for (int passed = 0; passed < mostPassed && after < text_.size(); ++passed) {
      const auto character = takeCharacter(text_, after);
      if (!passes(character)) {
        return character;
      }
    }
    return 0;
  }

  std::string_view wordBefore(std::size_t end) const noexcept {
    const auto before = text_.substr(start_, end - start_);
    const auto blank = before.find_last_of(" \n(");
    return blank == std::string_view::npos ? before : before.substr(blank + 1);
  }

  /// Titles and initials, whose full stop does not end a sentence.
  static bool isAbbreviation(std::string_view word) noexcept {
    constexpr std::array<std::string_view, 14> known{"Dr", "Mr", "Mrs", "Ms",  "Prof", "St",  "vs",
                                                     "Hr", "Fr", "Sr",  "Sra", "bzw",  "e.g", "i.e"};
    const bool isInitial = word.size() == 1 && u_isalpha(word.front()) != 0;
    return isInitial || std::ranges::find(known, word) != known.end();
  }

  std::string_view text_;
  std::size_t position_ = 0;
  /// Where the sentence at position_ begins.
  std::size_t start_ = 0;
};

} // namespace

std::optional<std::string> firstQuestion(std::string_view text) {
  if (!hasQuestionMark(text)) {
    return std::nullopt;
  }
  const auto own = ownWords(text);
  SentenceReader sentences{own};
  while (const auto found = sentences.nextQuestion()) {
    auto question = onOneLine(withoutOpeningMarks(*found));
    if (saysEnough(question)) {
      return cutToLength(std::move(question));
    }
  }
  return std::nullopt;
}

} // namespace orvan
