#include "application/import/mail/body_text.h"

#include <algorithm>
#include <cstdint>

#include "application/import/mail/decoded_text.h"
#include "application/import/mail/flowed_text.h"
#include "application/import/mail/gmime.h"
#include "application/import/mail/header_fields.h"
#include "application/import/mail/html_text.h"
#include "application/import/mail/text_lines.h"

namespace orvan {
namespace {

constexpr int deepestNesting = 16;
constexpr std::size_t longestText = 256 * std::size_t{1024};

/// What a part says about its content.
struct MediaType {
  std::string type;
  std::string subtype;
  std::string charset;
  std::string boundary;
  bool isFlowed = false;
  SoftBreakBlank softBreakBlank = SoftBreakBlank::kept;

  bool isText(std::string_view kind) const noexcept { return type == "text" && subtype == kind; }
};

std::string parameterOf(GMimeContentType* type, const char* name) {
  const char* value = g_mime_content_type_get_parameter(type, name);
  return value == nullptr ? "" : value;
}

/// The field's value; one that names no type and subtype ("text", "plain; charset=utf-8") speaks of plain text.
std::string contentTypeOf(const HeaderFields& fields) {
  const auto value = unfolded(fields.raw(HeaderField::contentType));
  const auto name = value.substr(0, value.find(';'));
  const auto slash = name.find('/');
  const bool isNamed = slash != std::string::npos && name.find_first_not_of(" \t", slash + 1) != std::string::npos;
  return isNamed ? value : "text/plain" + value.substr(name.size());
}

MediaType mediaTypeOf(const HeaderFields& fields) {
  const auto value = contentTypeOf(fields);
  const GMimeMediaType type{g_mime_content_type_parse(nullptr, value.c_str())};
  const bool deletesBlank = equalIgnoringCase(parameterOf(type.get(), "delsp"), "yes");
  return {.type = lowerCasedAscii(g_mime_content_type_get_media_type(type.get())),
          .subtype = lowerCasedAscii(g_mime_content_type_get_media_subtype(type.get())),
          .charset = parameterOf(type.get(), "charset"),
          .boundary = parameterOf(type.get(), "boundary"),
          .isFlowed = equalIgnoringCase(parameterOf(type.get(), "format"), "flowed"),
          .softBreakBlank = deletesBlank ? SoftBreakBlank::deleted : SoftBreakBlank::kept};
}

bool isAttachment(const HeaderFields& fields) {
  return lowerCasedAscii(unfolded(fields.raw(HeaderField::contentDisposition))).starts_with("attachment");
}

/// Cuts a multipart body at its boundary lines. What comes before the first is not a part.
class PartSplitter {
 public:
  PartSplitter(std::string_view body, std::string_view boundary)
      : rest_{body}, delimiter_{"--" + std::string{boundary}} {
    takeUntilDelimiter();
  }

  std::optional<std::string_view> next() {
    if (isClosed_ || rest_.empty()) {
      return std::nullopt;
    }
    return takeUntilDelimiter();
  }

 private:
  std::string_view takeUntilDelimiter() {
    const auto part = rest_.substr(0, findDelimiter());
    rest_.remove_prefix(part.size());
    const auto line = firstLine(rest_);
    isClosed_ = line.empty() || line.substr(delimiter_.size()).starts_with("--");
    rest_.remove_prefix(line.size());
    return part;
  }

  std::size_t findDelimiter() const {
    auto found = rest_.find(delimiter_);
    while (found != std::string_view::npos && !isDelimiterAt(found)) {
      found = rest_.find(delimiter_, found + 1);
    }
    return found;
  }

  bool isDelimiterAt(std::size_t position) const {
    return (position == 0 || rest_[position - 1] == '\n') && isWholeLine(rest_.substr(position + delimiter_.size()));
  }

  /// Another boundary may begin with this one.
  static bool isWholeLine(std::string_view after) {
    return after.empty() || after.starts_with("--") || std::string_view{" \t\r\n"}.contains(after.front());
  }

  std::string_view rest_;
  std::string delimiter_;
  bool isClosed_ = false;
};

struct TextPart {
  std::string_view content;
  MediaType type;
  std::string encoding;
};

class TextFinder {
 public:
  void visit(const HeaderFields& fields, std::string_view content, int depth) {
    auto type = mediaTypeOf(fields);
    if (type.type == "multipart") {
      visitParts(content, type.boundary, depth);
    } else if (type.isText("calendar")) {
      isInvitation_ = true;
    } else if (type.isText("plain") || type.isText("html")) {
      auto& found = type.isText("plain") ? plain_ : html_;
      if (!found && !isAttachment(fields)) {
        found = {content, std::move(type), unfolded(fields.raw(HeaderField::contentTransferEncoding))};
      }
    }
  }

  bool isInvitation() const noexcept { return isInvitation_; }
  const TextPart* plain() const noexcept { return plain_ ? &*plain_ : nullptr; }
  const TextPart* html() const noexcept { return html_ ? &*html_ : nullptr; }

 private:
  void visitParts(std::string_view content, const std::string& boundary, int depth) {
    if (depth == deepestNesting || boundary.empty()) {
      return;
    }
    PartSplitter parts{content, boundary};
    while (const auto part = parts.next()) {
      const auto [header, body] = splitAtBlankLine(*part);
      visit(HeaderFields{header}, body, depth + 1);
    }
  }

  std::optional<TextPart> plain_;
  std::optional<TextPart> html_;
  bool isInvitation_ = false;
};

/// Whole lines, so that no character is cut in two.
std::string_view firstLines(std::string_view content) {
  if (content.size() <= longestText) {
    return content;
  }
  const auto first = content.substr(0, longestText);
  return first.substr(0, first.rfind('\n'));
}

/// Takes one ">" from each line that begins with "From " after one or more of them.
std::string withoutFromEscapes(std::string_view content) {
  std::string lines;
  lines.reserve(content.size());
  while (!content.empty()) {
    auto line = firstLine(content);
    content.remove_prefix(line.size());
    const auto unquoted = std::min(line.find_first_not_of('>'), line.size());
    if (unquoted > 0 && line.substr(unquoted).starts_with("From ")) {
      line.remove_prefix(1);
    }
    lines.append(line);
  }
  return lines;
}

std::string transferDecoded(std::string_view content, const std::string& encodingName) {
  GMimeEncoding decoder;
  g_mime_encoding_init_decode(&decoder, g_mime_content_encoding_from_string(encodingName.c_str()));
  std::string decoded(g_mime_encoding_outlen(&decoder, content.size()), '\0');
  decoded.resize(g_mime_encoding_step(&decoder, content.data(), content.size(), decoded.data()));
  return decoded;
}

std::string decodedText(const TextPart& part, BodyLines bodyLines) {
  const auto content = firstLines(part.content);
  const bool hasEscapes = bodyLines == BodyLines::fromEscaped && content.contains(">From ");
  const auto lines = hasEscapes ? withoutFromEscapes(content) : std::string{content};
  auto text = utf8FromCharset(transferDecoded(lines, part.encoding), part.type.charset);
  return part.type.isFlowed ? unflowed(text, part.type.softBreakBlank) : text;
}

} // namespace

BodyText bodyText(const HeaderFields& fields, std::string_view body, BodyLines bodyLines) {
  prepareGMime();
  TextFinder finder;
  finder.visit(fields, body, 0);
  BodyText result;
  result.isInvitation = finder.isInvitation();
  if (const auto* plain = finder.plain()) {
    result.text = decodedText(*plain, bodyLines);
  } else if (const auto* html = finder.html()) {
    result.text = textOfHtml(decodedText(*html, bodyLines));
  }
  return result;
}

} // namespace orvan
