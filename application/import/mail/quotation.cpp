#include "application/import/mail/quotation.h"

#include <algorithm>
#include <array>
#include <string>

#include "OrvanPlatform/white_space.h"
#include "application/import/mail/text_search.h"

namespace orvan {
namespace {

// What mail programs write around the mail they quote, in the languages they speak.

/// How a line begins that introduces a quotation with a date: "On Monday, 2 March 2026, ...".
constexpr std::array attributionOpeners{"On ", "Am ",      "Le ", "El ",     "Il ",         "Em ",
                                        "Op ", "Den ",     "På ", "W dniu ", "Dnia ",       "Dne ",
                                        "В ",  "Quoting ", "在 ", "于 ",     "In article ", "In message "};
constexpr std::array attributionVerbs{
    "wrote",   "writes",   "schrieb", "schreibt", "a écrit", "écrit",      "escribió", "escribe", "ha scritto",
    "scrisse", "escreveu", "schreef", "skrev",    "skriver", "kirjoitti",  "napisał",  "pisze",   "napsal",
    "пишет",   "писал",    "yazdı",   "写道",     "寫道",    "書きました", "のメール", "Quoting"};
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

bool endsWithColon(std::string_view line) noexcept {
  return line.ends_with(':') || line.ends_with("：");
}

// --- Marks in front of quoted lines ---------------------------------------------------------------------------------

bool isNameByte(char byte) noexcept {
  const auto value = static_cast<unsigned char>(byte);
  return (value >= 'a' && value <= 'z') || (value >= 'A' && value <= 'Z') || value >= 0x80 || byte == '.' ||
         byte == '_' || isDigit(byte);
}

bool isBlankOrEnd(std::string_view text) noexcept {
  return text.empty() || text.front() == ' ' || text.front() == '\t';
}

/// "RB>", "John> ", "rb>>"
bool beginsWithQuotedName(std::string_view line) noexcept {
  constexpr std::size_t longestName = 12;
  const auto mark = line.substr(0, longestName + 1).find('>');
  if (mark == std::string_view::npos || mark == 0 || !std::ranges::all_of(line.substr(0, mark), isNameByte)) {
    return false;
  }
  const auto after = line.substr(mark + 1);
  return isBlankOrEnd(after) || after.starts_with('>');
}

/// "<bob> are you there?"
bool isChat(std::string_view line) noexcept {
  constexpr std::size_t longestName = 20;
  const auto mark = line.substr(0, longestName).find("> ");
  return line.starts_with('<') && mark != std::string_view::npos && mark > 1 &&
         std::ranges::all_of(line.substr(1, mark - 1), isNameByte);
}

/// A mark that quotes only in company.
bool beginsWithRareMark(std::string_view line) noexcept {
  return !line.empty() && std::string_view{":}#%"}.contains(line.front()) && isBlankOrEnd(line.substr(1));
}

/// The end of a quoted line that a program wrapped without a mark on its second half.
bool isTornOff(std::string_view line, std::string_view before) noexcept {
  constexpr std::size_t wrappedLength = 60;
  return !line.empty() && line.front() >= 'a' && line.front() <= 'z' && before.size() >= wrappedLength &&
         !std::string_view{".?!:"}.contains(before.back());
}

// --- Lines that introduce a quotation -------------------------------------------------------------------------------

bool isMarked(std::string_view line) noexcept {
  return line.starts_with('>') || line.starts_with('|') || beginsWithQuotedName(line);
}

/// Up to the line that ends in a colon; of no lines when there is none soon, or what comes before it is no
/// introduction.
TextLines linesUpToColon(TextLines lines) {
  constexpr std::size_t mostLines = 4;
  constexpr std::size_t mostBytes = 400;
  std::size_t bytes = 0;
  for (std::size_t count = 1; count <= std::min(mostLines, lines.size()); ++count) {
    const auto line = lines[count - 1];
    bytes += line.size();
    if (line.empty() || bytes > mostBytes || line.contains('?') || isMarked(line)) {
      return {};
    }
    if (endsWithColon(line)) {
      return lines.first(count);
    }
    if (std::string_view{".!"}.contains(line.back()) && !std::ranges::any_of(line, isDigit)) {
      return {};
    }
  }
  return {};
}

std::string joined(TextLines lines) {
  std::string text;
  for (const auto line : lines) {
    text.append(text.empty() ? "" : " ").append(line);
  }
  return text;
}

bool hasTimeOfDay(std::string_view text) noexcept {
  for (auto colon = text.find(':'); colon != std::string_view::npos; colon = text.find(':', colon + 1)) {
    if (colon > 0 && isDigit(text[colon - 1]) && colon + 1 < text.size() && isDigit(text[colon + 1])) {
      return true;
    }
  }
  return false;
}

bool endsWithVerb(std::string_view text) {
  const auto words = trimmed(text.substr(0, text.find_last_not_of(":： ") + 1));
  return std::ranges::any_of(attributionVerbs, [words](const char* verb) { return words.ends_with(verb); });
}

// --- Heads of mails -------------------------------------------------------------------------------------------------

/// "-----Original Message-----", "---------- Forwarded message ---------"
bool isTitledRule(std::string_view line) noexcept {
  return line.starts_with("----") && line.ends_with("----") && line.find_first_not_of("- ") != std::string_view::npos;
}

bool isRule(std::string_view line) noexcept {
  constexpr std::size_t shortestRule = 16;
  return line.size() >= shortestRule && line.find_first_not_of('_') == std::string_view::npos;
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

/// The lines of a mail's head, as it is put above a quotation that is not marked line by line; 0 when it is none.
std::size_t quotedHeadAtStart(TextLines lines) {
  constexpr std::size_t longestHead = 6;
  if (!isLabelled(lines.front(), senderLabels)) {
    return 0;
  }
  const auto following = lines.subspan(1, std::min(longestHead, lines.size() - 1));
  const auto isOtherLabel = [](std::string_view line) { return isLabelled(line, otherLabels); };
  if (std::ranges::none_of(following, isOtherLabel)) {
    return 0;
  }
  const auto end = std::ranges::find_if(following, [](std::string_view line) { return line.empty(); });
  return 1 + static_cast<std::size_t>(end - following.begin());
}

} // namespace

std::vector<bool> quotedLines(TextLines lines) {
  std::vector<bool> quoted(lines.size());
  for (std::size_t at = 0; at < lines.size(); ++at) {
    quoted[at] = isMarked(lines[at]) || isChat(lines[at]);
    if (at > 0 && beginsWithRareMark(lines[at]) && beginsWithRareMark(lines[at - 1]) &&
        lines[at].front() == lines[at - 1].front()) {
      quoted[at - 1] = quoted[at] = true;
    }
  }
  for (std::size_t at = 1; at + 1 < lines.size(); ++at) {
    if (!quoted[at] && quoted[at - 1] && quoted[at + 1] && isTornOff(lines[at], lines[at - 1])) {
      quoted[at] = true;
    }
  }
  return quoted;
}

Attribution attributionAtStart(TextLines lines) {
  const auto introduction = linesUpToColon(lines);
  if (introduction.empty()) {
    return {};
  }
  const auto text = joined(introduction);
  const bool hasAddress = text.contains('@');
  const bool hasDigit = std::ranges::any_of(text, isDigit);
  const bool isAddressAndDate = hasAddress && hasDigit && (text.ends_with(">:") || text.ends_with("]:"));
  if (!isAddressAndDate &&
      (!containsOneOf(text, attributionVerbs) || (introduction.size() > 1 && !hasAddress && !hasDigit))) {
    return {};
  }
  const bool beginsAsOne = startsWithOneOf(text, attributionOpeners) || isDigit(text.front());
  const bool isPrecise = hasAddress || hasTimeOfDay(text) || (hasDigit && endsWithVerb(text));
  return {introduction.size(), isAddressAndDate || (beginsAsOne && isPrecise)};
}

std::size_t separatorAtStart(TextLines lines) {
  const auto line = lines.front();
  if (isTitledRule(line) || isRule(line) || startsWithOneOf(line, forwardBeginnings)) {
    return 1;
  }
  return quotedHeadAtStart(lines);
}

} // namespace orvan
