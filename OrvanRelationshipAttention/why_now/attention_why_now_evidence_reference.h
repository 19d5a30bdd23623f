#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace orvan {

/// Names one row of the store that a reason rests on.
class AttentionWhyNowEvidenceReference {
 public:
  /// The table the row is in.
  enum class Kind { sourceEvent, interaction, thread, openLoop, claimEvidence };

  AttentionWhyNowEvidenceReference(Kind kind, std::string identifier)
      : kind_(kind), identifier_(std::move(identifier)) {}

  static AttentionWhyNowEvidenceReference sourceEvent(std::string identifier);
  static AttentionWhyNowEvidenceReference interaction(std::string identifier);
  static AttentionWhyNowEvidenceReference thread(std::string identifier);
  static AttentionWhyNowEvidenceReference openLoop(std::string identifier);
  static AttentionWhyNowEvidenceReference claimEvidence(std::string identifier);

  Kind kind() const noexcept { return kind_; }
  /// The row's identifier.
  const std::string& identifier() const noexcept { return identifier_; }

  /// The kind in memory's words: "sourceEvent", "openLoop", ... Not what the store writes.
  std::string_view keyName() const noexcept;
  /// The kind in the store's words: "source_event", "open_loop", ...
  std::string_view storedReferenceKind() const noexcept;

  bool operator==(const AttentionWhyNowEvidenceReference&) const = default;

 private:
  Kind kind_;
  std::string identifier_;
};

} // namespace orvan
