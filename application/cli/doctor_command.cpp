#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "OrvanPlatform/error.h"
#include "OrvanPlatform/human_date.h"
#include "OrvanPlatform/printable_text.h"
#include "OrvanSpineCore/key_file.h"
#include "application/backup/restore.h"
#include "application/cli/command_failure.h"
#include "application/cli/commands.h"
#include "application/cli/human_output.h"
#include "application/cli/json_output.h"
#include "application/cli/reminder_service.h"
#include "application/store/application_store.h"
#include "application/store/key_change.h"

namespace orvan {
namespace {

/// What one look at the installation found. `detail` says what to do when it is not fine.
struct Finding {
  std::string name;
  bool isFine;
  std::string detail;
};

Finding lookAt(const std::string& name, const std::function<std::string()>& look) {
  try {
    return {name, true, look()};
  } catch (...) {
    return {name, false, failureOfCurrentException().what()};
  }
}

bool othersMayEnter(const std::filesystem::path& folder) {
  constexpr auto everyoneElse = std::filesystem::perms::group_all | std::filesystem::perms::others_all;
  std::error_code ignored;
  return (std::filesystem::status(folder, ignored).permissions() & everyoneElse) != std::filesystem::perms::none;
}

std::string lookAtKey(const SessionSettings& settings) {
  const StoreKey storeKey(settings.keyFile);
  const auto key = storeKey.loadLocalStoreKey();
  if (!key) {
    throw CommandFailure(ExitCode::cannotOpen,
                         "There is no key file; 'orvan init' makes one, or name yours with --key-file.");
  }
  if (key->size() != KeyFile::keyLength) {
    throw Error(ApplicationStoreError::keyMalformed, "looking at the key");
  }
  return storeKey.place() == KeyPlace::keyring ? "32 bytes, in the desktop's keyring"
                                               : "32 bytes, in a file readable by you alone";
}

/// Opening the store ends a change of the key that was interrupted, and leaves no pending key unless neither opens it.
std::string lookAtPendingKey(const SessionSettings& settings) {
  if (StoreKey(settings.keyFile).pending().exists()) {
    throw CommandFailure(ExitCode::cannotOpen,
                         "A change of the key was interrupted, and neither the key nor the one beside it (.pending) "
                         "opens the store; keep both files, and restore the store with 'orvan restore FILE'.");
  }
  return "no change is pending";
}

std::string lookAtFolders(const SessionSettings& settings) {
  for (const auto& file : {settings.store, settings.keyFile}) {
    if (othersMayEnter(std::filesystem::absolute(file).parent_path())) {
      throw CommandFailure(ExitCode::failed,
                           "Others can look into the folder of the store or of its key; take that away with 'chmod "
                           "700'. The files in it are private all the same.");
    }
  }
  return "open to you alone";
}

std::string lookAtFiles(const SessionSettings& settings) {
  ApplicationStore::requireUsableFile(settings.store);
  return "the store and its log are yours alone";
}

std::string lookAtStore(DatabaseQueue& store) {
  return store.read([](Connection& connection) {
    const auto people = connection.fetchOptionalInteger("SELECT count(*) FROM person").value_or(0);
    return "opens with the key, " + std::to_string(people) + " people";
  });
}

/// "4.6.1 community" and the like.
std::string lookAtEngine(DatabaseQueue& store) {
  const auto version = store.read(
      [](Connection& connection) { return connection.fetchOptionalText("PRAGMA cipher_version").value_or(""); });
  constexpr std::pair oldestUsable{4, 5};
  std::pair<int, int> found{0, 0};
  char dot = 0;
  std::istringstream{version} >> found.first >> dot >> found.second;
  if (found < oldestUsable) {
    throw CommandFailure(ExitCode::failed,
                         "SQLCipher is older than 4.5; install a newer one and start the program with that.");
  }
  return "SQLCipher " + version;
}

std::string lookAtSchema(DatabaseQueue& store) {
  const auto missing = store.read(ApplicationStore::missingSchemaParts);
  if (!missing.empty()) {
    throw CommandFailure(ExitCode::failed, "The store lacks " + missing.front() +
                                               (missing.size() == 1 ? "" : " and more") +
                                               "; restore it with 'orvan restore FILE'.");
  }
  return "all tables, columns and indices are there";
}

std::string lookAtPages(DatabaseQueue& store) {
  switch (store.withoutTransaction(ApplicationStore::damage)) {
    case StoreDamage::pages:
      throw CommandFailure(ExitCode::failed, "Pages of the store are damaged; restore it with 'orvan restore FILE'.");
    case StoreDamage::tables:
      throw CommandFailure(ExitCode::failed, "The store's tables are damaged; restore it with 'orvan restore FILE'.");
    case StoreDamage::none:
      break;
  }
  return "no damage found";
}

std::string lookAtCopies(const SessionSettings& settings) {
  const auto copies = ApplicationStore::copiesLeft(settings.store);
  if (!copies.empty()) {
    throw CommandFailure(
        ExitCode::failed,
        "A copy of the store from before it was brought to a newer version was left by an interruption; "
        "remove it when the store opens, and take it with 'orvan restore' when it does not: " +
            printableText(copies.front().string()));
  }
  return "none was left behind";
}

std::string lookAtWhatRestoringKept(const SessionSettings& settings) {
  const auto kept = keptByRestoring(settings.store);
  if (kept.empty()) {
    return "none from restoring";
  }
  return "what restoring replaced is kept; remove it when you do not need it: " + printableText(kept.front().string()) +
         (kept.size() == 1 ? "" : " and " + std::to_string(kept.size() - 1) + " more");
}

std::string lookAtBackups(const SessionSettings& settings) {
  const auto latest = latestBackup(settings.store);
  return latest ? "the latest was made " + humanMomentText(*latest)
                : std::string{"none was made so far; 'orvan backup FILE' makes one"};
}

std::string lookAtLog(const SessionSettings& settings) {
  const auto size = ApplicationStore::logSize(settings.store);
  constexpr std::uintmax_t tooLarge = std::uintmax_t{256} * 1024 * 1024;
  if (size > tooLarge) {
    throw CommandFailure(ExitCode::failed, "The write-ahead log is large; 'orvan checkpoint' empties it.");
  }
  return std::to_string(size) + " bytes";
}

bool hasScheduledFollowUps(DatabaseQueue& store) {
  return store.read([](Connection& connection) {
    return connection.fetchOptionalInteger("SELECT 1 FROM follow_up WHERE state = 'scheduled' LIMIT 1").has_value();
  });
}

/// That there is no desktop session is no fault of the installation; that nothing reminds of what is to come is one.
std::string lookAtReminders(DatabaseQueue& store) {
  try {
    const auto state = AgentControl(std::chrono::seconds{5}).state();
    if (state.file != AgentFile::open) {
      throw Error(state.file == AgentFile::locked ? AgentControlError::locked : AgentControlError::unusable,
                  "looking at the reminder service");
    }
    if (state.service.empty() && hasScheduledFollowUps(store)) {
      throw Error(AgentControlError::noNotificationService, "looking at the reminder service");
    }
    return state.service.empty() ? "the reminder service runs; nothing here shows notifications"
                                 : "the reminder service runs, and " + printableText(state.service) + " shows them";
  } catch (const Error& error) {
    if (error.code().category() != agentControlErrorCategory()) {
      throw;
    }
    const auto reason = static_cast<AgentControlError>(error.code().value());
    if (reason == AgentControlError::noBus) {
      return "there is no desktop session here to remind you in";
    }
    if (reason == AgentControlError::noAgent && !hasScheduledFollowUps(store)) {
      return "the reminder service (orvan-agent) does not run; there is nothing to remind of";
    }
    throw CommandFailure(ExitCode::failed, sentenceOf(reason));
  }
}

std::vector<Finding> examine(const SessionSettings& settings, const CredentialVault& vault) {
  std::vector<Finding> findings;
  findings.push_back(lookAt("key", [&] { return lookAtKey(settings); }));
  findings.push_back(lookAt("folder", [&] { return lookAtFolders(settings); }));
  findings.push_back(lookAt("files", [&] { return lookAtFiles(settings); }));
  std::shared_ptr<DatabaseQueue> store;
  findings.push_back(lookAt("store", [&] {
    settleKeyChange(settings.store, StoreKey(settings.keyFile));
    store = ApplicationStore::open(settings.store, vault, ApplicationStore::Access::read);
    return lookAtStore(*store);
  }));
  if (store != nullptr) {
    findings.push_back(lookAt("engine", [&] { return lookAtEngine(*store); }));
    findings.push_back(lookAt("schema", [&] { return lookAtSchema(*store); }));
    findings.push_back(lookAt("pages", [&] { return lookAtPages(*store); }));
    findings.push_back(lookAt("log", [&] { return lookAtLog(settings); }));
    findings.push_back(lookAt("reminders", [&] { return lookAtReminders(*store); }));
  }
  findings.push_back(lookAt("key change", [&] { return lookAtPendingKey(settings); }));
  findings.push_back(lookAt("copies", [&] { return lookAtCopies(settings); }));
  findings.push_back(lookAt("former store", [&] { return lookAtWhatRestoringKept(settings); }));
  findings.push_back(lookAt("backups", [&] { return lookAtBackups(settings); }));
  return findings;
}

} // namespace

void runDoctor(const CommandContext& context) {
  const auto findings = examine(context.session.settings(), context.session.vault());
  bool allFine = true;
  Json checks = Json::array();
  for (const auto& finding : findings) {
    allFine = allFine && finding.isFine;
    checks.push_back({{"name", finding.name}, {"isFine", finding.isFine}, {"detail", finding.detail}});
    if (context.output == OutputForm::human) {
      HumanOutput{}.check(finding.isFine, finding.name, finding.detail);
    }
  }
  if (context.output == OutputForm::json) {
    printJson({{"isFine", allFine}, {"checks", checks}});
  }
  if (!allFine) {
    throw CommandFailure(ExitCode::failed, "Something needs your attention; see above.");
  }
}

} // namespace orvan
