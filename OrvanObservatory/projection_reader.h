#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/executor.h"

namespace orvan {

/// A person as the projection shows them.
class ProjectedPerson {
 public:
  ProjectedPerson(std::string personKey, std::string displayName)
      : personKey_(std::move(personKey)), displayName_(std::move(displayName)) {}

  const std::string& personKey() const noexcept { return personKey_; }
  const std::string& displayName() const noexcept { return displayName_; }

  bool operator==(const ProjectedPerson&) const = default;

 private:
  std::string personKey_;
  std::string displayName_;
};

/// People the user deals with, in the order that the reader says.
class Projection {
 public:
  explicit Projection(std::vector<ProjectedPerson> people) : people_(std::move(people)) {}

  const std::vector<ProjectedPerson>& people() const noexcept { return people_; }

 private:
  std::vector<ProjectedPerson> people_;
};

/// Lists the people the user deals with.
class ProjectionReader {
 public:
  virtual ~ProjectionReader() = default;

  /// The people with at least `minimumInteractions` interactions: at 1, those the user never dealt with are left out.
  /// Asynchronous; what it throws is the awaiting operation's error. May be called from any thread.
  virtual Task<Projection> project(std::int64_t minimumInteractions) = 0;
};

} // namespace orvan
