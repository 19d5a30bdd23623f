#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/session/store_creation.h"
#include "application/store/application_store.h"

namespace orvan {

namespace {

void reportKey(const SessionSettings& settings, bool madeKey) {
  const HumanOutput output;
  const bool isInKeyring = StoreKey(settings.keyFile).place() == KeyPlace::keyring;
  if (!madeKey) {
    output.line(isInKeyring ? "It uses the key that was there, which the desktop's keyring holds."
                            : "It uses the key that was there.");
  } else if (isInKeyring) {
    output.line(
        "Its key is new and lies in the desktop's keyring; keep a copy of it, because without it the store "
        "cannot be read: 'orvan backup FILE --key KEYFILE' writes one.");
  } else {
    output.line("Its key is new; keep a copy of it, because without it the store cannot be read: " +
                printableText(settings.keyFile.string()));
  }
}

} // namespace

void runInit(const CommandContext& context, KeyPlace keyPlace) {
  const auto& settings = context.session.settings();
  const bool madeKey = createStoreAndKey(settings, keyPlace) == KeyOrigin::made;
  if (context.output == OutputForm::json) {
    printJson({{"store", settings.store.string()}, {"keyFile", settings.keyFile.string()}, {"madeKey", madeKey}});
    return;
  }
  HumanOutput{}.line("The store is ready: " + printableText(settings.store.string()));
  reportKey(settings, madeKey);
}

void runCheckpoint(const CommandContext& context) {
  const auto& file = context.session.settings().store;
  auto& store = context.session.writableStore();
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
