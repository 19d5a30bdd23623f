#include "OrvanObservatory/attention_projection_reader.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace orvan {
namespace {

Task<Projection> readProjection(std::shared_ptr<DatabaseQueue> database, Instant asOf, std::int64_t most) {
  const auto outlooks = database->read([asOf](Connection& connection) { return contactOutlooks(asOf, connection); });
  const auto count = AttentionProjectionReader::countToLookAt(outlooks, most);
  std::vector<ProjectedPerson> people;
  people.reserve(count);
  for (const auto& outlook : std::span{outlooks}.first(count)) {
    people.emplace_back(outlook.personKey, outlook.displayName);
  }
  co_return Projection{std::move(people)};
}

} // namespace

AttentionProjectionReader::AttentionProjectionReader(std::shared_ptr<DatabaseQueue> database, Instant asOf,
                                                     std::int64_t most)
    : database_(std::move(database)), asOf_(asOf), most_(most) {}

AttentionProjectionReader::AttentionProjectionReader(std::shared_ptr<DatabaseQueue> database, Instant asOf,
                                                     std::int64_t most, Executor executor)
    : database_(std::move(database)), asOf_(asOf), most_(most), work_(std::move(executor)) {}

Task<Projection> AttentionProjectionReader::project(std::int64_t /*minimumInteractions*/) {
  return runOn(work_.get(), readProjection(database_, asOf_, most_));
}

std::size_t AttentionProjectionReader::countToLookAt(std::span<const ContactOutlook> outlooks,
                                                     std::int64_t most) noexcept {
  const auto none = std::ranges::find_if_not(outlooks, &ContactOutlook::canHaveReason);
  return std::min(static_cast<std::size_t>(none - outlooks.begin()),
                  static_cast<std::size_t>(std::max<std::int64_t>(most, 0)));
}

} // namespace orvan
