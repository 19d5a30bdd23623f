#pragma once

#include <span>

#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanSpineCore/store_write_diagnostics.h"
#include "OrvanStore/connection.h"

namespace orvan::internal {

enum class FileDemand {
  /// Only that it is no database without encryption.
  encrypted,
  /// There and a regular file as well.
  regular,
  /// As well the user's alone, with the files beside it.
  isPrivate,
};

enum class SchemaDemand {
  none,
  /// The canonical tables of this version or an older one.
  notNewer,
  /// The canonical tables of this version.
  newest,
};

/// What a role comes to.
struct StoreTerms {
  OpenMode mode;
  /// Run one at a time, in this order, on every connection as soon as it has its key.
  std::span<const char* const> preparation;
  FileDemand file;
  SchemaDemand schema;
  StorePool pool;
  /// Whether the last connection to close may move the log into the file.
  bool checkpointsOnClose;

  bool isWriting() const noexcept { return mode != OpenMode::readOnly; }
};

const StoreTerms& termsOf(StoreRole role) noexcept;

} // namespace orvan::internal
