#pragma once

#include <system_error>

#include "OrvanStore/store_error.h"
#include "application/store/application_store_error.h"

namespace orvan {

/// What a fault of the store means to its owner. The system's reason goes before SQLite's: a store that only lacks room
/// or file handles heals by itself, whatever SQLite makes of it.
///
/// cannotDecrypt stands for a wrong key and a damaged file alike, as SQLite tells no difference, and cannotReadStore
/// for everything without a name of its own.
ApplicationStoreError failureOf(const StoreError& error);

/// The same for an error of the system's own.
ApplicationStoreError failureOfSystem(const std::error_code& reason);

} // namespace orvan
