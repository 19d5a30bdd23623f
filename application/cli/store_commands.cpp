#include "OrvanPlatform/printable_text.h"
#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/session/store_creation.h"
#include "application/store/application_store.h"

namespace orvan {

void runInit(const CommandContext& context) {
  const auto& settings = context.session.settings();
  const bool madeKey = createStoreAndKey(settings) == KeyOrigin::made;
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
