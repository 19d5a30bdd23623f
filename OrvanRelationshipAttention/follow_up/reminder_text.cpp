#include "OrvanRelationshipAttention/follow_up/internal/reminder_text.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <vector>

#include "OrvanPlatform/white_space.h"
#include "OrvanRelationshipAttention/follow_up/follow_up_scheduler.h"

namespace orvan::internal {
namespace {

constexpr std::size_t mostCharacters = 120;
constexpr std::string_view ellipsis = "\u2026";

/// Character here means what a reader takes for one: a grapheme cluster.
using Characters = std::vector<std::string_view>;

/// Making one costs more than using it, and one may not be shared between threads.
icu::BreakIterator& characterBreaks() {
  thread_local const std::unique_ptr<icu::BreakIterator> breaks = [] {
    UErrorCode error = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> made{
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error)};
    if (U_FAILURE(error) != 0) {
      throw std::bad_alloc{};
    }
    return made;
  }();
  return *breaks;
}

Characters charactersOf(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  UText bytes = UTEXT_INITIALIZER;
  utext_openUTF8(&bytes, text.data(), static_cast<std::int64_t>(text.size()), &error);
  icu::BreakIterator& breaks = characterBreaks();
  breaks.setText(&bytes, error);
  Characters characters;
  std::int32_t start = breaks.first();
  for (std::int32_t end = breaks.next(); end != icu::BreakIterator::DONE; end = breaks.next()) {
    characters.push_back(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(end - start)));
    start = end;
  }
  utext_close(&bytes);
  return characters;
}

/// What a character is follows from the code point it begins with.
UChar32 firstCodePoint(std::string_view character) {
  std::int32_t next = 0;
  UChar32 codePoint = 0;
  // NOLINTNEXTLINE(bugprone-inc-dec-in-conditions): ICU's macro.
  U8_NEXT(character.data(), next, static_cast<std::int32_t>(character.size()), codePoint);
  return codePoint;
}

bool isWhiteSpace(std::string_view character) {
  return u_isUWhiteSpace(firstCodePoint(character)) != 0;
}

icu::UnicodeString unicode(std::string_view text) {
  return icu::UnicodeString::fromUTF8(icu::StringPiece{text.data(), static_cast<std::int32_t>(text.size())});
}

/// A language's own rules do not apply: nobody says which language this is.
icu::UnicodeString uppercase(std::string_view text) {
  return unicode(text).toUpper(icu::Locale::getRoot());
}

/// Some letters are lowercase without having a capital; a letter with marks is when it has one.
bool isLowercase(std::string_view character) {
  const icu::UnicodeString same = unicode(character);
  if (same.countChar32() == 1 && u_isULowercase(firstCodePoint(character)) != 0) {
    return true;
  }
  return uppercase(character) != same && unicode(character).toLower(icu::Locale::getRoot()) == same;
}

bool isLowercaseLetter(std::string_view character) {
  return u_isUAlphabetic(firstCodePoint(character)) != 0 && isLowercase(character);
}

std::string joined(Characters::const_iterator begin, Characters::const_iterator end) {
  std::string text;
  std::for_each(begin, end, [&text](std::string_view character) { text += character; });
  return text;
}

std::string wordsWithSingleBlanks(std::string_view text) {
  std::string words;
  bool atWordStart = false;
  for (const auto character : charactersOf(text)) {
    if (isWhiteSpace(character)) {
      atWordStart = !words.empty();
      continue;
    }
    if (std::exchange(atWordStart, false)) {
      words += ' ';
    }
    words += character;
  }
  return words;
}

std::string shortened(const Characters& characters) {
  if (characters.size() <= mostCharacters) {
    return joined(characters.begin(), characters.end());
  }
  const auto kept = joined(characters.begin(), characters.begin() + mostCharacters - 1);
  return std::string{trimmed(kept)}.append(ellipsis);
}

/// Names such as iPhone, and what begins with a digit, are left as the user wrote them.
bool beginsWithLowercaseWord(const Characters& characters) {
  const auto end = std::ranges::find_if(characters, isWhiteSpace);
  return end != characters.begin() && std::all_of(characters.begin(), end, isLowercaseLetter);
}

/// The same JSON with at most two digits in a row outside its strings: the parser refuses a number that no double
/// holds, and no number is asked for.
std::string withShortNumbers(std::string_view json) {
  std::string text;
  bool isInString = false;
  bool isEscaped = false;
  std::size_t digits = 0;
  for (const char byte : json) {
    const bool isDigit = !isInString && byte >= '0' && byte <= '9';
    digits = isDigit ? digits + 1 : 0;
    if (digits <= 2) {
      text += byte;
    }
    if (byte == '"' && !isEscaped) {
      isInString = !isInString;
    }
    isEscaped = isInString && byte == '\\' && !isEscaped;
  }
  return text;
}

} // namespace

std::optional<std::string> userFollowUpOf(std::string_view userContext) {
  const auto context = nlohmann::json::parse(withShortNumbers(userContext)).get<nlohmann::json::object_t>();
  const auto said = context.find("user_follow_up");
  if (said == context.end() || said->second.is_null()) {
    return std::nullopt;
  }
  return said->second.get<std::string>();
}

std::string reminderText(std::string_view userFollowUp) {
  const std::string words = wordsWithSingleBlanks(userFollowUp);
  std::string text = shortened(charactersOf(words));
  const Characters characters = charactersOf(text);
  if (!beginsWithLowercaseWord(characters)) {
    return text;
  }
  std::string capitalized;
  uppercase(characters.front()).toUTF8String(capitalized);
  return capitalized + joined(characters.begin() + 1, characters.end());
}

std::string notificationSubject(Connection& connection, std::string_view sourceObjectID) {
  const auto userContext = connection.fetchOptionalText(R"sql(
    SELECT capture_artifact.user_context
    FROM capture_artifact
    JOIN source_object ON source_object.id = capture_artifact.source_object_id
    WHERE capture_artifact.source_object_id = ? AND source_object.tombstoned_at IS NULL
  )sql",
                                                        sourceObjectID);
  const auto said = userContext ? userFollowUpOf(*userContext) : std::nullopt;
  if (said) {
    auto text = reminderText(*said);
    if (!text.empty()) {
      return text;
    }
  }
  return std::string{FollowUpScheduler::notificationTitle};
}

} // namespace orvan::internal
