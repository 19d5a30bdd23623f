#include "application/import/mail/html_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <optional>
#include <utility>

#include "application/import/mail/characters.h"
#include "application/import/mail/decoded_text.h"
#include "application/import/mail/text_search.h"

namespace orvan {
namespace {

constexpr std::array hiddenElements{"blockquote", "head", "script", "style", "title"};
/// What mail programs call the elements that hold an introduction of a quotation or a signature.
constexpr std::array hiddenClasses{"moz-cite-prefix", "gmail_attr",   "gmail_signature",     "moz-signature",
                                   "yahoo_quoted",    "AppleMailSig", "protonmail_signature"};
/// What they call those at which a quotation begins that nothing else marks.
constexpr std::array quotationStarts{"divRplyFwdMsg", "appendonsend", "mail-editor-reference-message", "stopSpelling"};
constexpr std::array blockElements{"div", "dd",    "dl", "dt", "h1", "h2", "h3", "h4", "hr",
                                   "li",  "table", "ol", "p",  "td", "th", "tr", "ul"};
constexpr std::array<std::pair<std::string_view, std::string_view>, 54> namedCharacters{
    {{"amp", "&"},    {"lt", "<"},     {"gt", ">"},     {"quot", "\""},  {"apos", "'"},   {"nbsp", " "},
     {"auml", "ä"},   {"ouml", "ö"},   {"uuml", "ü"},   {"Auml", "Ä"},   {"Ouml", "Ö"},   {"Uuml", "Ü"},
     {"szlig", "ß"},  {"agrave", "à"}, {"aacute", "á"}, {"acirc", "â"},  {"atilde", "ã"}, {"aring", "å"},
     {"aelig", "æ"},  {"ccedil", "ç"}, {"egrave", "è"}, {"eacute", "é"}, {"ecirc", "ê"},  {"euml", "ë"},
     {"igrave", "ì"}, {"iacute", "í"}, {"icirc", "î"},  {"iuml", "ï"},   {"ograve", "ò"}, {"oacute", "ó"},
     {"ocirc", "ô"},  {"otilde", "õ"}, {"oslash", "ø"}, {"ugrave", "ù"}, {"uacute", "ú"}, {"ucirc", "û"},
     {"ntilde", "ñ"}, {"Agrave", "À"}, {"Eacute", "É"}, {"Aring", "Å"},  {"iquest", "¿"}, {"iexcl", "¡"},
     {"lsquo", "‘"},  {"rsquo", "’"},  {"ldquo", "“"},  {"rdquo", "”"},  {"bdquo", "„"},  {"laquo", "«"},
     {"raquo", "»"},  {"ndash", "–"},  {"mdash", "—"},  {"bull", "•"},   {"hellip", "…"}, {"euro", "€"}}};

class HtmlReader {
 public:
  explicit HtmlReader(std::string_view html) : rest_{html} {}

  std::string read() {
    while (!rest_.empty()) {
      if (rest_.front() == '<') {
        readTag();
      } else if (rest_.front() == '&') {
        readReference();
      } else {
        readPlainText();
      }
    }
    return std::move(text_);
  }

 private:
  void readTag() {
    if (rest_.starts_with("<!--")) {
      takePast("-->");
      return;
    }
    const bool closes = rest_.starts_with("</");
    const auto name = tagName(rest_.substr(closes ? 2 : 1));
    if (name.empty() && !rest_.starts_with("<!") && !rest_.starts_with("<?")) {
      append("<");
      rest_.remove_prefix(1);
      return;
    }
    const auto tag = takePast(">");
    if (!hiddenBy_.empty()) {
      countHidden(name, closes);
    } else if (!closes && isHidden(name, tag)) {
      hiddenBy_ = name;
      hiddenDepth_ = 1;
      text_.append(name == "blockquote" ? "\n\n>\n\n" : "\n\n");
    } else {
      text_.append(textInPlaceOf(name, tag));
      isPreformatted_ = name == "pre" ? !closes : isPreformatted_;
    }
  }

  static bool isHidden(std::string_view name, std::string_view tag) {
    const bool mayHaveClass = name == "div" || name == "pre" || name == "span";
    return isOneOf(name, hiddenElements) || (mayHaveClass && containsOneOf(tag, hiddenClasses));
  }

  static std::string_view textInPlaceOf(std::string_view name, std::string_view tag) {
    if (containsOneOf(tag, quotationStarts)) {
      return "\n\n________________\n\n";
    }
    if (name == "br") {
      return "\n";
    }
    if (name == "code") {
      return "`";
    }
    return isOneOf(name, blockElements) ? "\n\n" : "";
  }

  void countHidden(std::string_view name, bool closes) {
    if (name == hiddenBy_) {
      hiddenDepth_ += closes ? -1 : 1;
    }
    if (hiddenDepth_ == 0) {
      hiddenBy_.clear();
      text_.append("\n\n");
    }
  }

  /// A reference without its semicolon, or of no known character, is text.
  void readReference() {
    constexpr std::size_t longestReference = 10;
    const auto end = rest_.substr(0, longestReference).find(';');
    const auto character = end == std::string_view::npos ? std::nullopt : characterOf(rest_.substr(1, end - 1));
    append(character.value_or("&"));
    rest_.remove_prefix(character ? end + 1 : 1);
  }

  /// Line breaks of the source are blanks to the reader.
  void readPlainText() {
    const auto end = std::min(rest_.find_first_of("<&"), rest_.size());
    if (hiddenBy_.empty()) {
      const auto start = static_cast<std::ptrdiff_t>(text_.size());
      text_.append(rest_.substr(0, end));
      if (!isPreformatted_) {
        std::replace_if(
            text_.begin() + start, text_.end(), [](char byte) { return byte == '\n' || byte == '\r'; }, ' ');
      }
    }
    rest_.remove_prefix(end);
  }

  void append(std::string_view text) {
    if (hiddenBy_.empty()) {
      text_.append(text);
    }
  }

  std::string_view takePast(std::string_view end) {
    const auto found = rest_.find(end);
    const auto taken = rest_.substr(0, found == std::string_view::npos ? rest_.size() : found + end.size());
    rest_.remove_prefix(taken.size());
    return taken;
  }

  static std::string tagName(std::string_view text) {
    const auto isNameByte = [](char byte) {
      return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9');
    };
    const auto end = std::ranges::find_if_not(text, isNameByte);
    return lowerCasedAscii({text.begin(), end});
  }

  static std::optional<std::string> characterOf(std::string_view reference) {
    if (reference.starts_with('#')) {
      return numberedCharacter(reference.substr(1));
    }
    const auto* found =
        std::ranges::find(namedCharacters, reference, &std::pair<std::string_view, std::string_view>::first);
    return found == namedCharacters.end() ? std::nullopt : std::optional{std::string{found->second}};
  }

  static std::optional<std::string> numberedCharacter(std::string_view number) {
    const bool isHexadecimal = number.starts_with('x') || number.starts_with('X');
    if (isHexadecimal) {
      number.remove_prefix(1);
    }
    std::uint32_t character = 0;
    const auto [end, error] =
        std::from_chars(number.data(), number.data() + number.size(), character, isHexadecimal ? 16 : 10);
    if (error != std::errc{} || end != number.data() + number.size() || !U_IS_UNICODE_CHAR(character)) {
      return std::nullopt;
    }
    std::string text;
    appendCharacter(text, static_cast<UChar32>(character));
    return text;
  }

  std::string_view rest_;
  std::string text_;
  /// The name of the element within which nothing is shown, and how many of that name are open.
  std::string hiddenBy_;
  int hiddenDepth_ = 0;
  bool isPreformatted_ = false;
};

} // namespace

std::string textOfHtml(std::string_view html) {
  return HtmlReader{html}.read();
}

} // namespace orvan
