#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

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
  const auto key = KeyFile(settings.keyFile).loadLocalStoreKey();
  if (!key) {
    throw CommandFailure(ExitCode::cannotOpen,
                         "There is no key file; 'orvan init' makes one, or name yours with --key-file.");
  }
  if (key->size() != KeyFile::keyLength) {
    throw Error(ApplicationStoreError::keyMalformed, "looking at the key");
  }
  return "32 bytes, readable by you alone";
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
                                               "; restore it from a backup.");
  }
  return "all tables, columns and indices are there";
}

/// Every page carries a code that tells whether it is as it was written.
std::string lookAtPages(DatabaseQueue& store) {
  return store.withoutTransaction([](Connection& connection) {
    auto faults = connection.query("PRAGMA cipher_integrity_check");
    if (faults.next()) {
      throw CommandFailure(ExitCode::failed, "Pages of the store are damaged; restore it from a backup.");
    }
    const auto structure = connection.fetchOptionalText("PRAGMA quick_check").value_or("");
    if (structure != "ok") {
      throw CommandFailure(ExitCode::failed, "The store's tables are damaged; restore it from a backup.");
    }
    return std::string{"no damage found"};
  });
}

std::string lookAtCopies(const SessionSettings& settings) {
  const auto copies = ApplicationStore::copiesLeft(settings.store);
  if (!copies.empty()) {
    throw CommandFailure(
        ExitCode::failed,
        "A copy of the store from before it was brought to a newer version was left by an interruption; "
        "remove it when the store opens, put it in the store's place when it does not: " +
            printableText(copies.front().string()));
  }
  return "none was left behind";
}

std::string lookAtLog(const SessionSettings& settings) {
  const auto size = ApplicationStore::logSize(settings.store);
  constexpr std::uintmax_t tooLarge = std::uintmax_t{256} * 1024 * 1024;
  if (size > tooLarge) {
    throw CommandFailure(ExitCode::failed, "The write-ahead log is large; 'orvan checkpoint' empties it.");
  }
  return std::to_string(size) + " bytes";
}

std::vector<Finding> examine(const SessionSettings& settings, const CredentialVault& vault) {
  std::vector<Finding> findings;
  findings.push_back(lookAt("key", [&] { return lookAtKey(settings); }));
  findings.push_back(lookAt("folder", [&] { return lookAtFolders(settings); }));
  findings.push_back(lookAt("files", [&] { return lookAtFiles(settings); }));
  std::shared_ptr<DatabaseQueue> store;
  findings.push_back(lookAt("store", [&] {
    store = ApplicationStore::open(settings.store, vault, ApplicationStore::Access::read);
    return lookAtStore(*store);
  }));
  if (store != nullptr) {
    findings.push_back(lookAt("engine", [&] { return lookAtEngine(*store); }));
    findings.push_back(lookAt("schema", [&] { return lookAtSchema(*store); }));
    findings.push_back(lookAt("pages", [&] { return lookAtPages(*store); }));
    findings.push_back(lookAt("log", [&] { return lookAtLog(settings); }));
  }
  findings.push_back(lookAt("copies", [&] { return lookAtCopies(settings); }));
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
