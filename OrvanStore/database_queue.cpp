#include "OrvanStore/database_queue.h"

namespace orvan {

DatabaseQueue::DatabaseQueue(const std::filesystem::path& file, const ConnectionConfiguration& configuration)
    : connection_(file, configuration) {}

} // namespace orvan
