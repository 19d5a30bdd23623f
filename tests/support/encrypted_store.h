#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "OrvanStore/connection.h"

namespace orvan {

/// From now on this process derives keys with few rounds: tests that open a store hundreds of times would spend all
/// their time there. Stores made before cannot be opened any more.
void deriveKeysQuickly();

/// A connection with the key that KeyInMemory holds by default, in write-ahead-log mode, which leaves
/// checkpoints to its caller.
ConnectionConfiguration keyedConfiguration(OpenMode mode = OpenMode::readWriteCreate);

/// Makes an encrypted store with the canonical schema.
void createStore(const std::filesystem::path& file);

/// What SQLite and SQLCipher find wrong with the store; empty when it is sound.
std::vector<std::string> damage(Connection& connection);

} // namespace orvan
