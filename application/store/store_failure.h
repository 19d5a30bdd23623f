#pragma once

#include <system_error>

#include "OrvanPlatform/error.h"
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

/// Throws what an error of the store, of the road to it or of the system means to the store's owner. What the vault
/// throws stays what it is, and so does what is in the application's words already.
[[noreturn]] void throwInApplicationWords(const Error& error, const char* attempt);

/// Runs `body`; what it throws is thrown in the application's words.
template <typename Body>
auto inApplicationWords(const char* attempt, Body body) {
  try {
    return body();
  } catch (const Error& error) {
    throwInApplicationWords(error, attempt);
  }
}

} // namespace orvan
