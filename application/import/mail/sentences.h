#pragma once

#include <unicode/utypes.h>

#include <cstddef>
#include <optional>
#include <string_view>

namespace orvan {

/// A sentence of a paragraph; the views lie within the paragraph.
struct Sentence {
  /// With the mark it ends in, without blanks around it.
  std::string_view text;
  /// What comes after it in the paragraph.
  std::string_view following;
  bool isQuestion = false;
  /// It is within quotation marks: somebody's words that are only told of.
  bool isReported = false;
};

/// Goes through a paragraph, which is on one line, sentence by sentence. In all no more than a few looks at each byte.
class SentenceReader {
 public:
  explicit SentenceReader(std::string_view paragraph) noexcept : text_{paragraph} {}

  std::optional<Sentence> next();

 private:
  /// Ends the sentence at the place that has been read up to.
  Sentence take(bool isQuestion);
  std::optional<Sentence> takeQuestion(std::size_t markStart);

  bool asks(std::size_t markStart, UChar32 mark) const;
  bool isBetweenBackticks(std::size_t markStart) const noexcept;
  bool isTernary(std::size_t markStart) const noexcept;
  bool endsStatement(std::size_t markStart, UChar32 mark) const;
  bool endsWord(std::size_t markStart, UChar32 mark) const;
  bool lowerCaseFollows() const noexcept;
  UChar32 nextThatIsNot(bool (*passes)(UChar32)) const noexcept;
  std::string_view wordBefore(std::size_t end) const noexcept;

  std::string_view text_;
  std::size_t position_ = 0;
  /// Where the sentence at position_ begins.
  std::size_t start_ = 0;
};

} // namespace orvan
