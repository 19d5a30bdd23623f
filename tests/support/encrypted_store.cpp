#include "tests/support/encrypted_store.h"

#include "OrvanSpineCore/canonical_schema.h"
#include "OrvanStore/transaction.h"
#include "tests/support/test_store.h"

namespace orvan {

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
    connection.key(KeyInMemory{}.loadLocalStoreKey()->bytes());
    connection.executeScript("PRAGMA foreign_keys = ON; PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0");
  };
  return configuration;
}

void createStore(const std::filesystem::path& file) {
  Connection connection(file, keyedConfiguration());
  inTransaction(connection, TransactionKind::write, createCanonicalSchema);
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

} // namespace orvan
