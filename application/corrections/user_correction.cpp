#include "application/corrections/user_correction.h"

#include <string_view>

#include "OrvanPlatform/internet_date_time.h"

namespace orvan {
namespace {

std::string_view nameOf(CorrectionTarget target) noexcept {
  switch (target) {
    case CorrectionTarget::person:
      return "person";
    case CorrectionTarget::claim:
      return "claim";
    case CorrectionTarget::identityMembership:
      return "identity_membership";
  }
  return {};
}

} // namespace

void noteCorrection(CorrectionTarget target, const std::string& targetID, Instant now, ChangeRecorder& recorder,
                    Connection& connection) {
  const auto id = connection.fetchOptionalText("SELECT 'correction-' || lower(hex(randomblob(16)))").value();
  recorder.watch(ChangedTable::userCorrection, {id});
  connection.execute("INSERT INTO user_correction (id, target_type, target_id, created_at) VALUES (?, ?, ?, ?)", id,
                     nameOf(target), targetID, formatInternetDateTime(now));
}

} // namespace orvan
