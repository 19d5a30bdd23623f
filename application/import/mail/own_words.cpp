#include "application/import/mail/own_words.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>
#include <vector>

#include "OrvanPlatform/white_space.h"
#include "application/import/mail/characters.h"
#include "application/import/mail/closing_lines.h"
#include "application/import/mail/machine_lines.h"
#include "application/import/mail/quotation.h"

namespace orvan {
namespace {

/// "-- "; many programs take its blank away.
bool isSignatureDelimiter(std::string_view line) noexcept {
  return line == "--" || line == "- --";
}

bool isSubject(std::string_view line) {
  constexpr std::array labels{"Subject:", "Betreff:", "Objet :", "Objet:", "Asunto:", "Oggetto:", "Onderwerp:",
                              "Assunto:", "Ämne:",    "Emne:",   "Temat:", "Тема:",   "件名",     "主题"};
  return std::ranges::any_of(labels, [line](const char* label) { return line.starts_with(label); });
}

/// Of a list, or of questions and answers.
bool isListEntry(std::string_view line) noexcept {
  constexpr std::array beginnings{"- ", "* ", "• ", "Q:", "F:", "A:", "R:"};
  return std::ranges::any_of(beginnings, [line](const char* beginning) { return line.starts_with(beginning); });
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

bool quotationFollows(TextLines lines, const std::vector<bool>& quoted) {
  const auto next = std::ranges::find_if(lines, [](std::string_view line) { return !line.empty(); });
  return next != lines.end() && quoted[quoted.size() - static_cast<std::size_t>(lines.end() - next)];
}

/// Puts lines together to paragraphs.
class Paragraphs {
 public:
  void add(std::string_view line) {
    if (line.empty() || isListEntry(line)) {
      endParagraph();
    }
    if (!line.empty()) {
      lines_.push_back(line);
    }
  }

  void leaveGap() {
    endParagraph();
    if (!text_.empty() && !text_.ends_with("\n\n")) {
      text_ += '\n';
    }
  }

  std::string take() {
    endParagraph();
    return std::move(text_);
  }

 private:
  void endParagraph() {
    std::size_t longest = 0;
    for (const auto line : lines_) {
      longest = std::max(longest, line.size());
    }
    for (std::size_t at = 0; at < lines_.size(); ++at) {
      const bool isLast = at + 1 == lines_.size();
      text_.append(lines_[at]) += isLast || isBrokenByHand(lines_[at], lines_[at + 1], longest) ? '\n' : ' ';
    }
    lines_.clear();
  }

  /// Whether the first word of `next` had found room on `line`, so that no program broke it there, and a sentence or
  /// a heading may well end where it was broken.
  static bool isBrokenByHand(std::string_view line, std::string_view next, std::size_t longest) noexcept {
    constexpr std::ptrdiff_t mostBlanksInHeading = 2;
    const auto firstWord = std::min(next.find(' '), next.size());
    if (line.size() + 1 + firstWord >= longest) {
      return false;
    }
    std::size_t start = 0;
    const bool mayBeHeading =
        u_islower(takeCharacter(next, start)) == 0 && std::ranges::count(line, ' ') <= mostBlanksInHeading;
    return mayBeHeading || std::string_view{",.!?:;"}.contains(line.back());
  }

  std::vector<std::string_view> lines_;
  std::string text_;
};

/// Goes through the lines of a mail and keeps its writer's.
class OwnWordsReader {
 public:
  explicit OwnWordsReader(TextLines lines) : quoted_{quotedLines(lines)}, rest_{lines} {}

  std::string read() {
    while (!rest_.empty()) {
      if (!isQuoted() && marksBulkMail(rest_.front())) {
        return {};
      }
      if (endsHere()) {
        break;
      }
      takeLines();
    }
    return own_.take();
  }

 private:
  bool isQuoted() const { return quoted_[quoted_.size() - rest_.size()]; }

  bool endsHere() const {
    if (isQuoted()) {
      return false;
    }
    if (isSignatureDelimiter(rest_.front()) || beginsPatch(rest_)) {
      return true;
    }
    const auto attribution = attributionAtStart(rest_);
    const auto introduced = std::max(attribution.isCertain ? attribution.lineCount : 0, separator());
    return introduced > 0 && !quotationFollows(rest_.subspan(introduced), quoted_);
  }

  void takeLines() {
    const auto line = rest_.front();
    if (isQuoted()) {
      drop(1);
      isSigned_ = false;
    } else if (line.starts_with("-----BEGIN PGP ")) {
      dropSigningLines(line);
    } else if (line.starts_with("```")) {
      dropThrough("```");
    } else if (const auto introduction = introductionLines(); introduction > 0) {
      drop(introduction);
    } else if (beginsNotice(rest_)) {
      dropNotice();
    } else if (isMachineLine(line) || isDevicePlug(line) || isSubject(line) || line == "---") {
      drop(1);
    } else {
      takeOwnLine(line);
    }
  }

  void takeOwnLine(std::string_view line) {
    isSigned_ = (isSigned_ && !isPostscript(line)) || beginsSignOff(rest_);
    if (!isSigned_) {
      own_.add(line);
    }
    rest_ = rest_.subspan(1);
  }

  std::size_t separator() const { return rest_.front().starts_with("-----BEGIN PGP ") ? 0 : separatorAtStart(rest_); }

  /// How many lines introduce the quotation below them.
  std::size_t introductionLines() const {
    const auto lines = std::max(attributionAtStart(rest_).lineCount, separator());
    return lines > 0 && quotationFollows(rest_.subspan(lines), quoted_) ? lines : 0;
  }

  void dropNotice() {
    while (!rest_.empty() && !rest_.front().empty() && separator() == 0) {
      drop(1);
    }
  }

  /// Of a signed text the head goes, of all else the whole block.
  void dropSigningLines(std::string_view begin) {
    if (begin.starts_with("-----BEGIN PGP SIGNED MESSAGE")) {
      dropThrough("");
    } else {
      dropThrough("-----END PGP ");
    }
  }

  /// Drops this line and all up to one that begins with `end`, or is empty if `end` is, together with it.
  void dropThrough(std::string_view end) {
    const auto last = std::ranges::find_if(
        rest_.subspan(1), [end](std::string_view line) { return end.empty() ? line.empty() : line.starts_with(end); });
    const auto following = rest_.last(static_cast<std::size_t>(rest_.end() - last));
    rest_ = following;
    drop(std::min<std::size_t>(following.size(), 1));
  }

  void drop(std::size_t count) {
    own_.leaveGap();
    rest_ = rest_.subspan(count);
  }

  std::vector<bool> quoted_;
  TextLines rest_;
  Paragraphs own_;
  /// The sign-off has been passed.
  bool isSigned_ = false;
};

} // namespace

std::string ownWords(std::string_view text) {
  const auto lines = trimmedLines(text);
  return OwnWordsReader{lines}.read();
}

} // namespace orvan
