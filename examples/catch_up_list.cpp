// Prints whom to get back in touch with now, and why, from a store that `orvan init` and `orvan import` made.
//
//   catch_up_list STORE KEY_FILE

#include <chrono>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OrvanObservatory/store_projection_reader.h"
#include "OrvanPlatform/executor.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanSpineCore/key_file.h"
#include "OrvanStore/database_queue.h"

namespace {

// The people list reads through a connection of the program's own.
std::shared_ptr<orvan::DatabaseQueue> openForReading(const std::filesystem::path& store, orvan::CredentialVault vault) {
  orvan::ConnectionConfiguration configuration;
  configuration.mode = orvan::OpenMode::readOnly;
  configuration.prepare = [vault = std::move(vault)](orvan::Connection& connection) {
    if (const auto key = vault.loadLocalStoreKey()) {
      connection.key(key->bytes());
    }
    connection.execute("PRAGMA cipher_page_size = 4096");
  };
  return std::make_shared<orvan::DatabaseQueue>(store, configuration);
}

void printCatchUpList(const std::filesystem::path& store, const std::filesystem::path& keyFile) {
  const orvan::CredentialVault vault(std::make_shared<orvan::KeyFile>(keyFile));
  const auto people = std::make_shared<orvan::StoreProjectionReader>(openForReading(store, vault));
  orvan::AttentionEvidenceCompiler compiler(store, vault, people, orvan::AttentionEvidenceCompilerOptions::defaults);
  orvan::AttentionDispositionStore dispositions(store, vault);
  const auto now = std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now());

  const auto projection = orvan::waitFor(compiler.executor(), people->project(1));
  std::map<std::string, std::string> displayNames;
  for (const auto& person : projection.people()) {
    displayNames[person.personKey()] = person.displayName();
  }

  std::vector<orvan::AttentionCatchUpPerson> candidates;
  std::vector<orvan::AttentionItemDispositionRecord> records;
  for (const auto& bundle : orvan::waitFor(compiler.executor(), compiler.compileAll(now))) {
    candidates.emplace_back(bundle.personKey(), displayNames[bundle.personKey()], bundle);
    const auto ofPerson = orvan::waitFor(dispositions.executor(), dispositions.records(bundle.personKey()));
    records.insert(records.end(), ofPerson.begin(), ofPerson.end());
  }

  for (const auto& item : orvan::AttentionCatchUpSelector::select(candidates, records, now)) {
    std::cout << item.displayName() << ": " << item.whyNow().headline() << '\n';
  }
}

} // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: catch_up_list STORE KEY_FILE\n";
    return 2;
  }
  try {
    printCatchUpList(argv[1], argv[2]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "catch_up_list: " << error.what() << '\n';
    return 1;
  }
}
