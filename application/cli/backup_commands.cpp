#include "application/cli/backup_commands.h"

#include <memory>
#include <optional>
#include <string>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/printable_text.h"
#include "application/backup/backup.h"
#include "application/backup/backup_error.h"
#include "application/backup/restore.h"
#include "application/cli/command_failure.h"
#include "application/cli/confirmation.h"
#include "application/cli/copy_progress_line.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/session/store_creation.h"
#include "application/store/key_change.h"

namespace orvan {
namespace {

using std::filesystem::path;

struct BackupArguments {
  std::string file;
  std::string key;
};

struct RestoreArguments {
  std::string file;
  std::string key;
  bool isConfirmed = false;
  bool discardsFormer = false;
};

struct RekeyArguments {
  std::string keepOldKey;
  bool isConfirmed = false;
};

struct KeyArguments {
  bool toKeyring = false;
  bool toFile = false;
};

std::optional<path> given(const std::string& file) {
  return file.empty() ? std::nullopt : std::optional<path>{file};
}

std::string shown(const path& file) {
  return printableText(file.string());
}

StoreAndKey storeAndKeyOf(const CommandContext& context) {
  const auto& settings = context.session.settings();
  return {settings.store, StoreKey(settings.keyFile)};
}

/// As every other command looks at the store before it opens it.
StoreAndKey examinedStoreOf(const CommandContext& context) {
  const auto& settings = context.session.settings();
  settings.requirePrivateFolder();
  ApplicationStore::requireUsableFile(settings.store);
  auto store = storeAndKeyOf(context);
  settleKeyChange(store.store, store.key);
  return store;
}

std::string placeInWords(const StoreKey& key) {
  return key.place() == KeyPlace::keyring ? "in the desktop's keyring" : "in " + shown(key.file());
}

const char* caseName(KeyPlace place) {
  return place == KeyPlace::keyring ? "keyring" : "file";
}

std::string people(std::int64_t count) {
  return std::to_string(count) + (count == 1 ? " person" : " people");
}

/// "1.4 MB" and the like.
std::string size(std::uintmax_t bytes) {
  constexpr std::uintmax_t thousand = 1000;
  constexpr std::uintmax_t million = thousand * thousand;
  if (bytes < million) {
    return std::to_string(bytes / thousand) + " kB";
  }
  return std::to_string(bytes / million) + "." + std::to_string(bytes % million / (million / 10)) + " MB";
}

void requireYes(bool isGiven, const std::string& question, const char* otherwise) {
  if (isGiven || isConfirmed(question)) {
    return;
  }
  if (!canAsk()) {
    throw CommandFailure(ExitCode::wrongCommandLine, otherwise);
  }
  throw CommandFailure(ExitCode::failed, "Nothing was changed.");
}

void runBackup(const CommandContext& context, const BackupArguments& arguments) {
  const auto source = examinedStoreOf(context);
  const auto report = [&] {
    CopyProgressLine line("Copying the store");
    return backUp(source, arguments.file, given(arguments.key), line.progress());
  }();
  if (context.output == OutputForm::json) {
    printJson({{"backup", arguments.file},
               {"people", report.people},
               {"bytes", report.bytes},
               {"key", arguments.key.empty() ? Json(nullptr) : Json(arguments.key)}});
    return;
  }
  const HumanOutput output;
  output.line("The backup is whole: " + shown(arguments.file) + " (" + people(report.people) + ", " +
              size(report.bytes) + ").");
  output.line("It opens only with the key that the store has now, which is " + placeInWords(source.key) + ".");
  if (arguments.key.empty()) {
    output.line("Keep a copy of that key somewhere else, too: without it neither store nor backup can be read.");
  } else {
    output.line("A copy of the key is in " + shown(arguments.key) +
                "; keep it away from the backup, for whoever has both can read everything.");
  }
}

std::string inWords(const StoreSummary& summary) {
  return people(summary.people) + ", last written " + humanMomentText(summary.writtenAt);
}

std::string questionOf(const RestorePlan& plan, FormerContent former) {
  const auto backup = "The backup has " + inWords(plan.found) + ".";
  if (plan.state == RestoreTarget::unreadable) {
    return "There is a store that cannot be read with the key, or is damaged. It is given another name. " + backup +
           " Restore it?";
  }
  return "The store has " + inWords(*plan.present) + ". " + backup + " Replace all that the store has" +
         (former == FormerContent::keep ? " (a copy of it is kept)?" : ", and keep no copy of it?");
}

void report(const RestorePlan& plan, const RestoreReport& report) {
  const HumanOutput output;
  output.line("The store is as the backup has it: " + people(plan.found.people) + ", last written " +
              humanMomentText(plan.found.writtenAt) + ".");
  if (report.keyWasPutInPlace) {
    output.line("The backup's key is the store's now: " + shown(plan.target.key.file()));
  }
  if (!report.former) {
    return;
  }
  if (plan.state == RestoreTarget::sound) {
    output.line("What it had before is in a copy with the store's key; remove it when you do not need it: " +
                shown(*report.former));
  } else {
    output.line("The store that was there lies here now; remove it when you do not need it: " + shown(*report.former));
  }
}

void runRestore(const CommandContext& context, const RestoreArguments& arguments) {
  const auto& settings = context.session.settings();
  createStoreFolders(settings);
  const auto plan = planRestore(storeAndKeyOf(context), arguments.file, given(arguments.key));
  const auto former = arguments.discardsFormer ? FormerContent::discard : FormerContent::keep;
  if (plan.state != RestoreTarget::none) {
    requireYes(arguments.isConfirmed, questionOf(plan, former),
               "There is a store already; say with --yes that the backup is to replace what it holds.");
  }
  const auto done = [&] {
    CopyProgressLine line("Restoring");
    return restore(plan, former, context.asOf, line.progress());
  }();
  if (context.output == OutputForm::json) {
    printJson({{"store", settings.store.string()},
               {"people", plan.found.people},
               {"former", done.former ? Json(done.former->string()) : Json(nullptr)},
               {"keyWasPutInPlace", done.keyWasPutInPlace}});
    return;
  }
  report(plan, done);
}

void runRekey(const CommandContext& context, const RekeyArguments& arguments) {
  const auto store = examinedStoreOf(context);
  const auto place = store.key.place();
  if (!place) {
    throw Error(CredentialVaultError::keyMissing, "changing the key");
  }
  const bool keepsOld = !arguments.keepOldKey.empty();
  requireYes(arguments.isConfirmed || keepsOld,
             "Backups and copies made so far open with the present key only, and that will be gone. Go on?",
             "Backups made so far open with the present key only; keep it with --keep-old-key FILE, or say with --yes "
             "that it may go.");
  if (keepsOld) {
    writeCopyOfKey(store.key, arguments.keepOldKey);
  }
  changeStoreKey(store.store, store.key, *place);
  if (context.output == OutputForm::json) {
    printJson({{"keyPlace", caseName(*place)},
               {"keyFile", store.key.file().string()},
               {"oldKey", keepsOld ? Json(arguments.keepOldKey) : Json(nullptr)}});
    return;
  }
  const HumanOutput output;
  output.line("The store has a new key, which is " + placeInWords(store.key) +
              "; keep a copy of it, for example with 'orvan backup FILE --key KEYFILE'.");
  output.line(keepsOld ? "The former key, for backups made before, is in " + shown(arguments.keepOldKey) +
                             "; 'orvan restore FILE --key KEYFILE' takes both."
                       : std::string{"Backups made before open with the former key only; make a new one."});
}

void runKey(const CommandContext& context, const KeyArguments& arguments) {
  const auto store = storeAndKeyOf(context);
  if (arguments.toKeyring || arguments.toFile) {
    const auto place = arguments.toKeyring ? KeyPlace::keyring : KeyPlace::file;
    examinedStoreOf(context);
    // A key that does not open the store would be moved for nothing.
    context.session.readableStore();
    if (store.key.place() != place) {
      moveStoreKey(store.store, store.key, place);
    }
  }
  const auto place = store.key.place();
  if (!place) {
    throw Error(CredentialVaultError::keyMissing, "looking for the key");
  }
  if (context.output == OutputForm::json) {
    printJson({{"keyPlace", caseName(*place)}, {"keyFile", store.key.file().string()}});
  } else {
    HumanOutput{}.line("The store's key is " + placeInWords(store.key) + ".");
  }
}

void takeFile(CLI::App& command, std::string& file, const char* about) {
  command.add_option("FILE", file, about)->type_name("")->required()->check(notEmpty());
}

void takeYes(CLI::App& command, bool& isConfirmed) {
  command.add_flag("--yes,-y", isConfirmed, "Do not ask");
}

constexpr const char* group = "To keep it in order";

void addBackup(CommandSet& commands) {
  const auto arguments = std::make_shared<BackupArguments>();
  auto& command = commands.add({"backup", group, "Write an encrypted copy of the store, and read it back",
                                "orvan backup /media/stick/orvan-2026-03-10.backup"},
                               [arguments](const auto& context) { runBackup(context, *arguments); });
  takeFile(command, arguments->file, "A new file for the backup");
  command.add_option("--key", arguments->key, "Also write the key into this new file; keep it elsewhere")
      ->type_name("KEYFILE")
      ->check(notEmpty());
}

void addRestore(CommandSet& commands) {
  const auto arguments = std::make_shared<RestoreArguments>();
  auto& command = commands.add({"restore", group, "Make the store what a backup holds",
                                "orvan restore /media/stick/orvan-2026-03-10.backup --key ~/orvan-key"},
                               [arguments](const auto& context) { runRestore(context, *arguments); });
  takeFile(command, arguments->file, "The backup");
  command.add_option("--key", arguments->key, "The backup's key, where that is not the store's")
      ->type_name("KEYFILE")
      ->check(notEmpty());
  command.add_flag("--discard", arguments->discardsFormer, "Keep no copy of what the store holds now");
  takeYes(command, arguments->isConfirmed);
}

void addRekey(CommandSet& commands) {
  const auto arguments = std::make_shared<RekeyArguments>();
  auto& command = commands.add(
      {"rekey", group, "Encrypt the store with a new key", "orvan rekey --keep-old-key ~/orvan-key-of-older-backups"},
      [arguments](const auto& context) { runRekey(context, *arguments); });
  command.add_option("--keep-old-key", arguments->keepOldKey, "Write the present key into this new file first")
      ->type_name("KEYFILE")
      ->check(notEmpty());
  takeYes(command, arguments->isConfirmed);
}

void addKey(CommandSet& commands) {
  const auto arguments = std::make_shared<KeyArguments>();
  auto& command = commands.add({"key", group, "Say where the key is, or move it", "orvan key --to-keyring"},
                               [arguments](const auto& context) { runKey(context, *arguments); });
  auto* toKeyring = command.add_flag("--to-keyring", arguments->toKeyring, "Move it into the desktop's keyring");
  command.add_flag("--to-file", arguments->toFile, "Move it into the key file")->excludes(toKeyring);
}

} // namespace

void addBackupCommands(CommandSet& commands) {
  addBackup(commands);
  addRestore(commands);
  addRekey(commands);
  addKey(commands);
}

} // namespace orvan
