#include "OrvanRelationshipAttention/why_now/attention_why_now_evidence_reference.h"

namespace orvan {

using Reference = AttentionWhyNowEvidenceReference;

Reference Reference::sourceEvent(std::string identifier) {
  return {Kind::sourceEvent, std::move(identifier)};
}

Reference Reference::interaction(std::string identifier) {
  return {Kind::interaction, std::move(identifier)};
}

Reference Reference::thread(std::string identifier) {
  return {Kind::thread, std::move(identifier)};
}

Reference Reference::openLoop(std::string identifier) {
  return {Kind::openLoop, std::move(identifier)};
}

Reference Reference::claimEvidence(std::string identifier) {
  return {Kind::claimEvidence, std::move(identifier)};
}

std::string_view Reference::keyName() const noexcept {
  switch (kind_) {
    case Kind::sourceEvent:
      return "sourceEvent";
    case Kind::interaction:
      return "interaction";
    case Kind::thread:
      return "thread";
    case Kind::openLoop:
      return "openLoop";
    case Kind::claimEvidence:
      return "claimEvidence";
  }
  return {};
}

std::string_view Reference::storedReferenceKind() const noexcept {
  switch (kind_) {
    case Kind::sourceEvent:
      return "source_event";
    case Kind::interaction:
      return "interaction";
    case Kind::thread:
      return "thread";
    case Kind::openLoop:
      return "open_loop";
    case Kind::claimEvidence:
      return "claim_evidence";
  }
  return {};
}

} // namespace orvan
