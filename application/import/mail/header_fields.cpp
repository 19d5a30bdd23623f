#include "application/import/mail/header_fields.h"

#include <algorithm>

#include "application/import/mail/text_lines.h"

namespace orvan {
namespace {

constexpr std::array<std::string_view, 17> fieldNames{
    "auto-submitted",
    "cc",
    "content-disposition",
    "content-transfer-encoding",
    "content-type",
    "date",
    "from",
    "in-reply-to",
    "list-id",
    "list-post",
    "list-unsubscribe",
    "x-mailing-list",
    "message-id",
    "precedence",
    "references",
    "subject",
    "to",
};

constexpr char lowerCasedByte(char byte) noexcept {
  return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

bool isBlank(char byte) noexcept {
  return byte == ' ' || byte == '\t';
}

bool isControl(char byte) noexcept {
  return static_cast<unsigned char>(byte) < ' ' || byte == '\x7f';
}

/// RFC 5322 has printable ASCII without blanks in a name; blanks before the colon are an obsolete form.
std::string_view fieldName(std::string_view line) noexcept {
  auto name = line.substr(0, line.find(':'));
  if (name.size() == line.size()) {
    return {};
  }
  while (!name.empty() && isBlank(name.back())) {
    name.remove_suffix(1);
  }
  const bool isName = std::ranges::all_of(name, [](char byte) { return byte > ' ' && byte <= '~'; });
  return isName ? name : std::string_view{};
}

std::optional<std::size_t> indexOfField(std::string_view name) noexcept {
  const auto* found =
      std::ranges::find_if(fieldNames, [name](std::string_view known) { return equalIgnoringCase(known, name); });
  if (found == fieldNames.end()) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(found - fieldNames.begin());
}

} // namespace

std::string_view HeaderScanner::takeLine() noexcept {
  const auto line = firstLine(rest_);
  rest_.remove_prefix(line.size());
  return line;
}

std::optional<RawHeaderField> HeaderScanner::next() noexcept {
  while (!rest_.empty()) {
    const auto start = rest_;
    const auto line = takeLine();
    const auto name = fieldName(line);
    if (name.empty()) {
      continue;
    }
    const auto valueStart = line.find(':') + 1;
    auto length = line.size();
    while (!rest_.empty() && isBlank(rest_.front())) {
      length += takeLine().size();
    }
    return RawHeaderField{name, start.substr(valueStart, length - valueStart)};
  }
  return std::nullopt;
}

HeaderFields::HeaderFields(std::string_view header) noexcept {
  static_assert(fieldNames.size() == fieldCount);
  HeaderScanner scanner{header};
  while (const auto field = scanner.next()) {
    const auto index = indexOfField(field->name);
    if (index && !values_[*index]) {
      values_[*index] = field->value;
    }
  }
}

std::string unfolded(std::string_view rawValue) {
  rawValue = rawValue.substr(0, longestFieldValue);
  std::string line;
  line.reserve(rawValue.size());
  for (const char byte : rawValue) {
    if (byte != '\r' && byte != '\n' && !(line.empty() && isBlank(byte))) {
      line += isControl(byte) ? ' ' : byte;
    }
  }
  line.resize(line.find_last_not_of(' ') + 1);
  return line;
}

SplitMail splitAtBlankLine(std::string_view mail) noexcept {
  for (auto rest = mail; !rest.empty();) {
    const auto line = firstLine(rest);
    if (isBlankLine(line)) {
      return {mail.substr(0, mail.size() - rest.size()), rest.substr(line.size())};
    }
    rest.remove_prefix(line.size());
  }
  return {mail, {}};
}

bool equalIgnoringCase(std::string_view left, std::string_view right) noexcept {
  return left.size() == right.size() && std::ranges::equal(left, right, [](char one, char other) {
           return lowerCasedByte(one) == lowerCasedByte(other);
         });
}

} // namespace orvan
