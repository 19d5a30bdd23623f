#include "application/import/mail/reader_names.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

#include "OrvanPlatform/white_space.h"
#include "application/import/mail/characters.h"
#include "application/import/mail/decoded_text.h"
#include "application/import/mail/rhetoric_phrases.h"
#include "application/import/mail/text_search.h"

namespace orvan {
namespace {

constexpr std::array greetings{
    "hi",       "hello",  "hey",     "dear",   "good",      "morning",   "thanks",   "thank",   "you",     "hallo",
    "moin",     "liebe",  "lieber",  "liebes", "sehr",      "geehrte",   "geehrter", "guten",   "tag",     "danke",
    "bonjour",  "salut",  "cher",    "chère",  "merci",     "coucou",    "hola",     "querido", "querida", "estimado",
    "estimada", "ciao",   "caro",    "cara",   "gentile",   "hoi",       "beste",    "dag",     "olá",     "oi",
    "cześć",    "drogi",  "droga",   "привет", "уважаемый", "уважаемая", "ahoj",     "čau",     "hej",     "kära",
    "hei",      "moi",    "mr",      "mrs",    "ms",        "dr",        "herr",     "frau",    "madame",  "monsieur",
    "señor",    "señora", "signora", "prof"};
/// Mailboxes of many, so that who greets them greets the user, too.
constexpr std::array groups{"all",  "everyone", "everybody", "group", "info", "list", "office",
                            "team", "staff",    "board",     "alle",  "tous", "todos"};
constexpr std::array connectors{"and", "&",  "und", "et", "y",  "e",    "en",    "i",   "и", "a",
                                "och", "og", "ja",  "+",  "so", "also", "alors", "dus", "så"};

/// The runs of letters in `text`, lower-cased; single letters are no names.
void addWordsOf(std::string_view text, std::vector<std::string>& words) {
  std::string word;
  int letters = 0;
  const auto endWord = [&] {
    if (letters >= 2) {
      words.push_back(lowerCased(word));
    }
    word.clear();
    letters = 0;
  };
  for (std::size_t position = 0; position < text.size();) {
    const auto character = takeCharacter(text, position);
    if (character > 0 && u_isalpha(character) != 0) {
      appendCharacter(word, character);
      ++letters;
    } else {
      endWord();
    }
  }
  endWord();
}

void addNamesOf(const MailAddress& mailbox, std::vector<std::string>& words) {
  addWordsOf(mailbox.displayName, words);
  addWordsOf(std::string_view{mailbox.address}.substr(0, mailbox.address.rfind('@')), words);
}

/// A word as it stands in a text, and the marks around it.
struct Word {
  std::string letters;
  bool isMentioned = false;
  bool endsPhrase = false;
};

/// The first word of `text`, which is removed from it.
Word takeWord(std::string_view& text) {
  constexpr std::string_view ends = ",:;.!?-";
  auto raw = text.substr(0, text.find(' '));
  text = trimmed(text.substr(raw.size()));
  Word word;
  word.isMentioned = raw.starts_with('@');
  while (!raw.empty() && (ends.contains(raw.back()) || std::string_view{")\"'"}.contains(raw.back()))) {
    word.endsPhrase = word.endsPhrase || ends.contains(raw.back());
    raw.remove_suffix(1);
  }
  raw.remove_prefix(std::min(raw.find_first_not_of("@(\"'"), raw.size()));
  word.endsPhrase = word.endsPhrase || text.empty() || text.starts_with("- ") || text.starts_with("– ");
  word.letters = lowerCased(raw);
  return word;
}

/// Collects names as long as nothing but names come.
class NameReader {
 public:
  explicit NameReader(const ReaderNames& names) : names_{names} {}

  bool take(const Word& word) {
    const bool isOwn = isOneOf(word.letters, names_.own);
    if (!isOwn && !isOneOf(word.letters, names_.others)) {
      return false;
    }
    addressee_ = isOwn || addressee_ == Addressee::user ? Addressee::user : Addressee::somebodyElse;
    return true;
  }

  Addressee addressee() const noexcept { return addressee_; }

 private:
  const ReaderNames& names_;
  Addressee addressee_ = Addressee::nobodyByName;
};

/// Whom `part` of a sentence calls if it says nothing but names, "Bob" or "so Bob".
Addressee namesAlone(std::string_view part, const ReaderNames& names) {
  constexpr std::size_t mostBytes = 60;
  if (part.size() > mostBytes) {
    return Addressee::nobodyByName;
  }
  NameReader found{names};
  while (!part.empty()) {
    const auto word = takeWord(part);
    if (!word.letters.empty() && !found.take(word) && !isOneOf(word.letters, connectors)) {
      return Addressee::nobodyByName;
    }
  }
  return found.addressee();
}

/// Whether the first words of `text` turn to a reader: "could you".
bool speaksToReader(std::string_view text) {
  constexpr std::size_t mostBytes = 40;
  auto start = trimmed(text.substr(0, mostBytes));
  for (int count = 0; count < 3 && !start.empty(); ++count) {
    if (readerWords().contains(takeWord(start).letters)) {
      return true;
    }
  }
  return false;
}

bool knowsNames(const ReaderNames& names) noexcept {
  return !names.own.empty() || !names.others.empty();
}

} // namespace

ReaderNames readerNames(const MailMessage& message, const std::set<std::string>& ownAddresses) {
  constexpr std::size_t mostReaders = 50;
  ReaderNames names;
  std::vector<std::string> others;
  for (const auto* mailboxes : {&message.to, &message.cc}) {
    for (const auto& mailbox : *mailboxes) {
      const bool isSender =
          std::ranges::find(message.from, mailbox.address, &MailAddress::address) != message.from.end();
      if (ownAddresses.contains(mailbox.address)) {
        addNamesOf(mailbox, names.own);
      } else if (!isSender && others.size() < mostReaders) {
        addNamesOf(mailbox, others);
      }
    }
  }
  std::ranges::copy_if(others, std::back_inserter(names.others),
                       [&names](const auto& word) { return !isOneOf(word, names.own) && !isOneOf(word, groups); });
  return names;
}

Address addressAtStart(std::string_view text, const ReaderNames& names) {
  constexpr int mostGreetingWords = 3;
  constexpr int mostWords = 12;
  constexpr std::size_t mostBytes = 160;
  if (!knowsNames(names)) {
    return {};
  }
  text = text.substr(0, mostBytes);
  NameReader found{names};
  bool isGreeting = false;
  bool isEnded = false;
  for (int words = 0, greetingWords = 0; words < mostWords && !text.empty(); ++words) {
    const auto rest = text;
    const auto word = takeWord(text);
    if (found.addressee() == Addressee::nobodyByName && greetingWords < mostGreetingWords &&
        isOneOf(word.letters, greetings)) {
      ++greetingWords;
      isGreeting = true;
    } else if (found.take(word)) {
      isEnded = word.endsPhrase || word.isMentioned;
    } else if (found.addressee() == Addressee::nobodyByName || !isOneOf(word.letters, connectors)) {
      text = rest;
      break;
    }
  }
  if (found.addressee() == Addressee::nobodyByName || !(isEnded || isGreeting)) {
    return {};
  }
  return {found.addressee(), isGreeting || text.empty()};
}

Addressee addresseeWithin(std::string_view sentence, const ReaderNames& names) {
  if (!knowsNames(names)) {
    return Addressee::nobodyByName;
  }
  auto result = Addressee::nobodyByName;
  for (auto comma = sentence.find(','); comma != std::string_view::npos;) {
    const auto start = comma + 1;
    comma = sentence.find(',', start);
    const auto rest = comma == std::string_view::npos ? std::string_view{} : sentence.substr(comma + 1);
    const auto called = namesAlone(trimmed(sentence.substr(start, comma - start)), names);
    if (called != Addressee::nobodyByName && (rest.empty() || speaksToReader(rest))) {
      result = called;
    }
  }
  return result;
}

} // namespace orvan
