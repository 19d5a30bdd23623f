#include "application/import/cards/card_reader.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "OrvanPlatform/white_space.h"
#include "application/import/address/normal_address.h"
#include "application/import/cards/card_source.h"
#include "application/import/mail/decoded_text.h"

namespace orvan {
namespace {

/// Far more than anybody has; a card with more is told from its first ones.
constexpr std::size_t mostAddresses = 100;
constexpr std::size_t longestValue = 8192;

std::string upperCased(std::string_view text) {
  std::string upper{text};
  std::ranges::transform(upper, upper.begin(),
                         [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
  return upper;
}

/// "item1.EMAIL;TYPE=INTERNET" as its parts, but the group before the point.
struct Property {
  std::string name;
  /// In upper case; those without a name, as vCard 2.1 has them, too.
  std::vector<std::string> parameters;
};

Property propertyOf(std::string_view line) {
  Property property;
  bool isQuoted = false;
  std::string part;
  const auto end = [&] {
    property.name.empty() ? property.name = upperCased(part) : property.parameters.emplace_back(upperCased(part));
    part.clear();
  };
  for (const char c : line) {
    isQuoted = isQuoted != (c == '"');
    if (c == ':' && !isQuoted) {
      break;
    }
    if (c == ';' && !isQuoted) {
      end();
    } else {
      part += c;
    }
  }
  end();
  property.name.erase(0, property.name.rfind('.') + 1);
  return property;
}

std::string parameterCalled(std::string_view name, const Property& property) {
  for (const auto& parameter : property.parameters) {
    if (parameter.starts_with(name) && parameter.substr(name.size()).starts_with('=')) {
      auto value = parameter.substr(name.size() + 1);
      std::erase(value, '"');
      return value;
    }
  }
  return {};
}

bool isQuotedPrintable(const Property& property) {
  return parameterCalled("ENCODING", property) == "QUOTED-PRINTABLE" ||
         std::ranges::find(property.parameters, "QUOTED-PRINTABLE") != property.parameters.end();
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  const char upper = c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
  return upper >= 'A' && upper <= 'F' ? upper - 'A' + 10 : -1;
}

std::string fromQuotedPrintable(std::string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool hasDigits = text[at] == '=' && at + 2 < text.size();
    const int high = hasDigits ? hexDigit(text[at + 1]) : -1;
    const int low = hasDigits ? hexDigit(text[at + 2]) : -1;
    if (high >= 0 && low >= 0) {
      bytes += static_cast<char>(high * 16 + low);
      at += 2;
    } else {
      bytes += text[at];
    }
  }
  return bytes;
}

/// As the program that wrote the card meant it, in UTF-8, with its backslashes.
std::string decodedValue(const ContentLine& line, const Property& property) {
  auto value = line.value();
  value.resize(std::min(value.size(), longestValue));
  return utf8FromCharset(isQuotedPrintable(property) ? fromQuotedPrintable(value) : value,
                         parameterCalled("CHARSET", property));
}

/// The parts between semicolons that no backslash stands before, each without its backslashes.
std::vector<std::string> partsOf(std::string_view value) {
  std::vector<std::string> parts(1);
  for (std::size_t at = 0; at < value.size(); ++at) {
    if (value[at] == '\\' && at + 1 < value.size()) {
      ++at;
      parts.back() += value[at] == 'n' || value[at] == 'N' ? ' ' : value[at];
    } else if (value[at] == ';') {
      parts.emplace_back();
    } else {
      parts.back() += value[at];
    }
  }
  return parts;
}

/// A semicolon in a value that is one text is one.
std::string wholeText(std::string_view value) {
  std::string text;
  for (const auto& part : partsOf(value)) {
    text += (text.empty() ? "" : ";") + part;
  }
  return onOneLine(text);
}

/// "Ada Maria Marsh" of family name, given names, further names, and titles.
std::string nameFromParts(std::string_view value) {
  auto parts = partsOf(value);
  parts.resize(3);
  std::string name;
  for (const auto* part : {&parts[1], &parts[2], &parts[0]}) {
    name += " " + *part;
  }
  return onOneLine(name);
}

/// Gathers what one card tells.
class CardBuilder {
 public:
  void add(const ContentLine& line) {
    const auto property = propertyOf(line.text.substr(0, longestValue));
    if (property.name == "FN") {
      takeName(formattedName_, wholeText(decodedValue(line, property)));
    } else if (property.name == "N") {
      takeName(nameOfParts_, nameFromParts(decodedValue(line, property)));
    } else if (property.name == "EMAIL") {
      takeAddress(wholeText(decodedValue(line, property)));
    } else if (property.name == "KIND" || property.name == "X-ADDRESSBOOKSERVER-KIND") {
      isNobody_ |= upperCased(line.value()) != "INDIVIDUAL";
    } else if (property.name == "X-EVOLUTION-LIST") {
      isNobody_ |= upperCased(line.value()) == "TRUE";
    }
  }

  CardItem card() && {
    if (isNobody_) {
      return CardSkip::nobody;
    }
    if (addresses_.empty()) {
      return CardSkip::noAddress;
    }
    auto& name = formattedName_.empty() ? nameOfParts_ : formattedName_;
    if (name.empty() && addresses_.size() == 1) {
      return CardSkip::noName;
    }
    return ContactCard{std::move(name), std::move(addresses_)};
  }

 private:
  /// The first counts. Some programs put the address where they know no name.
  static void takeName(std::string& name, std::string found) {
    if (name.empty() && !normalAddress(found)) {
      name = std::move(found);
    }
  }

  void takeAddress(const std::string& written) {
    auto address = normalAddress(written);
    const bool isKnown = address && std::ranges::find(addresses_, *address) != addresses_.end();
    if (address && !isKnown && addresses_.size() < mostAddresses) {
      addresses_.push_back(*std::move(address));
    }
  }

  std::string formattedName_;
  std::string nameOfParts_;
  std::vector<std::string> addresses_;
  bool isNobody_ = false;
};

bool isDelimiter(const ContentLine& line, std::string_view name) {
  return line.name() == name && upperCased(line.value()) == "VCARD";
}

} // namespace

const char* describe(CardSkip reason) noexcept {
  switch (reason) {
    case CardSkip::noAddress:
      return "no mail address";
    case CardSkip::noName:
      return "an address without a name";
    case CardSkip::nobody:
      return "a group, a company or a place";
    case CardSkip::own:
      return "your own";
    case CardSkip::unreadable:
      return "not readable, without an end";
    case CardSkip::noCardFile:
      return "a file that cannot be read or holds no card";
  }
  return "unknown reason";
}

CardReader::CardReader(const std::filesystem::path& file) : lines_(file, CardSourceError::cannotRead) {}

std::optional<CardItem> CardReader::next() {
  while (const auto line = nextLine()) {
    if (isDelimiter(*line, "BEGIN")) {
      return readCard();
    }
  }
  return std::nullopt;
}

/// With what a vCard 2.1 continues on the next line without a blank before it: its soft line breaks.
std::optional<ContentLine> CardReader::nextLine() {
  auto line = lines_.next();
  while (line && line->text.ends_with('=') && !line->cut && line->text.size() < longestValue &&
         isQuotedPrintable(propertyOf(line->text))) {
    const auto more = lines_.next();
    if (!more) {
      break;
    }
    line->text.pop_back();
    line->text += more->text;
  }
  bytesRead_ = lines_.position();
  return line;
}

CardItem CardReader::readCard() {
  CardBuilder builder;
  int depth = 0;
  bool mayNest = false;
  while (const auto line = nextLine()) {
    if (isDelimiter(*line, "BEGIN")) {
      if (!mayNest) { // This one was never closed; what follows is another.
        lines_.seek(line->offset);
        return CardSkip::unreadable;
      }
      ++depth;
    } else if (isDelimiter(*line, "END")) {
      if (depth == 0) {
        return std::move(builder).card();
      }
      --depth;
    } else if (depth == 0) {
      builder.add(*line);
    }
    // The one who acts for somebody has a card within the other's.
    mayNest = line->name().ends_with("AGENT");
  }
  return CardSkip::unreadable;
}

} // namespace orvan
