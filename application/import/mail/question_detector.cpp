#include "application/import/mail/question_detector.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utext.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <utility>

#include "OrvanPlatform/white_space.h"
#include "application/import/mail/characters.h"
#include "application/import/mail/decoded_text.h"
#include "application/import/mail/rhetoric.h"
#include "application/import/mail/sentences.h"

namespace orvan {
namespace {

bool isUrl(std::string_view word) noexcept {
  return word.contains("://") || word.starts_with("www.") || word.starts_with("mailto:");
}

// --- What makes a sentence a question -------------------------------------------------------------------------------

struct LetterCounts {
  int words = 0;
  int letters = 0;
  int addresses = 0;
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
    const bool isLetter = u_isalpha(character) != 0;
    hasLetter = hasLetter || isLetter;
    counts.letters += isLetter ? 1 : 0;
    counts.nonLatinLetters += isNonLatinLetter(character) ? 1 : 0;
  }
  counts.words += hasLetter ? 1 : 0;
}

LetterCounts lettersOf(std::string_view line) noexcept {
  LetterCounts counts;
  while (!line.empty()) {
    const auto word = line.substr(0, line.find(' '));
    counts.addresses += isUrl(word) ? 1 : 0;
    if (!isUrl(word)) {
      countLetters(word, counts);
    }
    line.remove_prefix(std::min(word.size() + 1, line.size()));
  }
  return counts;
}

/// How a question of so many letters is shown. Web addresses are not words.
enum class Shown { notAtAll, asItIs, withSentenceBefore };

Shown howShown(const LetterCounts& counts) noexcept {
  if (counts.words >= 2 || counts.nonLatinLetters >= 2) {
    return Shown::asItIs;
  }
  return counts.words == 1 && counts.letters >= 2 && counts.addresses == 0 ? Shown::withSentenceBefore
                                                                           : Shown::notAtAll;
}

/// Without the number in front of an entry of a list.
std::string_view withoutNumber(std::string_view sentence) noexcept {
  const auto mark = sentence.find_first_not_of("0123456789");
  const bool isNumbered = mark != std::string_view::npos && mark > 0 && mark <= 2 &&
                          (sentence.substr(mark).starts_with(". ") || sentence.substr(mark).starts_with(") "));
  return isNumbered ? sentence.substr(mark + 2) : sentence;
}

/// Without the list bullet, number, opening quotation mark or bracket in front of it.
std::string_view withoutOpeningMarks(std::string_view sentence) noexcept {
  sentence = withoutNumber(sentence);
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

constexpr std::size_t longestQuestion = 300;

std::string cutToLength(std::string question) {
  if (endOfCharacters(question, longestQuestion) == question.size()) {
    return question;
  }
  const auto limit = lastBreakBefore(question, endOfCharacters(question, longestQuestion - 1));
  question.resize(trimmed(std::string_view{question}.substr(0, limit)).size());
  return question + "…";
}

// --- The mail -------------------------------------------------------------------------------------------------------

/// Goes through a writer's own words up to the first question that waits for the user.
class QuestionFinder {
 public:
  explicit QuestionFinder(const ReaderNames& names) noexcept : names_{names} {}

  /// Reads on in the next paragraph; an empty one is a gap.
  std::optional<std::string> readParagraph(std::string_view paragraph) {
    if (paragraph.empty()) {
      previous_ = {};
      return std::nullopt;
    }
    const auto address = addressAtStart(paragraph, names_);
    if (address.isGreeting) {
      ofMail_ = address.addressee;
    }
    ofParagraph_ = ofMail_;
    SentenceReader sentences{paragraph};
    while (const auto sentence = sentences.next()) {
      if (auto question = questionIn(*sentence)) {
        return question;
      }
      previous_ = sentence->text;
    }
    previous_ = endsSentence(previous_) ? previous_ : std::string_view{};
    return std::nullopt;
  }

 private:
  std::optional<std::string> questionIn(const Sentence& sentence) {
    if (const auto address = addressAtStart(sentence.text, names_); address.addressee != Addressee::nobodyByName) {
      ofParagraph_ = address.addressee;
    }
    if (!sentence.isQuestion) {
      return std::nullopt;
    }
    auto question = onOneLine(withoutOpeningMarks(sentence.text));
    const auto shown = howShown(lettersOf(question));
    if (shown == Shown::notAtAll || !isTheUsers(sentence.text) || isRhetorical(sentence, previous_)) {
      return std::nullopt;
    }
    if ((shown == Shown::withSentenceBefore || asksForConsent(question)) && !previous_.empty()) {
      const auto both = onOneLine(std::string{withoutOpeningMarks(previous_)} + ' ' + question);
      question = endOfCharacters(both, longestQuestion) == both.size() ? both : question;
    }
    return cutToLength(std::move(question));
  }

  bool isTheUsers(std::string_view question) const {
    const auto called = addresseeWithin(question, names_);
    const auto addressee = called == Addressee::nobodyByName ? ofParagraph_ : called;
    return addressee != Addressee::somebodyElse && (addressee == Addressee::user || !asksEverybody(question));
  }

  static bool endsSentence(std::string_view text) noexcept {
    constexpr std::array ends{".", "!", "?", "…", "。", "！", "？", ":"};
    return std::ranges::any_of(ends, [text](const char* end) { return text.ends_with(end); });
  }

  const ReaderNames& names_;
  Addressee ofMail_ = Addressee::nobodyByName;
  Addressee ofParagraph_ = Addressee::nobodyByName;
  std::string_view previous_;
};

/// "Q: ..." above "A: ..."
bool isAnsweredBelow(std::string_view paragraph, std::string_view below) noexcept {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 3> labels{
      {{"Q:", "A:"}, {"F:", "A:"}, {"Q:", "R:"}}};
  return std::ranges::any_of(
      labels, [&](const auto& pair) { return paragraph.starts_with(pair.first) && below.starts_with(pair.second); });
}

/// Of a mail that says nothing but "?": that.
std::optional<std::string> bareMark(std::string_view ownWords) {
  constexpr std::size_t mostBytes = 16;
  const auto text = trimmed(ownWords);
  const bool isBare = hasQuestionMark(text) && text.size() <= mostBytes && onOneLine(text) == text &&
                      std::ranges::all_of(text, [](char byte) { return std::string_view{"?!. "}.contains(byte); });
  return isBare || text == "？" ? std::optional{std::string{text}} : std::nullopt;
}

} // namespace

bool hasQuestionMark(std::string_view text) noexcept {
  return text.contains('?') || text.contains("？") || text.contains("؟");
}

std::optional<std::string> firstQuestion(std::string_view ownWords, const ReaderNames& names) {
  if (!hasQuestionMark(ownWords)) {
    return std::nullopt;
  }
  if (auto mark = bareMark(ownWords)) {
    return mark;
  }
  QuestionFinder finder{names};
  while (!ownWords.empty()) {
    const auto paragraph = ownWords.substr(0, ownWords.find('\n'));
    ownWords.remove_prefix(std::min(paragraph.size() + 1, ownWords.size()));
    if (isAnsweredBelow(paragraph, ownWords)) {
      continue;
    }
    if (auto question = finder.readParagraph(paragraph)) {
      return question;
    }
  }
  return std::nullopt;
}

} // namespace orvan
