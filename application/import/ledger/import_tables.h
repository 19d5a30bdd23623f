#pragma once

#include "OrvanStore/connection.h"

namespace orvan {

/// Creates the tables that only the importer uses, where they are missing. Runs within the caller's transaction.
void createImportTables(Connection& connection);

} // namespace orvan
