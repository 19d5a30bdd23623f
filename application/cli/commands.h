#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "OrvanPlatform/instant.h"
#include "application/session/catch_up_list.h"
#include "application/session/session.h"
#include "application/store/store_key.h"

namespace orvan {

/// Whether a command writes for people or one JSON document.
enum class OutputForm { human, json };

/// What a command is given beside its own arguments.
struct CommandContext {
  Session& session;
  /// The moment that the command takes for now.
  Instant asOf;
  OutputForm output;
};

struct ImportArguments {
  std::vector<std::string> ownAddresses;
  std::vector<std::filesystem::path> mboxes;
  std::vector<std::filesystem::path> maildirs;
  std::vector<std::filesystem::path> calendars;
  std::vector<std::filesystem::path> cards;
};

struct CatchUpArguments {
  /// Also the rows that are older.
  bool isAll = false;
  std::optional<std::size_t> limit;
  bool isExplained = false;
};

struct OpenArguments {
  std::string item;
  /// The message's address is printed and not handed to a mail program.
  bool isPrinted = false;
};

struct DecisionArguments {
  std::string item;
  /// What the user wrote; only a snooze has it.
  std::string until;
  /// The user said yes beforehand and is not asked.
  bool isConfirmed = false;
};

enum class ItemCommand { snooze, dismiss, resolve };

// Each runs one command and writes its output. What fails is thrown: a CommandFailure, or an exception of the library.

void runInit(const CommandContext& context, KeyPlace keyPlace);
void runImport(const CommandContext& context, const ImportArguments& arguments);
void runBundle(const CommandContext& context, const std::string& person);
void runBundles(const CommandContext& context);
void runWhy(const CommandContext& context, const std::string& person);
void runCatchUp(const CommandContext& context, const CatchUpArguments& arguments);
void runShow(const CommandContext& context, const std::string& item);
void runOpen(const CommandContext& context, const OpenArguments& arguments);
void runItemCommand(const CommandContext& context, ItemCommand command, const DecisionArguments& arguments);
void runRecords(const CommandContext& context, const std::string& person);
void runCheckpoint(const CommandContext& context);
void runDoctor(const CommandContext& context);

} // namespace orvan
