#pragma once

#include <memory>

#include "OrvanObservatory/projection_reader.h"
#include "OrvanPlatform/work_executor.h"
#include "OrvanStore/connection.h"
#include "OrvanStore/database_queue.h"

namespace orvan {

/// The people of the canonical tables, read through a connection that the application gives. Mailing lists, offices
/// ("support@") and machines are nobody; a person who also has such an address is. Somebody whose key is not text is
/// left out; a name that is not text reads as empty.
class StoreProjectionReader final : public ProjectionReader {
 public:
  /// Reads `database` on a thread of its own. Must not be destroyed on that thread.
  explicit StoreProjectionReader(std::shared_ptr<DatabaseQueue> database);
  /// Reads `database` on `executor`, which must outlive every read.
  StoreProjectionReader(std::shared_ptr<DatabaseQueue> database, Executor executor);

  Task<Projection> project(std::int64_t minimumInteractions) override;

  /// The same within the caller's read, on the caller's thread.
  static Projection project(std::int64_t minimumInteractions, Connection& connection);

 private:
  std::shared_ptr<DatabaseQueue> database_;
  WorkExecutor work_;
};

} // namespace orvan
