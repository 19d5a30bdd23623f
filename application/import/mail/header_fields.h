#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace orvan {

/// One field of a mail's header as it lies there: views into the header.
struct RawHeaderField {
  std::string_view name;
  /// With its line breaks, those of a folded value included.
  std::string_view value;
};

/// Goes through a header's fields in their order. Lines that are neither a field nor go on one are passed over.
class HeaderScanner {
 public:
  explicit HeaderScanner(std::string_view header) noexcept : rest_{header} {}

  std::optional<RawHeaderField> next() noexcept;

 private:
  std::string_view takeLine() noexcept;

  std::string_view rest_;
};

/// The fields the importer asks for.
enum class HeaderField : std::size_t {
  autoSubmitted,
  cc,
  contentDisposition,
  contentTransferEncoding,
  contentType,
  date,
  from,
  inReplyTo,
  listID,
  listPost,
  listUnsubscribe,
  mailingList,
  messageID,
  precedence,
  references,
  subject,
  to,
};

/// A header's fields by name, whatever the case of its letters; of a repeated field, the first. Holds views into the
/// header, which must stay.
class HeaderFields {
 public:
  explicit HeaderFields(std::string_view header) noexcept;

  bool has(HeaderField field) const noexcept { return at(field).has_value(); }
  /// As RawHeaderField::value; empty when there is no such field.
  std::string_view raw(HeaderField field) const noexcept { return at(field).value_or(std::string_view{}); }

 private:
  static constexpr std::size_t fieldCount = static_cast<std::size_t>(HeaderField::to) + 1;

  const std::optional<std::string_view>& at(HeaderField field) const noexcept {
    return values_[static_cast<std::size_t>(field)];
  }

  std::array<std::optional<std::string_view>, fieldCount> values_{};
};

/// How much of one field's value is looked at, in bytes.
inline constexpr std::size_t longestFieldValue = 64 * std::size_t{1024};

/// A value on one line: its line breaks removed, other control characters as blanks, without blanks around it, and cut
/// at longestFieldValue.
std::string unfolded(std::string_view rawValue);

/// `mail` in two at its first blank line, which belongs to neither. Without one, all of it is header.
struct SplitMail {
  std::string_view header;
  std::string_view body;
};
SplitMail splitAtBlankLine(std::string_view mail) noexcept;

/// Whether `left` and `right` are the same but for the case of ASCII letters.
bool equalIgnoringCase(std::string_view left, std::string_view right) noexcept;

} // namespace orvan
