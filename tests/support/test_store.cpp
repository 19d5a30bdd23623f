#include "tests/support/test_store.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <optional>
#include <string>

#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanStore/transaction.h"

namespace orvan {
namespace {

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
  std::ranges::fill(key.bytes(), everyByte_);
  return key;
}

void deriveKeysQuickly() {
  // The setting is the process's, whichever connection it is made on.
  ConnectionConfiguration configuration;
  configuration.mode = OpenMode::readWrite;
  Connection anyConnection(":memory:", configuration);
  anyConnection.executeScript("PRAGMA cipher_default_kdf_iter = 8");
}

ConnectionConfiguration keyedConfiguration(OpenMode mode) {
  ConnectionConfiguration configuration;
  configuration.mode = mode;
  configuration.prepare = [](Connection& connection) {
    connection.key(KeyInMemory{}.bytes().bytes());
    connection.executeScript("PRAGMA foreign_keys = ON; PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0");
  };
  return configuration;
}

void createStore(const std::filesystem::path& file) {
  EncryptedStore(file, CredentialVault{std::make_shared<KeyInMemory>()}).create();
}

std::vector<std::string> damage(Connection& connection) {
  std::vector<std::string> findings;
  for (const char* check : {"PRAGMA integrity_check", "PRAGMA cipher_integrity_check", "PRAGMA foreign_key_check"}) {
    auto rows = connection.query(check);
    while (rows.next()) {
      const auto finding = rows.optionalText(Column{0}).value_or("a finding without text");
      if (finding != "ok") {
        findings.emplace_back(finding);
      }
    }
  }
  return findings;
}

TestStore::TestStore() : connection_(file(), keyedConfiguration()) {
  connection_.executeScript("PRAGMA foreign_keys = OFF; PRAGMA synchronous = OFF");
  inTransaction(connection_, TransactionKind::write, createCanonicalSchema);
}

void TestStore::addPerson(std::string_view key) {
  const auto identity = named(key, "-identity");
  run("INSERT INTO person VALUES (?, ?, '2020-01-01T00:00:00Z')", key, key);
  run("INSERT INTO source_identity (id, address, display_name, name_rank) VALUES (?, ?, ?, 0)", identity,
      named(key, "@example.org"), key);
  run("INSERT INTO identity_membership VALUES (?, ?, ?, 'confirmed', NULL)", named(key, "-membership"), identity, key);
}

void TestStore::add(const TestInteraction& interaction) {
  const auto identity = named(interaction.person, "-identity");
  const auto event = named("event-", interaction.id);
  const auto writer = interaction.direction == "inbound" ? std::optional{identity} : std::nullopt;
  run("INSERT OR IGNORE INTO thread VALUES (?, ?)", interaction.thread, interaction.account);
  run("INSERT OR IGNORE INTO thread_participant VALUES (?, ?)", identity, interaction.thread);
  run("INSERT INTO source_event VALUES (?, ?, ?)", event, interaction.account, interaction.conversation);
  run("INSERT INTO interaction VALUES (?, ?, ?, ?, ?, ?, ?)", interaction.id, interaction.thread, event, writer,
      interaction.direction, interaction.kind, interaction.at);
  run("INSERT INTO interaction_participant VALUES (?, ?)", identity, interaction.id);
}

void TestStore::add(const TestOpenLoop& loop) {
  const auto claim = named("claim-", loop.id);
  const auto evidence = named("evidence-", loop.id);
  run("INSERT INTO claim VALUES (?, 'ana', 'promise', ?)", claim, loop.at);
  run("INSERT INTO claim_evidence VALUES (?, ?, ?)", evidence, claim, loop.event);
  run("INSERT INTO open_loop VALUES (?, 'ana', 'promise', ?, ?, ?, ?)", loop.id, evidence, loop.at, loop.state,
      loop.at);
}

} // namespace orvan
