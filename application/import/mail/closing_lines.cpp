#include "application/import/mail/closing_lines.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

#include "OrvanPlatform/white_space.h"
#include "application/import/mail/decoded_text.h"
#include "application/import/mail/text_search.h"

namespace orvan {
namespace {

// All in lower case.

/// Of these a line that closes a mail has one.
constexpr std::array closings{
    "regards",     "best",       "wishes",      "cheers",    "yours",   "sincerely",    "thanks",
    "thank you",   "thx",        "love",        "take care", "gruß",    "grüße",        "gruss",
    "gruesse",     "lg",         "vg",          "mfg",       "danke",   "cordialement", "bien à vous",
    "amicalement", "bises",      "merci",       "saludo",    "abrazo",  "atentamente",  "gracias",
    "saluti",      "grazie",     "groet",       "abraço",    "abraco",  "obrigad",      "cumprimentos",
    "pozdraw",     "poważaniem", "с уважением", "спасибо",   "pozdrav", "díky",         "mvh",
    "hälsning",    "hilsen",     "terv",        "よろしく",  "敬具",    "谢谢",         "此致"};
constexpr std::array devicePlugs{"sent from ",    "sent via ",   "get outlook for ", "von meinem ",    "gesendet von ",
                                 "gesendet mit ", "envoyé de ",  "envoyé depuis ",   "enviado desde ", "enviado do ",
                                 "enviado de ",   "inviato da ", "verzonden van",    "verstuurd van",  "wysłane z ",
                                 "отправлено с ", "odesláno z",  "skickat från ",    "iphoneから",     "发自我的"};
/// How a legal notice begins, and what it says within its first lines.
constexpr std::array noticeBeginnings{
    "this e-mail",     "this email",        "this message",         "this communication", "the information",
    "the content",     "if you are not",    "if you have received", "please consider",    "please think",
    "think before",    "before printing",   "confidential",         "disclaimer",         "diese e-mail",
    "diese nachricht", "der inhalt dieser", "ce message",           "ce courriel",        "cet e-mail",
    "este mensaje",    "este correo",       "esta mensagem",        "este e-mail",        "questo messaggio",
    "questa e-mail",   "dit bericht",       "deze e-mail",          "ta wiadomość",       "это сообщение"};
constexpr std::array notices{
    "intended recipient", "confidential", "the environment", "received this", "print", "vertraulich",
    "confidentiel",       "confidencia",  "riservat",        "vertrouwelijk", "poufn", "конфиденц"};
/// What only bulk mail offers: in a line of its own or beside a link; and what it always means.
constexpr std::array unsubscribing{"unsubscribe",   "abmelden",  "abbestellen",  "désabonner", "désinscrire",
                                   "darse de baja", "disiscriv", "uitschrijven", "afmelden",   "wypisz",
                                   "отписаться",    "odhlásit",  "avregistrera", "退订",       "配信停止"};
constexpr std::array browserOffers{"view in browser",    "view in your browser", "view it in your browser",
                                   "view this email in", "view this message in", "read this email in",
                                   "im browser ansehen", "im browser anzeigen",  "im browser öffnen",
                                   "version en ligne",   "ver en el navegador",  "nel browser",
                                   "bekijk in browser",  "bekijk deze"};
constexpr std::array linkWords{"http", "click", "here", "klick", "hier", "cliquez", "aquí", "clic", "klik"};

std::ptrdiff_t wordsInLine(std::string_view line) noexcept {
  return 1 + std::ranges::count(line, ' ');
}

std::string lowerCasedStart(std::string_view line) {
  constexpr std::size_t longestPhrase = 120;
  return lowerCased(line.substr(0, longestPhrase));
}

/// "Kind regards", "Thanks again": its first or its last word is one that closes.
bool isClosing(std::string_view line) {
  constexpr std::ptrdiff_t mostWords = 5;
  if (line.empty() || wordsInLine(line) > mostWords || std::string_view{"?:;"}.contains(line.back())) {
    return false;
  }
  const auto lower = lowerCasedStart(line);
  const auto lastWord = std::string_view{lower}.substr(lower.rfind(' ') + 1);
  return startsWithOneOf(lower, closings) || startsWithOneOf(lastWord, closings);
}

/// "Tom Miller", "tom", "Dr. H. Vogel", "Jan van Dam"
bool isName(std::string_view line) noexcept {
  constexpr std::ptrdiff_t mostWords = 4;
  constexpr std::array particles{"van ", "von ", "de ", "da ", "del ", "der ", "den ", "of ", "i. ", "zu "};
  const auto words = wordsInLine(line);
  if (words > mostWords || std::string_view{".?!,:;"}.contains(line.back())) {
    return false;
  }
  for (auto rest = line; words > 1 && !rest.empty();) {
    if (rest.front() >= 'a' && rest.front() <= 'z' && !startsWithOneOf(rest, particles)) {
      return false;
    }
    rest.remove_prefix(std::min(rest.find(' '), rest.size() - 1) + 1);
  }
  return true;
}

} // namespace

bool beginsSignOff(TextLines lines) {
  if (!isClosing(lines.front())) {
    return false;
  }
  const auto below = lines.subspan(1);
  const auto name = std::ranges::find_if(below, [](std::string_view line) { return !line.empty(); });
  return name == below.end() || isName(*name);
}

bool isPostscript(std::string_view line) {
  constexpr std::array beginnings{"PS", "P.S", "P. S", "PPS", "Ps", "ps:", "NB", "N.B", "P.-S"};
  return startsWithOneOf(line, beginnings);
}

bool isDevicePlug(std::string_view line) {
  return startsWithOneOf(lowerCasedStart(line), devicePlugs);
}

bool beginsNotice(TextLines lines) {
  constexpr std::size_t mostLines = 3;
  const auto start = lowerCasedStart(lines.front());
  return startsWithOneOf(start, noticeBeginnings) &&
         std::ranges::any_of(lines.first(std::min(mostLines, lines.size())),
                             [](std::string_view line) { return containsOneOf(lowerCasedStart(line), notices); });
}

bool marksBulkMail(std::string_view line) {
  constexpr std::ptrdiff_t mostWords = 4;
  if (line.empty()) {
    return false;
  }
  const auto lower = lowerCasedStart(line);
  if (containsOneOf(lower, browserOffers)) {
    return true;
  }
  const bool isEntry = wordsInLine(line) <= mostWords && !std::string_view{".!"}.contains(line.back());
  return containsOneOf(lower, unsubscribing) && !line.contains('?') && (isEntry || containsOneOf(lower, linkWords));
}

} // namespace orvan
