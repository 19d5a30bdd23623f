#include "tests/support/test_store.h"

#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>
#include <system_error>

#include "OrvanSpineCore/canonical_schema.h"

namespace orvan {
namespace {

std::unique_ptr<Connection> openForWriting(const std::filesystem::path& file, const KeyInMemory& key) {
  ConnectionConfiguration configuration;
  configuration.prepare = [&key](Connection& connection) {
    connection.key(key.bytes().bytes());
    connection.executeScript("PRAGMA cipher_page_size = 4096; PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF");
  };
  return std::make_unique<Connection>(file, configuration);
}

std::string named(std::string_view prefix, std::string_view id) {
  return std::string{prefix} + std::string{id};
}

} // namespace

ScratchFolder::ScratchFolder(const std::filesystem::path& parent) {
  auto pattern = (parent / "orvan-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) {
    throw std::system_error({errno, std::generic_category()}, "making a scratch folder");
  }
  path_ = pattern;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

std::optional<SecretBytes> KeyInMemory::loadLocalStoreKey() const {
  ++timesAsked_;
  return bytes();
}

SecretBytes KeyInMemory::bytes() const {
  SecretBytes key(length_);
  for (auto& byte : key.bytes()) {
    byte = everyByte_;
  }
  return key;
}

TestStore::TestStore() : key_(std::make_shared<KeyInMemory>()) {
  connection_ = openForWriting(file(), *key_);
  connection_->executeScript("BEGIN");
  createCanonicalSchema(*connection_);
  connection_->executeScript("COMMIT");
}

void TestStore::addPerson(std::string_view key) {
  const auto identity = named(key, "-identity");
  run("INSERT INTO person VALUES (?, ?, '2020-01-01T00:00:00Z')", key, key);
  run("INSERT INTO source_identity VALUES (?, ?, ?, 0)", identity, named(key, "@example.org"), key);
  run("INSERT INTO identity_membership VALUES (?, ?, ?, 'confirmed', NULL)", named(key, "-membership"), identity, key);
}

void TestStore::add(const TestInteraction& interaction) {
  const auto identity = named(interaction.person, "-identity");
  const auto event = named("event-", interaction.id);
  const bool isInbound = interaction.direction == "inbound";
  const auto thread = interaction.thread.empty() ? std::nullopt : std::optional<std::string_view>{interaction.thread};
  if (thread) {
    run("INSERT OR IGNORE INTO thread VALUES (?, ?)", *thread, interaction.account);
    run("INSERT OR IGNORE INTO thread_participant VALUES (?, ?)", identity, *thread);
  }
  run("INSERT INTO source_event VALUES (?, ?, ?)", event, interaction.account, interaction.conversation);
  run("INSERT INTO interaction VALUES (?, ?, ?, ?, ?, ?, ?)", interaction.id, thread, event,
      isInbound ? std::optional<std::string>{identity} : std::nullopt, interaction.direction, interaction.kind,
      interaction.at);
  run("INSERT INTO interaction_participant VALUES (?, ?)", identity, interaction.id);
}

void TestStore::add(const TestOpenLoop& loop) {
  const auto claim = named("claim-", loop.id);
  const auto evidence = named("evidence-", loop.id);
  run("INSERT INTO claim VALUES (?, ?, 'promise', ?)", claim, loop.person, loop.at);
  run("INSERT INTO claim_evidence VALUES (?, ?, ?)", evidence, claim, loop.event);
  run("INSERT INTO open_loop VALUES (?, ?, ?, ?, ?, ?, ?)", loop.id, loop.person, loop.kind, evidence, loop.at,
      loop.state, loop.at);
}

} // namespace orvan
