#pragma once

#include <optional>
#include <string>
#include <utility>

namespace orvan {

/// A follow-up as the store holds it. Times are stamps (ActionEffectStore::stamp); the state is "scheduled",
/// "completed" or "cancelled".
class PersistedFollowUp {
 public:
  PersistedFollowUp(std::string id, std::string sourceObjectID, std::string personID, std::string dueAt,
                    std::string state, std::optional<std::string> completedAt)
      : id_(std::move(id)),
        sourceObjectID_(std::move(sourceObjectID)),
        personID_(std::move(personID)),
        dueAt_(std::move(dueAt)),
        state_(std::move(state)),
        completedAt_(std::move(completedAt)) {}

  const std::string& id() const noexcept { return id_; }
  const std::string& sourceObjectID() const noexcept { return sourceObjectID_; }
  const std::string& personID() const noexcept { return personID_; }
  const std::string& dueAt() const noexcept { return dueAt_; }
  const std::string& state() const noexcept { return state_; }
  const std::optional<std::string>& completedAt() const noexcept { return completedAt_; }

  bool operator==(const PersistedFollowUp&) const = default;

 private:
  std::string id_;
  std::string sourceObjectID_;
  std::string personID_;
  std::string dueAt_;
  std::string state_;
  std::optional<std::string> completedAt_;
};

} // namespace orvan
