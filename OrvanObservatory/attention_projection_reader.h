#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "OrvanObservatory/contact_outlook.h"
#include "OrvanObservatory/projection_reader.h"
#include "OrvanPlatform/instant.h"
#include "OrvanPlatform/work_executor.h"
#include "OrvanStore/database_queue.h"

namespace orvan {

/// The people list for an evidence compiler: whoever can have a reason as of a moment, those first whom the user really
/// deals with. A compiler looks at so many people and no more, and cuts by their keys; given this list it looks at the
/// right ones, whatever the size of the store.
class AttentionProjectionReader final : public ProjectionReader {
 public:
  /// Reads `database` on a thread of its own. At most `most` people are listed, which is to be the compiler's cap. Must
  /// not be destroyed on that thread.
  AttentionProjectionReader(std::shared_ptr<DatabaseQueue> database, Instant asOf, std::int64_t most);
  /// Reads `database` on `executor`, which must outlive every read.
  AttentionProjectionReader(std::shared_ptr<DatabaseQueue> database, Instant asOf, std::int64_t most,
                            Executor executor);

  /// Everybody listed has an interaction; a greater minimum is not looked at.
  Task<Projection> project(std::int64_t minimumInteractions) override;

  /// How many of `outlooks`, from the first, are to be looked at: those who can have a reason, `most` at most.
  static std::size_t countToLookAt(std::span<const ContactOutlook> outlooks, std::int64_t most) noexcept;

 private:
  std::shared_ptr<DatabaseQueue> database_;
  Instant asOf_;
  std::int64_t most_;
  WorkExecutor work_;
};

} // namespace orvan
