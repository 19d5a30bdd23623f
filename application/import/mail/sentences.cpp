#include "application/import/mail/sentences.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>

#include "OrvanPlatform/white_space.h"
#include "application/import/mail/characters.h"

namespace orvan {
namespace {

/// A question begins at this one, whatever comes before it.
constexpr UChar32 invertedMark = 0xBF;

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

/// Titles and initials, whose full stop does not end a sentence.
bool isAbbreviation(std::string_view word) noexcept {
  constexpr std::array<std::string_view, 18> known{"Dr", "Mr",  "Mrs", "Ms",  "Prof", "St", "vs", "Hr",     "Fr",
                                                   "Sr", "Sra", "bzw", "e.g", "i.e",  "ca", "Nr", "approx", "ggf"};
  const bool isInitial = word.size() == 1 && u_isalpha(word.front()) != 0;
  return isInitial || std::ranges::find(known, word) != known.end();
}

/// "3. Mai", and the number of a list's entry.
bool isOrdinal(std::string_view word, std::string_view following, bool isFirstWord) {
  constexpr std::array months{"Jan", "Feb", "Mär", "Apr", "Mai", "Jun", "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"};
  const bool isShortNumber = word.size() <= 2 && word.find_first_not_of("0123456789") == std::string_view::npos;
  const auto next = trimmed(following.substr(0, 8));
  const bool isDay = std::ranges::any_of(months, [next](const char* month) { return next.starts_with(month); });
  return isShortNumber && (isDay || isFirstWord);
}

/// Whether the full stop after `word` may stand within a sentence, before a lower-case word.
bool mayBeAbbreviation(std::string_view word) noexcept {
  constexpr std::array<std::string_view, 37> known{
      "etc",  "incl", "resp", "max", "min", "tel",  "est", "usw", "evtl", "inkl", "sog", "std", "zzgl",
      "env",  "ej",   "pag",  "pág", "ecc", "bijv", "enz", "osv", "np",   "tzn",  "itd", "itp", "tj",
      "např", "apod", "atd",  "dr",  "др",  "г",    "стр", "т",   "no",   "nr",   "p"};
  return isAbbreviation(word) || word.contains('.') || word.find_first_not_of("0123456789") == std::string_view::npos ||
         std::ranges::find(known, word) != known.end();
}

/// ":-)" and the like, of which `text` ends in the last character.
bool endsInSmiley(std::string_view text) noexcept {
  constexpr std::array smileys{" :)", " ;)", ":-)", ";-)", " :D", ":-D", " :(", ":-("};
  return std::ranges::any_of(smileys, [text](const char* smiley) { return text.ends_with(smiley); });
}

/// Whether `word` is an expression that a program matches texts with, "*.c" or "[a-z]+".
bool isPattern(std::string_view word) noexcept {
  constexpr std::array marks{"*.", ".*", "\\", "]+", "]*", ")+", ")*"};
  const bool hasMark = std::ranges::any_of(marks, [word](const char* mark) { return word.contains(mark); });
  return hasMark || (!word.empty() && word.find_first_not_of("=<>&|!") == std::string_view::npos);
}

bool isAddress(std::string_view word) noexcept {
  return word.contains("://") || word.contains("www.") || word.starts_with("mailto:");
}

struct QuotationMarks {
  std::string_view opening;
  std::string_view closing;
};
constexpr std::array<QuotationMarks, 8> quotationMarks{
    {{"\"", "\""}, {"“", "”"}, {"„", "“"}, {"„", "”"}, {"«", "»"}, {"»", "«"}, {"「", "」"}, {"『", "』"}}};

/// Whether a quotation that begins in `sentence` ends right behind it.
bool endsQuotation(std::string_view sentence, std::string_view following) noexcept {
  constexpr std::size_t longestQuotation = 300;
  const auto near = sentence.substr(sentence.size() - std::min(sentence.size(), longestQuotation));
  return std::ranges::any_of(quotationMarks, [&](const QuotationMarks& marks) {
    const auto blanks = std::min(following.find_first_not_of(' '), following.size());
    return following.substr(marks.closing == "»" ? blanks : 0).starts_with(marks.closing) &&
           near.contains(marks.opening);
  });
}

} // namespace

std::optional<Sentence> SentenceReader::next() {
  while (position_ < text_.size()) {
    const auto markStart = position_;
    const auto mark = takeCharacter(text_, position_);
    if (mark == invertedMark && start_ < markStart && !trimmed(text_.substr(start_, markStart - start_)).empty()) {
      position_ = markStart;
      return take(false);
    }
    if (isQuestionMark(mark) && asks(markStart, mark)) {
      if (const auto question = takeQuestion(markStart)) {
        return question;
      }
    } else if (endsStatement(markStart, mark)) {
      return take(false);
    }
  }
  if (trimmed(text_.substr(start_)).empty()) {
    return std::nullopt;
  }
  return take(false);
}

Sentence SentenceReader::take(bool isQuestion) {
  const auto text = trimmed(text_.substr(start_, position_ - start_));
  start_ = position_;
  const auto following = text_.substr(position_);
  return {text, following, isQuestion, isQuestion && endsQuotation(text, following)};
}

/// Of a question in brackets only what is in them; one word in brackets only comments on the word before it.
std::optional<Sentence> SentenceReader::takeQuestion(std::size_t markStart) {
  position_ += std::min(text_.substr(position_).find_first_not_of("?!"), text_.size() - position_);
  if (text_.substr(position_).starts_with(')')) {
    const auto inFront = text_.substr(start_, markStart - start_);
    const auto bracket = inFront.rfind('(');
    if (bracket != std::string_view::npos && !inFront.substr(bracket).contains(')')) {
      if (!trimmed(inFront.substr(bracket + 1)).contains(' ')) {
        return std::nullopt;
      }
      start_ += bracket + 1;
    }
  }
  return take(true);
}

bool SentenceReader::asks(std::size_t markStart, UChar32 mark) const {
  const auto word = wordBefore(markStart);
  const auto sentence = text_.substr(start_, markStart - start_);
  const bool isWithinSentence = isAddress(word) || endsQuotation(sentence, text_.substr(position_));
  return endsWord(markStart, mark) && !isPattern(word) && !(isWithinSentence && lowerCaseFollows()) &&
         !isBetweenBackticks(markStart) && !isTernary(markStart);
}

bool SentenceReader::isBetweenBackticks(std::size_t markStart) const noexcept {
  constexpr std::size_t longestCode = 80;
  const auto before = text_.substr(start_, markStart - start_);
  const auto near = before.substr(before.size() - std::min(before.size(), longestCode));
  return std::ranges::count(near, '`') % 2 == 1 && text_.substr(position_, longestCode).contains('`');
}

/// "ready ? first : second"
bool SentenceReader::isTernary(std::size_t markStart) const noexcept {
  constexpr std::size_t longestBranch = 60;
  if (markStart == 0 || text_[markStart - 1] != ' ' || !text_.substr(position_).starts_with(' ')) {
    return false;
  }
  const auto branch = text_.substr(position_ + 1, longestBranch);
  std::size_t start = 0;
  return branch.contains(" : ") && u_isupper(takeCharacter(branch, start)) == 0;
}

bool SentenceReader::endsStatement(std::size_t markStart, UChar32 mark) const {
  switch (mark) {
    case '!':
      return endsWord(markStart, mark);
    case 0x2026:
      return endsWord(markStart, mark) && !lowerCaseFollows();
    case '.': {
      const auto word = wordBefore(markStart);
      const bool isFirstWord = markStart - start_ <= word.size() + 1;
      return endsWord(markStart, mark) && !isAbbreviation(word) &&
             !isOrdinal(word, text_.substr(position_), isFirstWord) && !(lowerCaseFollows() && mayBeAbbreviation(word));
    }
    default:
      return (!isQuestionMark(mark) && endsSentenceAnywhere(mark)) ||
             endsInSmiley(text_.substr(start_, position_ - start_));
  }
}

/// Whether the mark stands at the end of a word, rather than inside a number, name or web address, or alone in
/// brackets, where it only comments on the word before it.
bool SentenceReader::endsWord(std::size_t markStart, UChar32 mark) const {
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

bool SentenceReader::lowerCaseFollows() const noexcept {
  const auto character =
      nextThatIsNot([](UChar32 following) { return isWhiteSpace(following) || u_ispunct(following) != 0; });
  return u_islower(character) != 0;
}

/// The next character that `passes` does not hold for; 0 at the end, or when it is far: a text of marks alone would
/// otherwise be read once for each of them.
UChar32 SentenceReader::nextThatIsNot(bool (*passes)(UChar32)) const noexcept {
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

std::string_view SentenceReader::wordBefore(std::size_t end) const noexcept {
  constexpr std::size_t longestWord = 100;
  const auto start = std::max(start_, end - std::min(end, longestWord));
  const auto before = trimmed(text_.substr(start, end - start));
  const auto blank = before.find_last_of(" \n(");
  return blank == std::string_view::npos ? before : before.substr(blank + 1);
}

} // namespace orvan
