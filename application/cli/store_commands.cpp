#include "OrvanPlatform/error.h"
#include "OrvanPlatform/printable_text.h"
#include "OrvanSpineCore/key_file.h"
#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/store/application_store.h"

namespace orvan {
namespace {

void createPrivateFolder(const std::filesystem::path& file) {
  const auto folder = file.parent_path();
  if (folder.empty()) {
    return;
  }
  std::error_code failure;
  if (std::filesystem::create_directories(folder, failure)) {
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, failure);
  }
  if (failure) {
    throw CommandFailure(ExitCode::failed, "The folder for the store could not be made; choose another with --store.");
  }
}

/// Whether a key had to be made. Never while there is a store: the new key could not open it.
bool ensureKey(const Workspace& workspace) {
  const KeyFile keyFile(workspace.settings().keyFile);
  if (keyFile.loadLocalStoreKey()) {
    return false;
  }
  try {
    keyFile.create();
    return true;
  } catch (const Error& error) {
    // Another program made it at this moment.
    if (error.code() != CredentialVaultError::keyExists) {
      throw;
    }
    return false;
  }
}

} // namespace

void runInit(const CommandContext& context) {
  const auto& settings = context.workspace.settings();
  std::error_code unreachable;
  if (std::filesystem::exists(settings.store, unreachable)) {
    const bool hasKey = std::filesystem::exists(settings.keyFile, unreachable);
    throw Error(hasKey ? ApplicationStoreError::storeExists : ApplicationStoreError::keyMissingForStore,
                "making a store");
  }
  createPrivateFolder(settings.store);
  settings.requirePrivateFolder();
  createPrivateFolder(settings.keyFile);
  const bool madeKey = ensureKey(context.workspace);
  ApplicationStore::create(settings.store, context.workspace.vault());
  if (context.output == OutputForm::json) {
    printJson({{"store", settings.store.string()}, {"keyFile", settings.keyFile.string()}, {"madeKey", madeKey}});
    return;
  }
  const HumanOutput output;
  output.line("The store is ready: " + printableText(settings.store.string()));
  output.line(madeKey ? "Its key is new; keep a copy of it, because without it the store cannot be read: " +
                            printableText(settings.keyFile.string())
                      : "It uses the key that was there.");
}

void runCheckpoint(const CommandContext& context) {
  const auto& file = context.workspace.settings().store;
  auto& store = context.workspace.writableStore();
  const auto before = ApplicationStore::logSize(file);
  if (!ApplicationStore::checkpoint(store)) {
    throw CommandFailure(ExitCode::failed,
                         "The write-ahead log could not be emptied because another program uses the store; close that "
                         "and try again.");
  }
  const auto after = ApplicationStore::logSize(file);
  if (context.output == OutputForm::json) {
    printJson({{"logBytesBefore", before}, {"logBytesAfter", after}});
  } else {
    HumanOutput{}.line("The write-ahead log had " + std::to_string(before) + " bytes and has " + std::to_string(after) +
                       " now.");
  }
}

} // namespace orvan
