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
#include <vector>

#include "OrvanObservatory/attention_projection_reader.h"
#include "OrvanPlatform/executor.h"
#include "OrvanRelationshipAttention/catch_up/attention_catch_up.h"
#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "OrvanSpineCore/credential_vault.h"
#include "OrvanSpineCore/encrypted_store.h"
#include "OrvanSpineCore/key_file.h"

namespace {

void printCatchUpList(const std::filesystem::path& store, const std::filesystem::path& keyFile) {
  const orvan::CredentialVault vault(std::make_shared<orvan::KeyFile>(keyFile));
  const auto now = std::chrono::time_point_cast<std::chrono::microseconds>(std::chrono::system_clock::now());
  const auto& options = orvan::AttentionEvidenceCompilerOptions::defaults;
  // The people list reads through a connection of the program's own.
  const auto people = std::make_shared<orvan::AttentionProjectionReader>(
      orvan::EncryptedStore(store, vault).openQueue(orvan::StoreRole::programReader), now,
      options.maxPeopleGlobalCap());
  orvan::AttentionEvidenceCompiler compiler(store, vault, people, options);
  orvan::AttentionDispositionStore dispositions(store, vault);

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
