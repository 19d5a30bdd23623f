#pragma once

#include <cstdint>

#include "OrvanStore/connection.h"

namespace orvan {

/// What a store says of itself, once it is decrypted: whose it is, and which version of the tables it has.
struct SchemaIdentity {
  /// "Orvn".
  static constexpr std::int64_t orvan = 0x4f72766e;

  std::int64_t application = 0;
  std::int64_t version = 0;

  static SchemaIdentity of(Connection& connection);
  /// That of a store as createCanonicalSchema makes it.
  static SchemaIdentity newest() noexcept;

  friend bool operator==(const SchemaIdentity&, const SchemaIdentity&) = default;
};

/// Creates the canonical tables and their indices in an empty store, inside the caller's transaction, and marks whose
/// it is and its version. The tables and what is in them are described beside their definitions.
void createCanonicalSchema(Connection& connection);

/// Brings a store of an older version to the newest, inside the caller's transaction, with all that is in it. One of
/// the newest version, or a newer one, is left alone.
void moveCanonicalSchemaForward(Connection& connection);

} // namespace orvan
