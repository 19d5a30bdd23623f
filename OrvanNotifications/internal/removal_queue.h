#pragma once

#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <vector>

namespace orvan::internal {

enum class RemovalKind { pending, delivered };

/// Removals that the service has not confirmed yet, in their order. Those that could not be sent become one with the
/// next of their kind. Belongs to one thread.
class RemovalQueue {
 public:
  struct Batch {
    std::uint64_t id;
    RemovalKind kind;
    std::vector<std::string> identifiers;
    bool underWay = false;
  };

  void push(RemovalKind kind, std::vector<std::string> identifiers);
  /// The next one to send, from now on under way; nothing when enough are.
  std::optional<Batch> next();
  void confirmed(std::uint64_t id);
  /// It is to be sent again.
  void failed(std::uint64_t id);
  /// A request with this identifier is made pending anew: a removal that came before must not take it away later.
  /// Whether there was such a removal.
  bool forgetPending(const std::string& identifier);

  bool empty() const noexcept { return batches_.empty(); }
  bool anyUnderWay() const noexcept { return underWay_ > 0; }

 private:
  std::list<Batch>::iterator find(std::uint64_t id);

  std::list<Batch> batches_;
  std::uint64_t nextID_ = 0;
  int underWay_ = 0;
};

} // namespace orvan::internal
