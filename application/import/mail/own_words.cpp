#include "application/import/mail/own_words.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include "OrvanPlatform/white_space.h"

namespace orvan {
namespace {

using Lines = std::span<const std::string_view>;

// What mail programs write around the mail they quote, in the languages they speak.

/// How a line begins that introduces a quotation with a date: "On Monday, 2 March 2026, ...".
constexpr std::array attributionOpeners{"On ",  "Am ", "Le ",     "El ",   "Il ",  "Em ", "Op ",
                                        "Den ", "På ", "W dniu ", "Dnia ", "Dne ", "В ",  "Quoting "};
constexpr std::array attributionVerbs{"wrote",      "writes",     "schrieb",  "a écrit", "écrit", "escribió",
                                      "ha scritto", "scrisse",    "escreveu", "schreef", "skrev", "kirjoitti",
                                      "napisał",    "napsal",     "пишет",    "писал",   "yazdı", "写道",
                                      "寫道",       "書きました", "のメール"};
constexpr std::array forwardBeginnings{
    "Begin forwarded message",    "Anfang der weitergeleiteten", "Début du message",  "Inicio del mensaje reenviado",
    "Inizio messaggio inoltrato", "Begin doorgestuurd bericht",  "Início da mensagem"};
constexpr std::array senderLabels{"From", "Von", "De", "Da",     "Van",    "Från",
                                  "Fra",  "Od",  "От", "发件人", "差出人", "Kimden"};
constexpr std::array otherLabels{"Sent",      "Date",    "To",     "Subject",    "Gesendet", "Datum",     "An",
                                 "Betreff",   "Envoyé",  "À",      "Objet",      "Enviado",  "Fecha",     "Para",
                                 "Asunto",    "Inviato", "Data",   "A",          "Oggetto",  "Verzonden", "Aan",
                                 "Onderwerp", "Skickat", "Till",   "Ämne",       "Sendt",    "Til",       "Emne",
                                 "Wysłano",   "Do",      "Temat",  "Отправлено", "Дата",     "Кому",      "Тема",
                                 "发送时间",  "日期",    "收件人", "主题",       "送信日時", "宛先",      "件名"};

bool startsWithOneOf(std::string_view line, const auto& beginnings) {
  return std::ranges::any_of(beginnings, [line](const char* beginning) { return line.starts_with(beginning); });
}

bool containsOneOf(std::string_view line, const auto& parts) {
  return std::ranges::any_of(parts, [line](const char* part) { return line.contains(part); });
}

bool startsWithDigit(std::string_view line) noexcept {
  return !line.empty() && line.front() >= '0' && line.front() <= '9';
}

bool endsWithColon(std::string_view line) noexcept {
  return line.ends_with(':') || line.ends_with("：");
}

bool isQuoted(std::string_view line) noexcept {
  return line.starts_with('>') || line.starts_with('|');
}

/// "-- "; many programs take its blank away.
bool isSignatureDelimiter(std::string_view line) noexcept {
  return line == "--";
}

bool isRule(std::string_view line) noexcept {
  constexpr std::size_t shortestRule = 16;
  return line.size() >= shortestRule && line.find_first_not_of('_') == std::string_view::npos;
}

/// "-----Original Message-----", "---------- Forwarded message ---------"
bool isTitledRule(std::string_view line) noexcept {
  return line.starts_with("----") && line.ends_with("----") && line.find_first_not_of("- ") != std::string_view::npos;
}

/// Whether `line` is a label and its colon, in bold (*From:*) perhaps, before anything else.
bool isLabelled(std::string_view line, const auto& labels) {
  constexpr std::size_t longestLabel = 40;
  if (!line.substr(0, longestLabel).contains(':') && !line.contains("：")) {
    return false;
  }
  if (line.starts_with('*')) {
    line.remove_prefix(1);
  }
  return std::ranges::any_of(labels, [line](std::string_view label) {
    if (!line.starts_with(label)) {
      return false;
    }
    auto after = line.substr(label.size());
    after = trimmed(after.substr(std::min(after.find_first_not_of('*'), after.size())));
    return after.starts_with(':') || after.starts_with("：");
  });
}

/// The head of a mail, as it is put above a quotation that is not marked line by line.
bool beginsQuotedHead(Lines lines) {
  constexpr std::size_t longestHead = 6;
  if (!isLabelled(lines.front(), senderLabels)) {
    return false;
  }
  const auto following = lines.subspan(1, std::min(longestHead, lines.size() - 1));
  return std::ranges::any_of(following, [](std::string_view line) { return isLabelled(line, otherLabels); });
}

bool endsOwnWords(Lines lines) {
  const auto line = lines.front();
  return isSignatureDelimiter(line) || isRule(line) || isTitledRule(line) || startsWithOneOf(line, forwardBeginnings) ||
         beginsQuotedHead(lines);
}

struct Attribution {
  std::size_t lineCount = 0;
  /// It has a date or an opener, so it introduces a quotation whatever follows.
  bool isCertain = false;
};

/// The attribution that `lines` begin with, which may be wrapped; of no lines when they do not.
Attribution attributionAtStart(Lines lines) {
  constexpr std::size_t mostLines = 4;
  const bool isCertain = startsWithOneOf(lines.front(), attributionOpeners) || startsWithDigit(lines.front());
  for (std::size_t count = 1; count <= std::min(isCertain ? mostLines : 1, lines.size()); ++count) {
    const auto line = lines[count - 1];
    if (line.empty() || isQuoted(line)) {
      break;
    }
    if (endsWithColon(line)) {
      const bool hasVerb = std::ranges::any_of(
          lines.first(count), [](std::string_view part) { return containsOneOf(part, attributionVerbs); });
      return hasVerb ? Attribution{count, isCertain} : Attribution{};
    }
  }
  return {};
}

bool quotationFollows(Lines lines) {
  const auto next = std::ranges::find_if(lines, [](std::string_view line) { return !line.empty(); });
  return next != lines.end() && isQuoted(*next);
}

std::vector<std::string_view> trimmedLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    lines.push_back(trimmed(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

} // namespace

std::string ownWords(std::string_view text) {
  const auto allLines = trimmedLines(text);
  std::string own;
  for (Lines lines{allLines}; !lines.empty() && !endsOwnWords(lines);) {
    const auto attribution = attributionAtStart(lines);
    if (attribution.lineCount > 0 && quotationFollows(lines.subspan(attribution.lineCount))) {
      lines = lines.subspan(attribution.lineCount);
      continue;
    }
    if (attribution.isCertain) {
      break;
    }
    if (!isQuoted(lines.front())) {
      own.append(lines.front());
    }
    own += '\n';
    lines = lines.subspan(1);
  }
  return own;
}

} // namespace orvan
