#include "OrvanNotifications/internal/removal_queue.h"

#include <algorithm>

namespace orvan::internal {
namespace {

/// A bus lets nobody have too many questions open.
constexpr int mostUnderWay = 32;

} // namespace

void RemovalQueue::push(RemovalKind kind, std::vector<std::string> identifiers) {
  if (!batches_.empty() && !batches_.back().underWay && batches_.back().kind == kind) {
    auto& waiting = batches_.back().identifiers;
    waiting.insert(waiting.end(), std::make_move_iterator(identifiers.begin()),
                   std::make_move_iterator(identifiers.end()));
    return;
  }
  batches_.push_back(Batch{.id = nextID_++, .kind = kind, .identifiers = std::move(identifiers)});
}

std::optional<RemovalQueue::Batch> RemovalQueue::next() {
  const auto waiting = std::ranges::find(batches_, false, &Batch::underWay);
  if (waiting == batches_.end() || underWay_ >= mostUnderWay) {
    return std::nullopt;
  }
  waiting->underWay = true;
  ++underWay_;
  return *waiting;
}

std::list<RemovalQueue::Batch>::iterator RemovalQueue::find(std::uint64_t id) {
  return std::ranges::find(batches_, id, &Batch::id);
}

void RemovalQueue::confirmed(std::uint64_t id) {
  batches_.erase(find(id));
  --underWay_;
}

void RemovalQueue::failed(std::uint64_t id) {
  const auto batch = find(id);
  batch->underWay = false;
  --underWay_;
  if (batch->identifiers.empty()) {
    batches_.erase(batch);
  }
}

bool RemovalQueue::forgetPending(const std::string& identifier) {
  std::size_t forgotten = 0;
  for (auto& batch : batches_) {
    if (batch.kind == RemovalKind::pending) {
      forgotten += std::erase(batch.identifiers, identifier);
    }
  }
  return forgotten > 0;
}

} // namespace orvan::internal
