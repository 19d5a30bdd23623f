#include "application/import/mail/rhetoric.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "OrvanPlatform/white_space.h"
#include "application/import/mail/characters.h"
#include "application/import/mail/decoded_text.h"
#include "application/import/mail/rhetoric_phrases.h"

namespace orvan {
namespace {

// --- Words ----------------------------------------------------------------------------------------------------------

bool isWordCharacter(UChar32 character) noexcept {
  return character > 0 && (u_isalnum(character) != 0 || u_hasBinaryProperty(character, UCHAR_DIACRITIC) != 0 ||
                           u_charType(character) == U_NON_SPACING_MARK);
}

bool isLetterAt(std::string_view text, std::size_t position) noexcept {
  return position < text.size() && isWordCharacter(takeCharacter(text, position));
}

/// Marks that part a sentence so that a phrase may stand on either side.
bool partsClauses(UChar32 character) noexcept {
  return character == ',' || character == ';' || character == ':' || character == '(' || character == ')' ||
         character == '[' || character == ']' || character == 0xBF || character == 0x2013 || character == 0x2014 ||
         character == 0x3001 || character == 0xFF0C || character == 0xFF1A;
}

/// The words between two such marks, lower-cased, with one blank between two.
using Clause = std::string;

std::vector<Clause> clausesOf(std::string_view sentence) {
  const auto lower = lowerCased(onOneLine(sentence));
  std::vector<Clause> clauses(1);
  bool blankIsDue = false;
  for (std::size_t position = 0; position < lower.size();) {
    auto character = takeCharacter(lower, position);
    const bool isApostrophe = character == '\'' || character == 0x2019;
    const bool isInWord = isApostrophe || (character == '-' && isLetterAt(lower, position));
    if (isWordCharacter(character) || (isInWord && !clauses.back().empty() && !blankIsDue)) {
      if (blankIsDue && !clauses.back().empty()) {
        clauses.back() += ' ';
      }
      blankIsDue = false;
      appendCharacter(clauses.back(), isApostrophe ? '\'' : character);
    } else if (partsClauses(character) && !clauses.back().empty()) {
      clauses.emplace_back();
      blankIsDue = false;
    } else {
      blankIsDue = true;
    }
  }
  if (clauses.size() > 1 && clauses.back().empty()) {
    clauses.pop_back();
  }
  return clauses;
}

std::ptrdiff_t wordsInClause(std::string_view clause) noexcept {
  return clause.empty() ? 0 : 1 + std::ranges::count(clause, ' ');
}

std::string_view firstWordOf(std::string_view words) noexcept {
  return words.substr(0, words.find(' '));
}

std::string_view withoutFirstWord(std::string_view words) noexcept {
  const auto blank = words.find(' ');
  return blank == std::string_view::npos ? std::string_view{} : words.substr(blank + 1);
}

std::string_view withoutLead(std::string_view words) {
  constexpr int mostLeadWords = 3;
  for (int count = 0; count < mostLeadWords && leadWords().contains(firstWordOf(words)); ++count) {
    words = withoutFirstWord(words);
  }
  return words;
}

std::string_view withoutTail(std::string_view words) {
  constexpr int mostTailWords = 3;
  for (int count = 0; count < mostTailWords; ++count) {
    const auto blank = words.rfind(' ');
    if (blank == std::string_view::npos || !tailWords().contains(words.substr(blank + 1))) {
      break;
    }
    words = words.substr(0, blank);
  }
  return words;
}

/// Whether the words are one of the phrases, with or without what may stand around it.
bool isPhrase(std::string_view words, const PhraseList& phrases) {
  const auto core = withoutLead(words);
  return phrases.contains(words) || phrases.contains(core) || phrases.contains(withoutTail(core));
}

/// The first words of a text, as far as they matter, up to a mark.
Clause startOf(std::string_view following) {
  constexpr std::size_t mostBytes = 80;
  const auto start = trimmed(following).substr(0, mostBytes);
  return clausesOf(start.substr(0, start.find_first_of(".!"))).front();
}

// --- Kinds of questions that wait for nothing -----------------------------------------------------------------------

/// "On dit 20 h. Ça va ?" asks for consent; "Salut Anna. Ça va ?" does not.
bool followsProposal(std::string_view previous) {
  constexpr std::ptrdiff_t longestGreeting = 3;
  const auto words = startOf(previous);
  return wordsInClause(words) > longestGreeting && !thanks().beginOf(words);
}

/// "How are you?", or the same after a few words of greeting.
bool isCourtesy(const std::vector<Clause>& clauses, std::string_view previous) {
  constexpr std::ptrdiff_t longestGreeting = 4;
  const auto& last = clauses.back();
  if (!isPhrase(last, courtesies())) {
    return false;
  }
  const bool mayAgree = agreements().contains(last);
  if (clauses.size() == 1) {
    return !mayAgree || !followsProposal(previous);
  }
  const auto& first = clauses.front();
  return (!mayAgree && wordsInClause(first) <= longestGreeting) || leadWords().beginOf(first) ||
         thanks().beginOf(first);
}

bool isFigureOfSpeech(const Clause& clause) {
  return isPhrase(clause, figuresOfSpeech()) || isPhrase(clause, bulkFormulas());
}

/// A phrase may be followed by the reader's name: "How are you, Anna?"
bool endsInEmptyPhrase(const std::vector<Clause>& clauses, std::string_view previous) {
  if (isCourtesy(clauses, previous) || isFigureOfSpeech(clauses.back())) {
    return true;
  }
  if (clauses.size() == 1 || wordsInClause(clauses.back()) > 2 || agreements().contains(clauses.back())) {
    return false;
  }
  const std::vector<Clause> withoutName{clauses.begin(), clauses.end() - 1};
  return isCourtesy(withoutName, previous) || isFigureOfSpeech(withoutName.back());
}

bool beginsEmptily(const std::vector<Clause>& clauses) {
  const bool isPosed = clauses.size() > 1 && emptyBeginnings().beginOf(clauses[0] + ' ' + clauses[1]);
  if (isPosed) {
    return true;
  }
  return emptyBeginnings().beginOf(withoutLead(clauses.front())) ||
         emptyBeginnings().beginOf(withoutLead(clauses.back()));
}

bool namesReader(const std::vector<Clause>& clauses) {
  return std::ranges::any_of(clauses, [](const Clause& clause) { return readerWords().containsWordOf(clause); });
}

/// "Seriously, who designs these forms?"
bool beginsWithEcho(const std::vector<Clause>& clauses) {
  return clauses.size() > 1 && isPhrase(clauses.front(), echoes()) && !namesReader(clauses);
}

bool isEcho(const std::vector<Clause>& clauses, std::string_view previous, std::string_view following) {
  const bool isAlone = clauses.size() == 1 && previous.empty() && trimmed(following).empty();
  return !isAlone && isPhrase(clauses.back(), echoes()) && (clauses.size() == 1 || wordsInClause(clauses.back()) > 1);
}

/// "Isn't that great?", "How cool is that?"
bool isExclamation(const std::vector<Clause>& clauses) {
  constexpr std::ptrdiff_t mostWords = 6;
  const auto words = withoutLead(clauses.back());
  if (wordsInClause(words) > mostWords || namesReader(clauses)) {
    return false;
  }
  const bool isHow = firstWordOf(words) == "how" || firstWordOf(words) == "wie";
  const auto& praise =
      clauses.size() == 2 && wordsInClause(clauses.front()) <= mostWords ? clauses.front() : clauses.back();
  return judgements().containsWordOf(praise) &&
         (negations().containsWordOf(praise) ||
          (isHow && exclamationEnds().contains(withoutFirstWord(withoutFirstWord(words)))));
}

bool isAnsweredAtOnce(const std::vector<Clause>& clauses, std::string_view following) {
  const auto answer = startOf(following);
  const bool asksWhy =
      whyWords().beginOf(withoutLead(clauses.front())) || whyWords().beginOf(withoutLead(clauses.back()));
  return answers().contains(answer) || (asksWhy && reasons().beginOf(answer)) ||
         (!namesReader(clauses) && (conclusions().beginOf(answer) || assurances().beginOf(answer)));
}

bool isPraiseWithTag(const std::vector<Clause>& clauses) {
  return clauses.size() > 1 && tags().contains(clauses.back()) &&
         judgements().containsWordOf(clauses[clauses.size() - 2]);
}

/// An offer is a condition of what comes next rather than a question when that tells its reader what to do.
bool isOffer(const std::vector<Clause>& clauses, std::string_view following) {
  return offerBeginnings().beginOf(withoutLead(clauses.front())) && calls().beginOf(startOf(following));
}

/// "He thought: why should I pay for that?"
bool isToldOf(const std::vector<Clause>& clauses, std::string_view sentence) {
  return clauses.size() > 1 && sentence.contains(": ") && reportingWords().containsWordOf(clauses[clauses.size() - 2]);
}

enum class Smile { none, smile, wink };

Smile smileAfter(std::string_view following) noexcept {
  constexpr std::array winks{";)", ";-)", "😉", "😜", "😂", "🤣", ":P", ":-P", "xD"};
  constexpr std::array smiles{":)", ":-)", ":D", ":-D", "^^", "😀", "😁", "😃", "😄", "😅", "😊", "🙂", "🙃", "😆"};
  const auto start = trimmed(following.substr(0, 16));
  const auto begins = [start](const char* face) { return start.starts_with(face); };
  return std::ranges::any_of(winks, begins)    ? Smile::wink
         : std::ranges::any_of(smiles, begins) ? Smile::smile
                                               : Smile::none;
}

/// A smiling question is still one when it asks its reader for something.
bool isJoke(const std::vector<Clause>& clauses, std::string_view following) {
  const auto smile = smileAfter(following);
  return smile != Smile::none && !namesReader(clauses) && clauses.size() == 1 &&
         (wordsInClause(clauses.front()) <= 1 || smile == Smile::wink);
}

/// "Thanks for everything. OK?"
bool isThanks(const std::vector<Clause>& clauses, std::string_view previous) {
  return clauses.size() == 1 && agreements().contains(clauses.front()) && thanks().beginOf(startOf(previous));
}

} // namespace

bool isRhetorical(const Sentence& question, std::string_view previous) {
  const auto clauses = clausesOf(question.text);
  return question.isReported || endsInEmptyPhrase(clauses, previous) || beginsEmptily(clauses) ||
         isEcho(clauses, previous, question.following) || beginsWithEcho(clauses) || isExclamation(clauses) ||
         isPraiseWithTag(clauses) || isOffer(clauses, question.following) ||
         isAnsweredAtOnce(clauses, question.following) || isToldOf(clauses, question.text) ||
         isJoke(clauses, question.following) || isThanks(clauses, previous);
}

bool asksForConsent(std::string_view question) {
  constexpr std::size_t longestPhrase = 40;
  return question.size() <= longestPhrase && agreements().contains(clausesOf(question).front());
}

bool asksEverybody(std::string_view question) {
  const auto clauses = clausesOf(question);
  const auto isToAll = [](const Clause& clause) { return everybodyBeginnings().beginOf(withoutLead(clause)); };
  const auto isToReader = [](const Clause& clause) { return readerOnlyWords().containsWordOf(clause); };
  return (isToAll(clauses.front()) || isToAll(clauses.back())) && std::ranges::none_of(clauses, isToReader);
}

} // namespace orvan
